# SPDX-License-Identifier: GPL-2.0-or-later
"""Brings the files of packages into their places, all side by side in one batch.

A file is loaded under another name and gets its own only when it is whole and its checksum right.
What is in its place already is checked in the same way, so a file that another program left there
half or changed is loaded again.
"""

import logging
import os
import re
import shutil
import tempfile
import time

import dnf.exceptions
import dnf.lock
import hawkey
import libdnf.error
import libdnf.repo

from steward import downloads, lock, meters, repomd
from steward.errors import text_of
from steward.texts import masked
from yum.Errors import RepoError, YumBaseError

LOGGER = logging.getLogger('dnf')

_STAGING = '.vok-fetch-'
# So many silent mirrors of a list are enough.
_SILENT_MIRRORS = 4
# What the library takes for an answer: give this file up, and leave the others alone.
_GIVE_UP = 1

_TIMEOUT = 'Curl error (28)'
_WRITING = 'Curl error (23)'
_CHECKSUM = "checksum doesn't match"
_LENGTH = 'reported file Content-Length'
_STATUS = re.compile(r'Status code: (\d+) for ')
_DETAIL = re.compile(r'\[(.*)\]\s*\Z', re.DOTALL)
_STATUSES = {401: 'the server asks for a name and a password', 403: 'the server refuses access',
             404: 'not found on the server', 410: 'not found on the server',
             407: 'the proxy asks for a name and a password'}
_CURL = {5: 'the name of the proxy is unknown', 6: 'the name of the server is unknown',
         7: 'the server cannot be reached', 18: 'the file came truncated',
         28: 'the server did not answer in time', 37: 'the file cannot be read',
         52: 'the server gave no answer', 56: 'the connection broke',
         60: "the server's certificate is not trusted"}


def identity(package):
    """(checksum type, hex) of the package's file as its metadata says; (None, None) without."""
    checksum = package.chksum
    if checksum is None:
        return None, None
    return hawkey.chksum_name(checksum[0]), checksum[1].hex()


def is_whole(package, path):
    """True if `path` is there and as long as the package's file."""
    try:
        return os.path.getsize(path) == package.downloadsize
    except OSError:
        return False


def is_right(package, path):
    """True if `path` is the package's file, whole and unchanged."""
    if not is_whole(package, path):
        return False
    kind, checksum = identity(package)
    return kind not in repomd.DIGESTS or repomd.file_matches(path, kind, checksum)


def is_local(package, repo):
    """True if the package's file is used where its repository has it."""
    return repo._repo.isLocal() and (not package.baseurl
                                     or package.baseurl.startswith('file://'))


def fetch(system, packages):
    """Brings the file of each package to `localPkg()`, where it isn't there already.

    Raises YumBaseError with each file that failed and why; what has come stays for the next try.
    Raises KeyboardInterrupt when the user broke the download off by a signal.
    """
    wanted = _missing(system, packages)
    if not wanted:
        return
    try:
        with dnf.lock.build_download_lock(system.conf.cachedir, True):
            # Another program may have loaded some until it gave up the lock.
            wanted = [job for job in wanted if not is_right(job.package, job.path)]
            if wanted:
                _Fetch(system, wanted).run()
            return
    except dnf.exceptions.LockError as exc:
        problem = YumBaseError(text_of(lock.refused(exc, 'The package cache')))
    raise problem


def _missing(system, packages):
    jobs, wrong, paths = {}, [], []
    for package in packages:
        if package.reponame == hawkey.CMDLINE_REPO_NAME:
            continue
        repo = system.base.repos.get(package.reponame)
        path = package.localPkg() if repo is not None else None
        if path is None:
            wrong.append('%s: its repository is not in use' % package)
        elif is_local(package, repo):
            if not is_right(package, path):
                wrong.append('%s (repository %s): %s %s'
                             % (os.path.basename(path), repo.id, path, _disagreement(path)))
        else:
            paths.append(path)
            if not is_right(package, path):
                jobs[path] = _Job(package, repo, path)
    if wrong:
        raise _problem('Some packages of local repositories cannot be used', wrong)
    if jobs and system.conf.cacheonly:
        raise _problem('Nothing may be downloaded (cacheonly), but the cache lacks',
                       [job.title for job in jobs.values()])
    if system.base.transaction:
        # Thus the library removes them after the transaction, unless they are to be kept.
        system.base._add_tempfiles(paths)
    return list(jobs.values())


def _disagreement(path):
    return 'is not what the metadata says (size or checksum)' if os.path.exists(path) \
        else 'does not exist'


def _problem(head, lines):
    return YumBaseError(masked('%s:\n%s' % (head, '\n'.join(lines))))


def explain(text, url):
    """What a server's failure was, in plain words, with the URL."""
    found = _STATUS.search(text)
    if found:
        status = int(found.group(1))
        words = _STATUSES.get(status, 'the server failed')
        return '%s: %s (status %d)' % (url, words, status)
    if _CHECKSUM in text:
        return '%s: the file has a wrong checksum' % url
    if _LENGTH in text:
        return '%s: the file has a wrong size' % url
    found = re.search(r'Curl error \((\d+)\)', text)
    if found and int(found.group(1)) in _CURL:
        detail = _DETAIL.search(text)
        words = _CURL[int(found.group(1))]
        return '%s: %s%s' % (url, words, ' (%s)' % detail.group(1) if detail else '')
    return text if url in text else '%s: %s' % (url, text)


class _Patience:
    """What one repository's servers have been like, for all its files."""

    def __init__(self, servers):
        self.servers = max(1, servers)
        self._success = 0.0
        self.silent = set()

    @property
    def limit(self):
        return min(self.servers, _SILENT_MIRRORS)

    @property
    def exhausted(self):
        """Waiting for silent servers once more for each file would take forever."""
        return len(self.silent) >= self.limit

    def success(self):
        self._success = time.monotonic()
        self.silent.clear()

    def timeout(self, url, href, since):
        """A server said nothing from `since` on."""
        if self._success < since:
            self.silent.add(url[:-len(href)] if url.endswith(href) else url)


class _Job:
    """One file on its way. Failures are gathered over all the servers that it was asked of."""

    def __init__(self, package, repo, path):
        self.package = package
        self.repo = repo
        self.path = path
        self.name = os.path.basename(path)
        self.title = '%s (repository %s)' % (self.name, repo.id)
        self.size = package.downloadsize
        self.checksum = identity(package)
        self.staged = None
        self.meter = None
        self.source = None
        self.patience = None
        # URLs of servers that end in a query, which the library can't choose among.
        self.queries = []
        self.failures = []
        self.done = False
        # Why it isn't worth another try, if so.
        self.fatal = None

    def failed(self, text):
        if text not in self.failures:
            self.failures.append(text)

    def report(self):
        reasons = [self.fatal] if self.fatal else []
        reasons += [failure for failure in self.failures if failure not in reasons]
        if len(reasons) == 1:
            return '%s: %s' % (self.title, reasons[0])
        return '\n'.join([self.title + ':'] + ['  - ' + reason for reason in reasons])


class _Watch(libdnf.repo.PackageTargetCB):
    """Callbacks of one file. Nothing may be raised through the library."""

    def __init__(self, fetch, job, href):
        super().__init__()
        self._fetch = fetch
        self._job = job
        self._href = href
        self._urls = set()
        self._failures = 0
        self._silences = 0
        self._since = None

    def _guarded(self, call, *args):
        if self._fetch.raised is not None:
            return _GIVE_UP
        try:
            return call(*args)
        except BaseException as exc:  # pylint: disable=broad-except
            self._fetch.raised = exc
            return _GIVE_UP

    def progress(self, total, done):
        return self._guarded(self._progress, done)

    def _progress(self, done):
        job = self._job
        if self._since is None:
            self._since = time.monotonic()
        if job.patience.exhausted:
            job.failed('not tried any longer, as the server does not answer')
            return _GIVE_UP
        if self._fetch.full:
            job.fatal = 'not tried, there is no space for it'
            return _GIVE_UP
        job.meter.progress(done)
        return 0

    def mirrorFailure(self, msg, url):
        return self._guarded(self._mirror_failure, msg or '', url or '')

    def _mirror_failure(self, text, url):
        job = self._job
        if job.fatal:
            return _GIVE_UP
        if _WRITING in text or self._fetch.lacks_space(job):
            self._fetch.full = True
            job.fatal = self._fetch.no_space(job)
            job.meter.fail(job.fatal)
            return _GIVE_UP
        reason = explain(text, url)
        job.failed(reason)
        job.meter.fail(reason)
        since, self._since = self._since, time.monotonic()
        self._urls.add(url)
        self._failures += 1
        if _TIMEOUT in text:
            self._silences += 1
            job.patience.timeout(url, self._href, since or 0.0)
            if self._silences >= job.patience.limit or job.patience.exhausted:
                return _GIVE_UP
        # A second try of one server helps against chance only.
        settled = any(sign in text for sign in (_CHECKSUM, _LENGTH, _TIMEOUT)) \
            or re.search(r'Status code: 4\d\d', text)
        if settled and len(self._urls) >= job.patience.servers:
            return _GIVE_UP
        return _GIVE_UP if 0 < self._fetch.retries < self._failures else 0

    def end(self, status, msg):
        self._guarded(self._end, msg)
        return 0

    def _end(self, msg):
        job = self._job
        if msg is None:
            self._fetch.finished(job)
        elif not msg.startswith('Not finished') and not job.failures and not job.fatal:
            job.failed(msg)


class _Fetch:
    """One batch."""

    def __init__(self, system, jobs):
        self._system = system
        self._jobs = jobs
        self._staging = {}
        # By repository, and by server where that isn't one of the repository's own choice.
        self._sources = {}
        self._patiences = {}
        self.retries = system.conf.retries
        # True once the disk was full.
        self.full = False
        self.raised = None

    def run(self):
        try:
            self._prepare()
            batch = meters.Apply.batch(len(self._jobs), sum(job.size for job in self._jobs))
            try:
                for job in self._jobs:
                    job.meter = batch.meter(job.name, job.repo.id, job.size)
                self._download()
            finally:
                batch.close()
        finally:
            for path in self._staging.values():
                shutil.rmtree(path, ignore_errors=True)
        failed = [job for job in self._jobs if not job.done]
        if failed:
            raise _problem('%d of %d packages could not be downloaded'
                           % (len(failed), len(self._jobs)), [job.report() for job in failed])

    # Preparation

    def _prepare(self):
        """Finds the servers and makes the directories."""
        for job in self._jobs:
            job.staged = os.path.join(self._stage(os.path.dirname(job.path)), job.name)
            base = job.package.baseurl or None
            if (job.repo.id, base) not in self._sources:
                self._sources[job.repo.id, base] = self._source(job.repo, base,
                                                                os.path.dirname(job.staged))
            job.source, job.fatal = self._sources[job.repo.id, base]
            if job.source is not None:
                urls = list(job.source.servers.baseurl)
                job.patience = self._patience(job.repo.id, base, len(urls))
                job.queries = urls if any('?' in url for url in urls) else []

    def _patience(self, repoid, base, servers):
        """What is known of a repository's servers, or of one of them."""
        return self._patiences.setdefault((repoid, base), _Patience(servers))

    def _stage(self, directory):
        """A directory beside the packages' final places, so that renaming suffices."""
        if directory not in self._staging:
            try:
                os.makedirs(directory, exist_ok=True)
                for name in os.listdir(directory):
                    if name.startswith(_STAGING):
                        shutil.rmtree(os.path.join(directory, name), ignore_errors=True)
                self._staging[directory] = tempfile.mkdtemp(prefix=_STAGING, dir=directory)
            except OSError as exc:
                problem = YumBaseError('Packages cannot be stored in %s: %s'
                                       % (directory, exc.strerror))
            else:
                problem = None
            if problem is not None:
                raise problem
        return self._staging[directory]

    def _source(self, repo, base, scratch):
        """(source, None), or (None, why there is none)."""
        source = downloads.Source(repo, self._system.conf, 'the list of mirrors')
        if base is not None:
            return source.at([base]), None
        try:
            if source.list_url():
                source.find_mirrors(None, scratch)
        except RepoError as exc:
            text = text_of(exc)
        else:
            return source, None
        if downloads.interrupted(text):
            raise KeyboardInterrupt(text)
        return None, text

    # Download

    def _download(self):
        pending = [job for job in self._jobs if not job.fatal]
        while pending:
            self._round(pending)
            pending = [job for job in pending
                       if not job.done and not job.fatal and job.queries]

    def _round(self, jobs):
        """Tries each file; with servers that the library can't choose among, the next of them."""
        watches, targets = [], []
        fatal = None
        for job in jobs:
            href, base = job.package.location, job.package.baseurl
            if job.queries:
                server = job.queries.pop(0)
                job.patience = self._patience(job.repo.id, server, 1)
                href, base = downloads.join(server, href), None
            watch = _Watch(self, job, href)
            watches.append(watch)
            kind, checksum = job.checksum
            targets.append(libdnf.repo.PackageTarget(
                job.source.servers._repo, href, job.staged,
                libdnf.repo.PackageTarget.checksumType(kind or ''), checksum, job.size, base,
                False, 0, 0, watch))
        try:
            libdnf.repo.PackageTarget.downloadPackages(
                libdnf.repo.VectorPPackageTarget(targets), False)
        except (libdnf.error.Error, RuntimeError) as exc:
            fatal = text_of(exc)
        if self.raised is not None:
            raise self.raised
        if fatal is not None:
            if downloads.interrupted(fatal):
                raise KeyboardInterrupt(fatal)
            for job in jobs:
                if not job.done:
                    job.failed(fatal)
        for job, target in zip(jobs, targets):
            error = target.getErr()
            if not job.done and not job.failures and not job.fatal:
                job.failed(error or 'not finished')

    def finished(self, job):
        """The library has the file and has found its checksum right."""
        if not is_whole(job.package, job.staged):
            job.failed('the file has a wrong size')
            return
        try:
            os.replace(job.staged, job.path)
        except OSError as exc:
            job.fatal = '%s: %s' % (job.path, exc.strerror)
            return
        job.done = True
        job.patience.success()
        job.meter.end(job.size)

    # Space

    def lacks_space(self, job):
        """True if the disk has no room for what is missing of the file."""
        try:
            there = os.stat(job.staged).st_size
            system = os.statvfs(os.path.dirname(job.path))
        except OSError:
            return False
        return 0 <= system.f_bavail * system.f_frsize < min(job.size - there, system.f_frsize)

    @staticmethod
    def no_space(job):
        return 'No space left on device in the directory %s, which needs %d bytes for it' \
            % (os.path.dirname(job.path), job.size)
