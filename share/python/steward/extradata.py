# SPDX-License-Identifier: GPL-2.0-or-later
"""File lists and change logs of repository packages, read from the repositories' own files.

Each of these files is read once, package by package, into a spool keyed by the package's checksum.
File lists are stored as the text that is shown and searched; change logs as the file's own markup,
which is parsed when a package is looked at.
"""

import html
import logging
import os
import re
import shutil
import tempfile
import xml.etree.ElementTree as ElementTree

import dnf.lock
import dnf.exceptions

from steward import compression, downloads, lock, repomd
from steward.errors import is_exhausted, text_of
from steward.spool import Spool
from yum.Errors import NoMoreMirrorsRepoError, RepoError, YumBaseError

LOGGER = logging.getLogger('dnf')

_END = b'</package>'
_PACKAGE = re.compile(rb'<package\s[^>]*?\bpkgid="([0-9a-fA-F]{16,})"')
_FILE = re.compile(rb'<file(?: type="[a-z]*")?>([^<]*)</file>')
_COMMENT = re.compile(rb'<!--.*?-->', re.DOTALL)


class ExtraData:
    """The extra data of one System's repositories."""

    def __init__(self, system):
        self._repos = [repo for repo in system.base.repos.iter_enabled() if repo.metadata]
        self._conf = system.conf
        self._cachedir = system.conf.cachedir
        self._meters = system.meters
        self._files = None
        self._changes = None

    def load_files(self):
        """Fetches and reads the file lists of all repositories. Raises YumBaseError."""
        self._files = self._load('filelists', 'filelists.xml', _file_text)

    def load_changes(self):
        """The same for the change logs."""
        self._changes = self._load('other', 'other.xml', bytes)

    def file_text(self, package):
        """All paths of the package, sorted and unique, joined by newlines; b'' for none."""
        key = package.key() if self._files is not None else None
        return self._files.get(key) if key is not None else b''

    def changes(self, package):
        """(time, author, text) of each change, newest first."""
        key = package.key() if self._changes is not None else None
        data = self._changes.get(key) if key is not None else b''
        return _parse_changes(data) if data else []

    def close(self):
        for spool in (self._files, self._changes):
            if spool is not None:
                spool.close()
        self._files = self._changes = None

    def _load(self, kind, label, convert):
        try:
            paths = []
            with dnf.lock.build_metadata_lock(self._cachedir, True):
                for repo in self._repos:
                    try:
                        path = fetch(repo, self._conf, self._meters, kind, label)
                    except RepoError as exc:
                        if not repo.skip_if_unavailable:
                            raise
                        LOGGER.warning('%s', text_of(exc))
                        continue
                    if path is not None:
                        paths.append((repo, path))
            return self._read(paths, convert)
        except dnf.exceptions.LockError as exc:
            problem = YumBaseError(text_of(lock.refused(exc, 'The metadata cache')))
        except RepoError as exc:
            text = text_of(exc)
            problem = NoMoreMirrorsRepoError(text) if is_exhausted(text) else YumBaseError(text)
        raise problem

    def _read(self, paths, convert):
        spool = Spool(self._cachedir)
        try:
            for repo, path in paths:
                total = max(1, os.path.getsize(path))
                self._meters.read(0, total, repo.id)
                for key, text in packages(path, lambda done, name=repo.id, size=total:
                                          self._meters.read(done, size, name)):
                    spool.add(key, convert(text))
                spool.finish()
                self._meters.read(total, total, repo.id)
        except BaseException:
            spool.close()
            raise
        return spool


def fetch(repo, conf, meters, kind, label):
    """The path of the repository's metadata file, fetched if need be; None if it has none."""
    directory = repo._repo.getCachedir()
    record = repomd.read(os.path.join(directory, 'repodata', 'repomd.xml')).get(kind)
    if record is None:
        return None
    path = os.path.join(directory, record.href)
    if repomd.file_matches(path, record.checksum_type, record.checksum):
        return path
    staging = tempfile.mkdtemp(prefix='vok-fetch-', dir=directory)
    try:
        fetched = os.path.join(staging, os.path.basename(record.href))
        meter = meters.download(repo.id, label, record.size)
        source = downloads.Source(repo, conf)
        source.find_mirrors(None, staging)
        source.fetch([downloads.File(record.href, fetched, record.checksum_type,
                                     record.checksum, record.size, record.base)], meter)
        meter.end(os.path.getsize(fetched))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        os.rename(fetched, path)
    finally:
        shutil.rmtree(staging, ignore_errors=True)
    return path


def packages(path, report=None):
    """Yields (key, markup) of each package of a metadata file, `markup` without its end tag."""
    rest = b''
    first = True
    for piece in compression.pieces(path, report):
        rest += piece
        if first and len(rest) >= 100:
            first = False
            head = rest[:100].lower()
            if b'encoding=' in head and b'utf-8' not in head:
                raise YumBaseError('%s is not encoded in UTF-8' % path)
        parts = rest.split(_END)
        rest = parts.pop()
        for part in parts:
            if b'<!--' in part:
                part = _COMMENT.sub(b'', part)
            match = _PACKAGE.search(part)
            if match is not None:
                yield int(match.group(1)[:16], 16), part[match.start():]


def _file_text(markup):
    """The paths in a package's markup as sorted text."""
    found = _FILE.findall(markup)
    if len(found) != markup.count(b'<file'):
        found = _parse_files(markup)
    elif b'&' in markup:
        found = [html.unescape(path.decode('utf-8', 'replace')).encode('utf-8')
                 if b'&' in path else path for path in found]
    found.sort()
    if len(set(found)) < len(found):
        found = sorted(set(found))
    return b'\n'.join(found)


def _element(markup):
    """The package's element; None where even a full parser finds no sense in it."""
    try:
        return ElementTree.fromstring(
            b'<?xml version="1.0" encoding="UTF-8"?>' + markup + _END)
    except ElementTree.ParseError:
        return None


def _parse_files(markup):
    element = _element(markup)
    if element is None:
        return []
    return [(item.text or '').encode('utf-8') for item in element if item.tag == 'file']


def _parse_changes(markup):
    element = _element(markup)
    if element is None:
        return []
    found = []
    for item in element:
        if item.tag == 'changelog':
            date = item.get('date', '')
            found.append((int(date) if date.isdigit() else 0, item.get('author', ''),
                          item.text or ''))
    # Makers write them oldest first; those of one day stay in their order.
    found.reverse()
    found.sort(key=lambda change: -change[0])
    return found
