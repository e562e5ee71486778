# SPDX-License-Identifier: GPL-2.0-or-later
"""Brings the cached metadata of one repository up to date, fetching only what a collection needs.

The library's own loader always fetches the file lists, which are by far the largest part. This one
fetches the files one by one into the same cache directory and layout, and has the library load the
result from there, which also checks the signature of repomd.xml.
"""

import os
import shutil
import tempfile

import libdnf.error

from steward import downloads, repomd
from steward.errors import text_of
from yum.Errors import RepoError

_STAGING = 'vok-fetch-'


class Refresh:
    """The steps for one repository: `check`, then `download`, both under the metadata lock.

    `check` asks the server only when the cache is missing, incomplete, expired or `ask` is true;
    with None as `ask` an expired cache is good enough.
    """

    def __init__(self, repo, conf, meters, ask=False, file_lists=False):
        self._repo = repo
        self._source = downloads.Source(repo, conf)
        self._meters = meters
        self._ask = ask
        self._cache_only = conf.cacheonly
        self._directory = repo._repo.getCachedir()
        self._staging = None
        self._records = None
        self._kinds = ['primary', 'updateinfo', 'modules']
        if repo.deltarpm:
            self._kinds.append('prestodelta')
        if file_lists:
            self._kinds.append('filelists')

    def check(self):
        """True if `download` has something to fetch; else the metadata is loaded and current."""
        cached = self._load_cache()
        if self._cache_only:
            if not cached:
                raise RepoError("Cache-only enabled but no cache for '%s'" % self._repo.id)
            return False
        if cached and (self._ask is None or not self._ask and not self._expired()):
            return False
        self._remove_leftovers()
        os.makedirs(self._directory, exist_ok=True)
        self._staging = tempfile.mkdtemp(prefix=_STAGING, dir=self._directory)
        os.makedirs(self._staged('repodata'))
        self._fetch_repomd()
        if cached and _same(self._cached('repodata/repomd.xml'),
                            self._staged('repodata/repomd.xml')):
            os.utime(self._repo._repo.getMetadataPath('primary'), None)
            self._load_cache()
            self.close()
            return False
        self._records = self._read_repomd()
        if 'primary' not in self._records:
            raise RepoError("The metadata of repository '%s' lists no packages (no 'primary' in "
                            "repomd.xml)" % self._repo.id)
        return True

    def _read_repomd(self):
        try:
            return repomd.read(self._staged('repodata/repomd.xml'))
        except RepoError as exc:
            problem = RepoError("The metadata of repository '%s' cannot be read: %s"
                                % (self._repo.id, text_of(exc)))
        raise problem

    def download(self):
        """Fetches the files that changed, puts all in place and loads them."""
        groups = self._records.get('group_gz') or self._records.get('group')
        if groups is not None:
            self._fetch('group_gz', [groups])
        self._fetch('primary', [self._records[kind] for kind in self._kinds
                                if kind in self._records])
        self._keep_extra_files()
        # The library reads the age of the metadata off this file, which may be an old one.
        os.utime(self._staged(self._records['primary'].href), None)
        self._install()
        self.close()

    def close(self):
        """Removes what is left of the download. May be called at any time."""
        if self._staging is not None:
            shutil.rmtree(self._staging, ignore_errors=True)
            self._staging = None

    def _cached(self, href):
        return os.path.join(self._directory, href)

    def _staged(self, href):
        return os.path.join(self._staging, 'tree', href)

    def _load_cache(self):
        """True if the library has loaded a cache that holds all that is wanted."""
        handle = self._repo._repo
        if not os.path.exists(self._cached('repodata/repomd.xml')):
            return False
        if not handle.loadCache(False, True) or not handle.getMetadataPath('primary'):
            return False
        try:
            records = repomd.read(self._cached('repodata/repomd.xml'))
        except (OSError, RepoError):
            return False
        wanted = [kind for kind in self._kinds if kind in records]
        groups = records.get('group_gz') or records.get('group')
        hrefs = [records[kind].href for kind in wanted] + ([groups.href] if groups else [])
        return all(os.path.exists(self._cached(href)) for href in hrefs)

    def _expired(self):
        handle = self._repo._repo
        if handle.isExpired():
            return True
        if self._repo.metadata_expire == -1 or not self._repo._check_config_file_age:
            return False
        # A changed repository file may name another server.
        try:
            return os.stat(self._repo.repofile).st_mtime \
                > os.stat(handle.getMetadataPath('primary')).st_mtime
        except (OSError, TypeError):
            return False

    def _remove_leftovers(self):
        try:
            names = os.listdir(self._directory)
        except OSError:
            return
        for name in names:
            if name.startswith(_STAGING):
                shutil.rmtree(self._cached(name), ignore_errors=True)

    def _fetch_repomd(self):
        if self._source.list_url():
            meter = self._meters.download(self._repo.id, 'metalink')
            self._source.find_mirrors(meter, self._staging)
            meter.end()
        target = self._staged('repodata/repomd.xml')
        meter = self._meters.download(self._repo.id, 'repomd.xml')
        hashes = self._source.hashes
        if hashes and hashes[0]:
            self._fetch_verified_repomd(target, hashes, meter)
        else:
            self._source.fetch([downloads.File('repodata/repomd.xml', target)], meter)
        if self._repo.repo_gpgcheck:
            self._source.fetch([downloads.File('repodata/repomd.xml.asc', target + '.asc')], None)
        meter.end(os.path.getsize(target))

    def _fetch_verified_repomd(self, target, hashes, meter):
        name, value = repomd.strongest(hashes[0])
        try:
            self._source.fetch([downloads.File('repodata/repomd.xml', target, name, value)], meter)
            return
        except RepoError as exc:
            problem = type(exc)(text_of(exc))
        # No mirror has the newest one. An older one is good if the metalink still vouches for it.
        if len(hashes) > 1:
            self._source.fetch([downloads.File('repodata/repomd.xml', target)], meter)
            if any(repomd.file_matches(target, *repomd.strongest(older)) for older in hashes[1:]):
                return
        raise problem

    def _fetch(self, kind, records):
        wanted = []
        for record in records:
            target = self._staged(record.href)
            if not self._reuse(record, target):
                wanted.append(downloads.File(record.href, target, record.checksum_type,
                                             record.checksum, record.size, record.base))
        if wanted:
            meter = self._meters.download(self._repo.id, kind,
                                          sum(item.size for item in wanted))
            self._source.fetch(wanted, meter)
            meter.end(sum(os.path.getsize(item.path) for item in wanted))

    def _reuse(self, record, target):
        """Takes over an unchanged file of the old cache, which saves its download."""
        old = self._cached(record.href)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        if not repomd.file_matches(old, record.checksum_type, record.checksum):
            return False
        _link(old, target)
        return True

    def _keep_extra_files(self):
        """File lists and change logs fetched earlier stay, if the new metadata still lists them."""
        for kind in ('filelists', 'other'):
            record = self._records.get(kind)
            if record is not None and not os.path.exists(self._staged(record.href)):
                self._reuse(record, self._staged(record.href))

    def _install(self):
        """Puts the files in place and has the library load them.

        When the signature is by a key that isn't known yet, the library asks for the key, empties
        the directory and fails; the second round then finds the key.
        """
        for last in (False, True):
            self._swap()
            try:
                self._repo._repo.loadCache(True, True)
                return
            except (libdnf.error.Error, RuntimeError) as exc:
                text = text_of(exc)
                if last or self._repo._key_import.refused \
                        or os.path.exists(self._cached('repodata/repomd.xml')):
                    problem = RepoError("Failed to load the metadata of repository '%s': %s"
                                        % (self._repo.id, text))
                    break
        raise problem

    def _swap(self):
        tree = self._staged('')
        ready = tempfile.mkdtemp(prefix='ready-', dir=self._staging)
        retired = tempfile.mkdtemp(prefix='old-', dir=self._staging)
        shutil.copytree(tree, os.path.join(ready, 'tree'), copy_function=_link)
        for name in os.listdir(tree):
            current = self._cached(name)
            if os.path.lexists(current):
                os.rename(current, os.path.join(retired, name))
            os.rename(os.path.join(ready, 'tree', name), current)


def _link(source, target):
    """A second name for the file where the file system has such, else a copy."""
    try:
        os.link(source, target)
    except OSError:
        shutil.copyfile(source, target)


def _same(first, second):
    try:
        with open(first, 'rb') as one, open(second, 'rb') as two:
            return one.read() == two.read()
    except OSError:
        return False
