# SPDX-License-Identifier: GPL-2.0-or-later
"""Verifies the signatures of packages before they are installed, and asks for unknown keys.

Which packages are verified and what counts is the library's rule: those of a repository with
`gpgcheck`, against the keys in the package database of the administered system, all signatures and
digests of a package being looked at. The library starts rpm's own checker once a package; here one
run of it judges many. It is told the database, which it would look for elsewhere where rpm's
default is a directory of the user's.
"""

import collections
import logging
import os
import re
import shutil
import subprocess
import tempfile

import hawkey
import rpm

from steward import downloads, keys, system as systems
from steward.errors import text_of
from steward.texts import masked
from yum.Errors import RepoError, YumBaseError

LOGGER = logging.getLogger('dnf')

# What rpm's checker finds, by the numbers of the library.
GOOD, UNKNOWN_KEY, BROKEN, UNTRUSTED, UNSIGNED = range(5)

# The checker's exit status is the number of failures, so there may not be more than it can tell.
_AT_ONCE = 200
_SHOWN = 5
_KEY_ID = re.compile(r'key (?:ID|fingerprint:) ([0-9a-fA-F]+): (?:NOKEY|NOTTRUSTED)\Z')


class Verdict:
    """What is known of one file."""

    __slots__ = ('state', 'keys', 'details')

    def __init__(self, state, missing=(), details=()):
        self.state = state
        # Ids, or ends of ids, of the keys that aren't known.
        self.keys = missing
        self.details = details


def verify(paths, root):
    """The Verdict on each of the package files, against the keys of the system below `root`."""
    found = []
    for start in range(0, len(paths), _AT_ONCE):
        part = paths[start:start + _AT_ONCE]
        verdicts, status = _run(part, root)
        if len(part) > 1 and (status < 0 or (status and all(verdict.state == GOOD
                                                            for verdict in verdicts))):
            # One of them has failed without a word, or ended the checker.
            verdicts = [_alone(path, root) for path in part]
        elif len(part) == 1:
            verdicts = [_settled(verdicts[0], status)]
        found += verdicts
    return found


def _alone(path, root):
    verdicts, status = _run([path], root)
    return _settled(verdicts[0], status)


def _settled(verdict, status):
    if status and verdict.state == GOOD or status < 0 or status >= 2:
        return Verdict(BROKEN, (), ('rpmkeys ended with status %d' % status,))
    return verdict


def _run(paths, root):
    """(verdicts, exit status) of one run of rpm's checker."""
    program = shutil.which('rpmkeys')
    if program is None:
        raise YumBaseError('The signatures of packages cannot be checked: there is no rpmkeys')
    # Numbers for names: what a repository calls a file could pass for a line of the report.
    directory = tempfile.mkdtemp(prefix='vok-signatures-')
    try:
        for number, path in enumerate(paths):
            os.symlink(os.path.abspath(path), os.path.join(directory, str(number)))
        child = subprocess.Popen(
            ['rpmkeys', '--checksig', '--root', root or '/', '--verbose',
             '--define=_dbpath ' + rpm.expandMacro('%{_dbpath}'),
             '--define=_pkgverify_level signature', '--define=_pkgverify_flags 0x0']
            + [str(number) for number in range(len(paths))],
            executable=program, env=dict(os.environ, LC_ALL='C'), cwd=directory,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        report, complaints = child.communicate()
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    for line in complaints.decode('utf-8', 'replace').splitlines():
        LOGGER.info('rpmkeys: %s', masked(line))
    return _verdicts(report.decode('utf-8', 'replace'), len(paths)), child.returncode


def _verdicts(report, count):
    lines = {}
    current = None
    for line in report.split('\n'):
        if line and not line[0].isspace():
            number = line[:-1]
            current = None
            if line.endswith(':') and number.isdecimal() and int(number) < count:
                current = lines.setdefault(int(number), [])
        elif line and current is not None:
            current.append(line.strip())
    return [_verdict(lines.get(number)) for number in range(count)]


def _verdict(lines):
    """Judges the report on one file as the library does."""
    if not lines:
        return Verdict(BROKEN, (), ('it cannot be read as a package',))
    missing, states, details = [], set(), []
    for line in lines:
        if ': BAD' in line:
            details.append(line.split(': BAD')[0])
            states.add(BROKEN)
        elif line.endswith(': NOKEY'):
            states.add(UNKNOWN_KEY)
        elif line.endswith(': NOTTRUSTED'):
            states.add(UNTRUSTED)
        elif line.endswith(': NOTFOUND'):
            states.add(UNSIGNED)
        elif not line.endswith(': OK'):
            details.append(line)
            states.add(BROKEN)
        found = _KEY_ID.search(line)
        if found and found.group(1).lower() not in missing:
            missing.append(found.group(1).lower())
    for state in (BROKEN, UNTRUSTED, UNKNOWN_KEY, UNSIGNED):
        if state in states:
            return Verdict(state, tuple(missing), tuple(details))
    return Verdict(GOOD)


def check(system, packages):
    """Verifies each package that is to be, and asks for the keys that are missing.

    Raises YumBaseError with each package that fails and why. A key is imported only after the
    user's yes, and only one that a package of this transaction needs.
    """
    _Check(system, packages).run()


class _Package:
    """A package to verify."""

    def __init__(self, package, repo):
        self.path = package.localPkg()
        self.name = os.path.basename(self.path)
        self.repo = repo
        self.title = '%s (repository %s)' % (self.name, repo.id) if repo is not None \
            else self.path
        self.verdict = None


class _Check:
    """One check, from the verdicts to the keys and back."""

    def __init__(self, system, packages):
        self._system = system
        self._root = system.conf.installroot
        self._packages = []
        self._problems = collections.OrderedDict()
        for package in packages:
            if package.reponame == hawkey.CMDLINE_REPO_NAME:
                if system.conf.localpkg_gpgcheck:
                    self._packages.append(_Package(package, None))
                continue
            repo = system.base.repos[package.reponame]
            if repo.gpgcheck:
                self._packages.append(_Package(package, repo))

    def run(self):
        lacking = self._verify(self._packages)
        if not lacking:
            self._settle()
            return
        needed = self._find_keys(lacking)
        # A transaction that fails anyway is no reason to trust a key.
        self._settle()
        for key, users in needed:
            self._import(key, users)
        for package in self._verify(lacking):
            self._failed(package, 'its key is still not known after it was imported')
        self._settle()

    def _failed(self, package, why):
        self._problems.setdefault(package.title, why)

    def _settle(self):
        if self._problems:
            raise YumBaseError(masked('%s cannot be trusted:\n%s' % (
                'A package' if len(self._problems) == 1 else 'Packages',
                '\n'.join('%s: %s' % problem for problem in self._problems.items()))))

    def _verify(self, packages):
        """Notes the packages that no key helps, and gives back those that lack a key."""
        lacking = []
        for package, verdict in zip(packages, verify([package.path for package in packages],
                                                     self._root)):
            package.verdict = verdict
            if verdict.state == UNSIGNED:
                self._failed(package, 'it is not signed')
            elif verdict.state == BROKEN:
                self._failed(package, _damage(package.path, verdict))
            elif verdict.state != GOOD:
                if package.repo is None or not package.repo.gpgkey:
                    self._failed(package, 'it is signed with the key %s, which is not known, and '
                                 'no key (gpgkey) is configured for it'
                                 % _names(verdict.keys))
                else:
                    lacking.append(package)
        return lacking

    # Keys

    def _find_keys(self, packages):
        """[(key, packages that need it)] in the order of need."""
        offers, needed = {}, collections.OrderedDict()
        for package in packages:
            repo = package.repo
            if repo.id not in offers:
                offers[repo.id] = self._offered(repo)
            offered, troubles = offers[repo.id]
            for name in package.verdict.keys or ('',):
                matching = [key for key in offered if name and key.made(name)]
                usable = [key for key in matching if not key.revoked]
                if usable:
                    _, users = needed.setdefault(usable[0].fingerprint, (usable[0], []))
                    users.append(package)
                elif matching:
                    self._failed(package, 'it is signed with the key %s, which its owner has '
                                 'revoked' % matching[0])
                elif troubles:
                    self._failed(package, 'it is signed with the key %s, which is not known, and: '
                                 '%s' % (_names([name]), '; '.join(troubles)))
                else:
                    self._failed(package, 'it is signed with the key %s, which is not known and '
                                 'none of those of its repository: %s'
                                 % (_names([name]), ', '.join(map(str, offered))))
        return list(needed.values())

    def _offered(self, repo):
        """(keys, troubles): what the repository's configuration says its keys are."""
        found, troubles = [], []
        broken_off = None
        directory = tempfile.mkdtemp(prefix='vok-keys-')
        try:
            for url in repo.gpgkey:
                try:
                    found += keys.read(self._fetched(repo, url, directory), url)
                except (RepoError, YumBaseError, OSError) as exc:
                    troubles.append(text_of(exc))
                    if downloads.interrupted(troubles[-1]):
                        broken_off = troubles[-1]
                        break
        finally:
            shutil.rmtree(directory, ignore_errors=True)
        if broken_off is not None:
            raise KeyboardInterrupt(broken_off)
        return found, troubles

    def _fetched(self, repo, url, directory):
        """The path of a file with what is at `url`."""
        path = url[len('file://'):] if url.startswith('file://') else url
        if path.startswith('/'):
            # The configuration is the administered system's, and so are the files that it names.
            below = systems.below_root(path)
            return below if os.path.exists(below) else path
        path = os.path.join(directory, 'key')
        downloads.Source(repo, self._system.conf, 'the key').fetch_url(url, path)
        return path

    def _import(self, key, users):
        shown = ['Package: %s' % package.title for package in users[:_SHOWN]]
        if len(users) > _SHOWN:
            shown.append('and %d more' % (len(users) - _SHOWN))
        if not keys.trusts('\n'.join(['A key that is not known yet signs:'] + shown), key):
            raise YumBaseError(masked('The key %s was refused, and it signs:\n%s' % (
                key, '\n'.join(package.title for package in users))))
        transaction = rpm.TransactionSet(self._root)
        try:
            failed = transaction.pgpImportPubkey(key.data)
        finally:
            transaction.closeDB()
        if failed:
            raise YumBaseError(masked('The key %s could not be imported into the package database '
                                      'of %s' % (key, self._root)))
        LOGGER.info('Imported the key %s', masked(str(key)))


def _names(ids):
    return ', '.join('0x' + name.upper() for name in ids if name) or '(unknown)'


def _damage(path, verdict):
    if not os.path.exists(path):
        return 'its file does not exist'
    return 'it is damaged or was changed after it was signed (%s)' % ', '.join(verdict.details)
