# SPDX-License-Identifier: GPL-2.0-or-later
"""The package manager's library alone, doing what a collection does: the floor of the figures.

Usage: bare.py ROOT            ROOT is a system as the generator makes it

Prints one figure a line as "name<TAB>value<TAB>unit". File lists are not loaded, as in a collection.
"""
import os
import resource
import sys
import time

START = time.perf_counter()

import dnf                      # noqa: E402  the import is part of what is measured
import dnf.conf                 # noqa: E402
import dnf.rpm                  # noqa: E402
import hawkey                   # noqa: E402
import libdnf.conf              # noqa: E402
import rpm                      # noqa: E402


class Base(dnf.Base):
    """A base that leaves the file lists alone."""

    def _add_repo_to_sack(self, repo):
        repo.load()
        self._sack.load_repo(repo._repo, build_cache=True, load_filelists=False,
                             load_presto=False, load_updateinfo=False)


def configure(root):
    main_file = os.path.join(root, 'etc/yum/yum.conf')
    if not os.path.exists(main_file):
        main_file = os.path.join(root, 'etc/yum.conf')
    conf = dnf.conf.Conf()
    if rpm.expandMacro('%{_dbpath}').startswith(os.path.expanduser('~')):
        rpm.addMacro('_dbpath', '/var/lib/rpm')
    conf.installroot = root
    conf.config_file_path = main_file
    conf.read(main_file, priority=dnf.conf.PRIO_MAINCONFIG)
    conf.releasever = conf.releasever or dnf.rpm.detect_releasever(root) or ''
    conf.substitutions.update_from_etc('/', varsdir=conf.varsdir)
    conf.reposdir = [root + '/etc/yum.repos.d', root + '/etc/yum/repos.d']
    conf.cachedir = root + '/var/cache/bare'
    conf.persistdir = root + '/var/lib/bare'
    conf.logdir = root + '/var/log/bare'
    for directory in (conf.cachedir, conf.persistdir, conf.logdir):
        os.makedirs(directory, exist_ok=True)
    return conf


def read_fields(package, installed):
    """What the table shows of a package and what its kind is told from."""
    epoch = package.epoch
    version = package.version + '-' + package.release
    if epoch:
        version = '%d:%s' % (epoch, version)
    return (package.name, package.arch, version, 'installed' if installed else package.reponame,
            package.installsize if installed else package.downloadsize, package.summary,
            package.buildtime, package.group)


def main(root):
    base = Base(conf=configure(root))
    base.read_all_repos()
    base.fill_sack(load_system_repo=True, load_available_repos=True)
    loaded = time.perf_counter()
    rows = [read_fields(p, False) for p in base.sack.query().upgrades().latest()]
    installed = base.sack.query(flags=hawkey.IGNORE_EXCLUDES).installed()
    rows += [read_fields(p, True) for p in installed]
    available = base.sack.query().available().filterm(latest_per_arch_by_priority=True)
    rows += [read_fields(p, False) for p in available]
    done = time.perf_counter()
    peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024
    for name, value, unit in (('bare.load', (loaded - START) * 1000, 'ms'),
                              ('bare.total', (done - START) * 1000, 'ms'),
                              ('bare.rows', len(rows), 'rows'),
                              ('bare.peak', peak, 'MB')):
        print('%s\t%.3f\t%s' % (name, value, unit))


if __name__ == '__main__':
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(os.path.abspath(sys.argv[1]))
