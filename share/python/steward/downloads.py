# SPDX-License-Identifier: GPL-2.0-or-later
"""Downloads single files of a repository through the library's own downloader.

Thus mirrors, failover, credentials, proxies, certificates, speed limits and timeouts are those of
the repository's configuration, and a file whose checksum fails is tried on the next mirror.
"""

import os

import libdnf.error
import libdnf.repo

from steward.errors import text_of
from yum.Errors import RepoError


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

    def __init__(self, report, failures):
        super().__init__()
        self._report = report
        self._failures = failures
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
        self._failures.append(msg)
        return 0


def fetch(repo, files, meter):
    """Downloads `files` of `repo` side by side; `meter` gets the sum of their bytes.

    Raises RepoError with the repository, the file and what each mirror said. Whatever is at the
    files' paths then is not to be used.
    """
    failures = []
    watches = []

    def report():
        if meter is not None:
            meter.update(sum(watch.done for watch in watches))

    targets = []
    for item in files:
        watch = _Watch(report, failures)
        watches.append(watch)
        kind = libdnf.repo.PackageTarget.checksumType(item.checksum_type or '')
        targets.append(libdnf.repo.PackageTarget(
            repo._repo, item.href, item.path, kind, item.checksum, item.size, item.base, False,
            0, 0, watch))
    fatal = None
    try:
        libdnf.repo.PackageTarget.downloadPackages(
            libdnf.repo.VectorPPackageTarget(targets), True)
    except (libdnf.error.Error, RuntimeError) as exc:
        fatal = text_of(exc)
    for watch in watches:
        if watch.problem is not None:
            raise watch.problem
    for item, target in zip(files, targets):
        error = target.getErr()
        if error is not None and error != 'Already downloaded' \
                and not error.startswith('Not finished'):
            raise RepoError(_failure(repo, os.path.basename(item.href), error, failures))
    if fatal is not None:
        raise RepoError(_failure(repo, None, fatal, failures))


def fetch_url(repo, url, path):
    """Downloads one absolute URL with the repository's options, without failover."""
    descriptor = os.open(path, os.O_CREAT | os.O_TRUNC | os.O_RDWR, 0o644)
    try:
        repo._repo.downloadUrl(url, descriptor)
    except (libdnf.error.Error, RuntimeError) as exc:
        problem = RepoError(_failure(repo, None, text_of(exc), ()))
    else:
        return
    finally:
        os.close(descriptor)
    raise problem


def _failure(repo, name, error, failures):
    head = "Failed to download metadata for repository '%s'" % repo.id
    lines = ['%s: %s' % (head, error if name is None or name in error
                         else '%s: %s' % (name, error))]
    for failure in failures:
        line = '  - %s' % failure
        if failure not in error and line not in lines:
            lines.append(line)
    return '\n'.join(lines)
