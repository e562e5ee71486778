# SPDX-License-Identifier: GPL-2.0-or-later
"""Reads the two small files that lead to a repository's metadata: repomd.xml and a metalink."""

import hashlib
import os
import xml.etree.ElementTree as ElementTree

from yum.Errors import RepoError

_REPOMD = 'repodata/repomd.xml'
# Strongest first.
DIGESTS = ('sha512', 'sha384', 'sha256', 'sha224', 'sha1', 'md5')
# The last two are for an encoding that nobody knows.
_NO_XML = (ElementTree.ParseError, LookupError, ValueError)


class Record:
    """One metadata file as repomd.xml lists it."""

    __slots__ = ('kind', 'href', 'base', 'checksum_type', 'checksum', 'size')

    def __init__(self, kind, href, base, checksum_type, checksum, size):
        self.kind = kind
        self.href = href
        self.base = base
        self.checksum_type = checksum_type
        self.checksum = checksum
        self.size = size


def _local(tag):
    return tag.rpartition('}')[2]


def read(path):
    """The records of the repomd.xml at `path`, by kind. OSError or RepoError when unreadable."""
    try:
        root = ElementTree.parse(path).getroot()
    except _NO_XML as exc:
        problem = RepoError('%s: %s' % (os.path.basename(path), exc))
    else:
        records = {}
        for data in root:
            if _local(data.tag) == 'data':
                record = _record(data)
                if record is not None:
                    records[record.kind] = record
        return records
    raise problem


def _record(data):
    href = base = checksum = checksum_type = None
    size = 0
    for item in data:
        tag = _local(item.tag)
        if tag == 'location':
            href = item.get('href')
            base = item.get('{http://www.w3.org/XML/1998/namespace}base')
        elif tag == 'checksum':
            checksum_type = item.get('type')
            checksum = (item.text or '').strip()
        elif tag == 'size' and (item.text or '').strip().isdecimal():
            size = int(item.text)
    # A location decides where a file is put, so it must not lead out of the repository's cache
    # or onto what else is kept there.
    parts = href.split('/') if href else ['']
    if parts[0] in ('', 'packages', 'pubring') or '..' in parts or len(parts) < 2:
        return None
    if checksum_type == 'sha':
        checksum_type = 'sha1'
    return Record(data.get('type'), href, base, checksum_type, checksum, size)


def read_metalink(path):
    """(hashes, mirrors) of a metalink to repomd.xml, the mirrors by falling preference.

    `hashes` is a list of {digest name: hex}: that of the current repomd.xml first, then those of
    older ones that are still good. An entry may be empty.
    """
    try:
        root = ElementTree.parse(path).getroot()
    except _NO_XML as exc:
        problem = RepoError('metalink: %s' % exc)
    else:
        for item in root.iter():
            if _local(item.tag) == 'file' and item.get('name') == 'repomd.xml':
                return _verifications(item), _mirrors(item)
        problem = RepoError('metalink: no repomd.xml in it')
    raise problem


def _mirrors(item):
    found = []
    for url in item.iter():
        text = (url.text or '').strip()
        if _local(url.tag) == 'url' and text.endswith(_REPOMD) \
                and text.partition('://')[0] in ('http', 'https', 'ftp', 'file'):
            preference = url.get('preference', '')
            found.append((int(preference) if preference.isdecimal() else 0,
                          text[:-len(_REPOMD)]))
    found.sort(key=lambda pair: -pair[0])
    return [text for _, text in found]


def _verifications(item):
    current, older = {}, []
    for child in item:
        tag = _local(child.tag)
        if tag == 'verification':
            current = _hashes(child)
        elif tag == 'alternates':
            for alternate in child:
                for part in alternate:
                    if _local(part.tag) == 'verification':
                        older.append(_hashes(part))
    return [current] + older


def _hashes(verification):
    found = {}
    for item in verification:
        if _local(item.tag) == 'hash' and item.get('type') in DIGESTS and item.text:
            found[item.get('type')] = item.text.strip().lower()
    return found


def strongest(hashes):
    """(digest name, hex) of the strongest hash, or (None, None)."""
    for name in DIGESTS:
        if name in hashes:
            return name, hashes[name]
    return None, None


def file_matches(path, checksum_type, checksum):
    """True if the file at `path` is there and has the checksum."""
    if checksum_type not in DIGESTS or not checksum:
        return False
    digest = hashlib.new(checksum_type)
    try:
        with open(path, 'rb') as stream:
            for block in iter(lambda: stream.read(1 << 20), b''):
                digest.update(block)
    except OSError:
        return False
    return digest.hexdigest() == checksum.lower()
