# SPDX-License-Identifier: GPL-2.0-or-later
"""Package objects as the program reads them, made of the library's packages.

The library makes a package object of a pair (set of packages, number), and the classes here are
made of the same pair: no wrapper, no dictionary, and `name`, `arch`, `size` and `buildtime` are the
library's own attributes. They keep the set of packages alive, so they stay usable after the library
was closed. What all packages of one collection share, their System, is an attribute of two classes
made for it, so that making tens of thousands of packages runs no code of this module.
"""

import collections.abc
import os
import re

import hawkey
import rpm

INSTALLED = 'installed'

_RELATIONS = ('provides', 'requires', 'conflicts', 'obsoletes')
_FLAGS = {'>': 'GT', '>=': 'GE', '<': 'LT', '<=': 'LE', '=': 'EQ', '==': 'EQ'}
_VERSION = re.compile(r'(?:(\d+):)?(.*?)(?:-([^-]*))?\Z', re.DOTALL)
_NAMES = {'buildhost': rpm.RPMTAG_BUILDHOST, 'summary': rpm.RPMTAG_SUMMARY,
          'description': rpm.RPMTAG_DESCRIPTION, 'vendor': rpm.RPMTAG_VENDOR,
          'group': rpm.RPMTAG_GROUP, 'license': rpm.RPMTAG_LICENSE, 'url': rpm.RPMTAG_URL,
          'packager': rpm.RPMTAG_PACKAGER, 'sourcerpm': rpm.RPMTAG_SOURCERPM}


class Relations(collections.abc.Mapping):
    """The relations of one package by word, each list made when it is asked for."""

    __slots__ = ('_package',)

    def __init__(self, package):
        self._package = package

    def __getitem__(self, word):
        if word not in _RELATIONS:
            raise KeyError(word)
        return self._package.returnPrco(word)

    def __iter__(self):
        return iter(_RELATIONS)

    def __len__(self):
        return len(_RELATIONS)


def split_version(text):
    """(epoch, version, release) of a relation's version; parts that it lacks are None."""
    epoch, version, release = _VERSION.match(text).groups()
    return epoch, version or None, release


class Package(hawkey.Package):
    """What installed and available packages have in common."""

    __slots__ = ()

    # The System that the package belongs to; see `classes`.
    system = None

    def printVer(self):
        return self.evr

    def returnSimple(self, field):
        try:
            return _SIMPLE[field](self)
        except UnicodeDecodeError:
            return self._undecodable(field)

    def _undecodable(self, field):
        return None

    @property
    def pkgtup(self):
        return self.name, self.arch, str(self.epoch), self.version, self.release

    @property
    def ver(self):
        return self.version

    @property
    def rel(self):
        return self.release

    @property
    def prco(self):
        return Relations(self)

    def returnPrco(self, word):
        """(name, flag, (epoch, version, release)) of each relation of the kind `word`."""
        if word not in _RELATIONS:
            raise KeyError(word)
        found = []
        for relation in getattr(self, word):
            version = relation.version
            if version:
                found.append((relation.name, _FLAGS.get(relation.relation.strip()),
                              split_version(version)))
            else:
                found.append((relation.name, None, (None, None, None)))
        return found

    def localHdr(self):
        """No headers are kept apart from the packages."""
        return None


class Installed(Package):
    """An installed package. Only these have the attribute `hdr`."""

    __slots__ = ()

    repoid = INSTALLED

    @property
    def hdr(self):
        header = self.system.header(self.rpmdbid)
        # A package that is gone from the database has an empty header rather than none, since by
        # the attribute's presence the program knows an installed package.
        return header if header is not None else rpm.hdr()

    def collectRow(self):
        try:
            return (self.name, self.evr, INSTALLED, self.arch, self.installsize, self.summary,
                    self.buildtime, self.group)
        except UnicodeDecodeError:
            return _row(self, self.installsize)

    def _undecodable(self, field):
        """rpm's own module decodes leniently, so the header still gives the text."""
        tag = _NAMES.get(field)
        value = self.hdr[tag] if tag is not None else None
        if isinstance(value, bytes):
            return value.decode('utf-8', 'replace')
        if isinstance(value, str):
            return value.encode('utf-8', 'surrogateescape').decode('utf-8', 'replace')
        return None

    def localPkg(self):
        return None

    def returnFileEntries(self, kind):
        return list(self._paths()) if kind == 'file' else []

    def returnFileText(self):
        return '\n'.join(sorted(set(self._paths()))).encode('utf-8', 'surrogateescape')

    def _paths(self):
        for path in self.hdr[rpm.RPMTAG_FILENAMES] or ():
            yield path.decode('utf-8', 'surrogateescape') if isinstance(path, bytes) else path

    def returnChangelog(self):
        header = self.hdr
        return list(zip(header[rpm.RPMTAG_CHANGELOGTIME] or (),
                        header[rpm.RPMTAG_CHANGELOGNAME] or (),
                        header[rpm.RPMTAG_CHANGELOGTEXT] or ()))


class Available(Package):
    """A package of a repository."""

    __slots__ = ()

    @property
    def repoid(self):
        return self.reponame

    @property
    def relativepath(self):
        return self.location

    def collectRow(self):
        try:
            return (self.name, self.evr, self.reponame, self.arch, self.downloadsize, self.summary,
                    self.buildtime, self.group)
        except UnicodeDecodeError:
            return _row(self, self.downloadsize)

    def _loadFiles(self):
        """Its presence says that there is file data; nothing is left to load for one package."""

    def key(self):
        """What the extra data of the repositories is found by; None if the package has none."""
        checksum = self.chksum
        return int.from_bytes(checksum[1][:8], 'big') if checksum else None

    def returnFileEntries(self, kind):
        if kind != 'file':
            return []
        text = self.returnFileText()
        return text.decode('utf-8', 'replace').split('\n') if text else []

    def returnFileText(self):
        extra = self.system.extra
        return extra.file_text(self) if extra is not None else b''

    @property
    def changelog(self):
        return self.returnChangelog()

    def returnChangelog(self):
        extra = self.system.extra
        return extra.changes(self) if extra is not None else []

    def localPkg(self):
        """Where the package file is or will be."""
        repo = self.system.base.repos.get(self.reponame)
        location = self.location
        if repo is None or not location:
            return None
        if repo._repo.isLocal() and (not self.baseurl or self.baseurl.startswith('file://')):
            top = self.get_local_baseurl() if self.baseurl else repo._repo.getLocalBaseurl()
            return os.path.join(top, location.lstrip('/'))
        return os.path.join(repo.cache_pkgdir(), os.path.basename(location))


def _row(package, size):
    """The slow form of collectRow, for a package with text that isn't UTF-8."""
    field = package.returnSimple
    return (package.name, package.printVer(), package.repoid, package.arch, size,
            field('summary'), package.buildtime, field('group'))


_SIMPLE = {
    'name': lambda p: p.name,
    'arch': lambda p: p.arch,
    'epoch': lambda p: str(p.epoch),
    'version': lambda p: p.version,
    'release': lambda p: p.release,
    'group': lambda p: p.group,
    'repoid': lambda p: p.repoid,
    'summary': lambda p: p.summary,
    'description': lambda p: p.description,
    'vendor': lambda p: getattr(p, 'vendor', None),
    'buildhost': lambda p: p._undecodable('buildhost'),
    'sourcerpm': lambda p: p.sourcerpm,
    'license': lambda p: p.license,
    'packager': lambda p: p.packager,
    'url': lambda p: p.url,
    'relativepath': lambda p: getattr(p, 'relativepath', None),
    'buildtime': lambda p: p.buildtime,
}


def classes(system):
    """The classes (installed, available) for the packages of one System."""
    return tuple(type(base.__name__, (base,), {'__slots__': (), 'system': system})
                 for base in (Installed, Available))


def made(query, sack, kind):
    """The packages of `query` as objects of the class `kind`."""
    return [kind((sack, number)) for number in map(hash, query)]
