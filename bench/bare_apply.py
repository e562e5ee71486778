# SPDX-License-Identifier: GPL-2.0-or-later
"""The package manager's library alone, installing packages: the floor of an Apply.

Usage: bare_apply.py ROOT PATTERN      installs what there is under names that match the shell pattern

Prints one figure a line as "name<TAB>value<TAB>unit". "bare.apply" begins when the dependencies are
solved, as the program's figure begins when the user agrees, and holds: the downloads (as many side by
side as the configuration says), the signature check that the repositories ask for, rpm's test of the
transaction, and its run, with the library's records of it. Before it lie the metadata, from whatever
cache there is, and the solving. The list of packages is not collected again afterwards, which the
program does within its own figure.
"""
import os
import sys
import time

import dnf
import dnf.callback
import dnf.yum.rpmtrans
from libdnf.transaction import TransactionItemState_DONE

from bare import Base, configure


def main(root, pattern):
    base = Base(conf=configure(root))
    base.read_all_repos()
    base.fill_sack(load_system_repo=True, load_available_repos=True)
    for package in base.sack.query().available().filterm(name__glob=pattern, latest_per_arch=True):
        base.package_install(package)
    base.resolve()
    start = time.perf_counter()
    packages = list(base.transaction.install_set)
    base.download_packages(packages, dnf.callback.DownloadProgress())
    downloaded = time.perf_counter()
    for package in packages:
        result, message = base.package_signature_check(package)
        if result:
            sys.exit(message)
    checked = time.perf_counter()
    base.do_transaction(display=dnf.yum.rpmtrans.TransactionDisplay())
    done = time.perf_counter()
    failed = [str(item) for item in base.transaction if item.state != TransactionItemState_DONE]
    if failed or not packages:
        sys.exit('not installed: %s' % (', '.join(failed) or pattern))
    for name, value, unit in (('bare.apply', (done - start) * 1000, 'ms'),
                              ('bare.apply.download', (downloaded - start) * 1000, 'ms'),
                              ('bare.apply.signatures', (checked - downloaded) * 1000, 'ms'),
                              ('bare.apply.transaction', (done - checked) * 1000, 'ms'),
                              ('bare.apply.packages', len(packages), 'packages')):
        print('%s\t%.3f\t%s' % (name, value, unit))


if __name__ == '__main__':
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(os.path.abspath(sys.argv[1]), sys.argv[2])
