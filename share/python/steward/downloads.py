# SPDX-License-Identifier: GPL-2.0-or-later
"""Downloads single files of a repository through the library's own downloader.

Thus mirrors, failover, credentials, proxies, certificates, speed limits and timeouts are those of
the repository's configuration, and a file whose checksum fails is tried on the next mirror.

The list of mirrors is fetched here and not by the downloader, which would try a silent server a
dozen times without a word to the program.
"""

import ctypes
import os
import re

import dnf.conf
import dnf.exceptions
import dnf.repo
import libdnf.conf
import libdnf.error
import libdnf.repo

from steward import repomd
from steward.errors import is_exhausted, text_of
from yum.Errors import NoMoreMirrorsRepoError, RepoError

# What decides how a repository's servers are talked to.
_OPTIONS = (
    'username', 'password', 'proxy', 'proxy_username', 'proxy_password', 'proxy_auth_method',
    'sslcacert', 'sslverify', 'sslclientcert', 'sslclientkey', 'sslverifystatus',
    'proxy_sslcacert', 'proxy_sslverify', 'proxy_sslclientcert', 'proxy_sslclientkey',
    'timeout', 'minrate', 'throttle', 'bandwidth', 'ip_resolve', 'user_agent',
    'max_parallel_downloads', 'max_downloads_per_mirror', 'name',
)
_ABORTED = re.compile(r'Downloading was aborted by LR_CB_ERROR from mirror failure callback\. '
                      r'Original error was: ')
_TIMEOUT = 'Curl error (28)'
_SIGINT = 'Interrupted by a SIGINT signal'
# So many silent mirrors of a list are enough.
_SILENT_MIRRORS = 4
_STOP = 2


class File:
    """What to fetch (`href`, relative to the repository) and where to put it (`path`)."""

    __slots__ = ('href', 'path', 'checksum_type', 'checksum', 'size', 'base')

    def __init__(self, href, path, checksum_type=None, checksum=None, size=0, base=None):
        self.href = href
        self.path = path
        self.checksum_type = checksum_type
        self.checksum = checksum
        self.size = size
        self.base = base


class _Watch(libdnf.repo.PackageTargetCB):
    """Callbacks of one download. Nothing may be raised through the library."""

    def __init__(self, report, patience, failures):
        super().__init__()
        self._report = report
        self._patience = patience
        self._failures = failures
        self._silent = 0
        self.done = 0
        self.problem = None

    def end(self, status, msg):
        return 0

    def progress(self, total, done):
        try:
            if done != self.done:
                self.done = done
                self._report()
        except BaseException as exc:  # pylint: disable=broad-except
            if self.problem is None:
                self.problem = exc
        return 0

    def mirrorFailure(self, msg, url):
        if msg not in self._failures:
            self._failures.append(msg)
        if _TIMEOUT not in msg:
            return 0
        # Waiting for one server several times would multiply the configured timeout.
        self._silent += 1
        return _STOP if self._silent >= self._patience else 0


def interrupted(text):
    """True if `text`, of a failed download, says that a signal broke it off.

    The downloader remembers the signal for good and would refuse every later download of the
    process, so it is made to forget it.
    """
    if _SIGINT not in text:
        return False
    try:
        ctypes.c_int.in_dll(ctypes.CDLL('librepo.so.0'), 'lr_interrupt').value = 0
    except (OSError, ValueError):
        pass
    return True


def join(url, href):
    """The URL of a repository's file.

    The downloader would put the path in front of a query, but in a query that ends in "path=..."
    it belongs to the end.
    """
    return url.rstrip('/') + '/' + href


class Source:
    """Where the files of one repository come from. Made for one round of downloads.

    `what` is what the failures call them.
    """

    def __init__(self, repo, conf, what='metadata'):
        self._repo = repo
        self._conf = conf
        self._what = what
        self._servers = None
        # What a metalink says of repomd.xml, as `repomd.metalink_hashes` gives it.
        self.hashes = []

    @property
    def servers(self):
        """The repository object to download through; its `baseurl` names the servers.

        Only after `find_mirrors` where the repository has a list of mirrors.
        """
        return self._repo if self._servers is None else self._servers

    def list_url(self):
        """The URL of the repository's metalink or mirror list; None if it has neither."""
        return self._repo.metalink or self._repo.mirrorlist or None

    def find_mirrors(self, meter, scratch):
        """Fetches the list of mirrors, if there is one, into the directory `scratch`."""
        url = self.list_url()
        mirrors = list(self._repo.baseurl)
        if url:
            path = os.path.join(scratch, 'mirrors')
            try:
                self._run(self._peer([os.path.dirname(url)]), [File(url, path)], meter, 1)
                mirrors += self._read_mirrors(path)
            except RepoError as exc:
                # Servers named in the configuration itself do without the list.
                if not mirrors:
                    problem = type(exc)(text_of(exc))
                else:
                    problem = None
            else:
                problem = None
            if problem is not None:
                raise problem
        self._servers = self._peer(mirrors)

    def _read_mirrors(self, path):
        with open(path, 'rb') as stream:
            text = stream.read().decode('utf-8', 'replace')
        if text.lstrip().startswith('<'):
            self.hashes, found = self._read_metalink(path)
        else:
            found = [line.strip() for line in text.splitlines()]
        found = [libdnf.conf.ConfigParser.substitute(line, self._conf.substitutions)
                 for line in found if '://' in line and not line.startswith('#')]
        if not found:
            raise RepoError("Failed to download %s for repository '%s': the list of mirrors "
                            'at %s names none' % (self._what, self._repo.id, self.list_url()))
        return found

    def _read_metalink(self, path):
        try:
            return repomd.read_metalink(path)
        except RepoError as exc:
            problem = RepoError("Failed to download %s for repository '%s': %s"
                                % (self._what, self._repo.id, text_of(exc)))
        raise problem

    def _peer(self, urls):
        """A repository object with these servers, which talks to them as the real one would."""
        peer = dnf.repo.Repo(self._repo.id, self._conf)
        for option in _OPTIONS:
            try:
                value = self._repo._get_value(option)
            except RuntimeError:
                # An option without a value, even a default one.
                continue
            peer._set_value(option, value, dnf.conf.PRIO_RUNTIME)
        peer.baseurl = urls
        headers = self._repo.get_http_headers()
        if headers:
            peer.set_http_headers(headers)
        return peer

    def at(self, urls):
        """The same repository, its files elsewhere."""
        made = Source(self._repo, self._conf, self._what)
        made._servers = self._peer(urls)
        return made

    def fetch_url(self, url, path):
        """Downloads one file from anywhere, with the repository's settings. Raises RepoError."""
        self._run(self._peer([os.path.dirname(url)]), [File(url, path)], None, 1)

    def fetch(self, files, meter):
        """Downloads `files` side by side; `meter` gets the sum of their bytes.

        Raises RepoError with the repository, the file and what each mirror said. Whatever is at
        the files' paths then is not to be used.
        """
        if self._servers is None:
            # The servers are known from the configuration, or the downloader finds them.
            self._servers = self._repo
        if any('?' in url for url in self._servers.baseurl):
            self._fetch_by_query(files, meter)
            return
        listed = self.list_url() is not None
        patience = _SILENT_MIRRORS if listed else max(1, len(self._servers.baseurl))
        self._run(self._servers, files, meter, min(patience, _SILENT_MIRRORS))

    def _fetch_by_query(self, files, meter):
        """The same where a server's URL ends in a query that a file's path is appended to."""
        problem = None
        for url in self._servers.baseurl:
            complete = [File(join(url, item.href), item.path, item.checksum_type, item.checksum,
                             item.size) for item in files]
            try:
                self._run(self._servers, complete, meter, 1)
                return
            except RepoError as exc:
                problem = type(exc)(text_of(exc))
        raise problem

    def _run(self, servers, files, meter, patience):
        failures, watches, targets = [], [], []

        def report():
            if meter is not None:
                meter.update(sum(watch.done for watch in watches))

        fatal = None
        try:
            for item in files:
                watch = _Watch(report, patience, failures)
                watches.append(watch)
                kind = libdnf.repo.PackageTarget.checksumType(item.checksum_type or '')
                targets.append(libdnf.repo.PackageTarget(
                    servers._repo, item.href, item.path, kind, item.checksum, item.size, item.base,
                    False, 0, 0, watch))
            libdnf.repo.PackageTarget.downloadPackages(
                libdnf.repo.VectorPPackageTarget(targets), True)
        except (libdnf.error.Error, RuntimeError) as exc:
            fatal = text_of(exc)
            interrupted(fatal)
        for watch in watches:
            if watch.problem is not None:
                raise watch.problem
        for item, target in zip(files, targets):
            error = target.getErr()
            if error is not None and error != 'Already downloaded' \
                    and not error.startswith('Not finished'):
                raise self._failure(os.path.basename(item.href), error, failures)
        if fatal is not None:
            raise self._failure(None, fatal, failures)

    def _failure(self, name, error, failures):
        exhausted = is_exhausted(error) or _ABORTED.search(error) is not None
        error = _ABORTED.sub('', error)
        head = "Failed to download %s for repository '%s': " % (self._what, self._repo.id)
        if name and name not in error:
            head += name + ': '
        lines = [head + error]
        lines += ['  - ' + failure for failure in failures if failure not in error]
        return (NoMoreMirrorsRepoError if exhausted else RepoError)('\n'.join(lines))
