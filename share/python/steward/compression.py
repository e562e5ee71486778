# SPDX-License-Identifier: GPL-2.0-or-later
"""Reads a compressed metadata file in pieces, reporting how much of the file has been read."""

import bz2
import lzma
import os
import tempfile
import zlib

import libdnf.error
import libdnf.utils

from yum.Errors import YumBaseError

_BLOCK = 1 << 18
_LIMIT = 1 << 20
# What Python's own modules can't read, with the suffix by which the library tells it.
_LIBRARY = ((b'\x28\xb5\x2f\xfd', '.zst'), (b'\0ZCK1', '.zck'))


class _Zlib:
    """gzip with several members, with bounded output."""

    def __init__(self):
        self._inner = zlib.decompressobj(31)

    def feed(self, block):
        while block:
            data = self._inner.decompress(block, _LIMIT)
            block = self._inner.unconsumed_tail
            if self._inner.eof:
                block = self._inner.unused_data.lstrip(b'\0')
                if block:
                    self._inner = zlib.decompressobj(31)
            if data:
                yield data

    @property
    def complete(self):
        return self._inner.eof


class _Streams:
    """xz or bzip2, with several streams."""

    def __init__(self, make):
        self._make = make
        self._inner = make()

    def feed(self, block):
        while True:
            if self._inner.eof:
                block = (self._inner.unused_data or block).lstrip(b'\0')
                if not block:
                    return
                self._inner = self._make()
            data = self._inner.decompress(block, _LIMIT)
            block = b''
            if data:
                yield data
            if not self._inner.eof and self._inner.needs_input:
                return

    @property
    def complete(self):
        return self._inner.eof


class _Plain:
    complete = True

    @staticmethod
    def feed(block):
        yield block


def _reader(head):
    if head.startswith(b'\x1f\x8b'):
        return _Zlib()
    if head.startswith(b'\xfd7zXZ\0'):
        return _Streams(lzma.LZMADecompressor)
    if head.startswith(b'BZh'):
        return _Streams(bz2.BZ2Decompressor)
    return _Plain()


def _unpacked(path, head, stream):
    """An open stream of what to read: `stream`, or where only the library knows the compression, a
    file without a name that it has unpacked to."""
    for magic, suffix in _LIBRARY:
        if head.startswith(magic):
            break
    else:
        return stream
    target = tempfile.TemporaryFile(dir=os.path.dirname(path))
    try:
        libdnf.utils.decompress(path, '/proc/self/fd/%d' % target.fileno(), 0o600, suffix)
    except (libdnf.error.Error, RuntimeError, OSError) as exc:
        target.close()
        problem = YumBaseError('%s cannot be decompressed: %s' % (path, exc))
    else:
        return target
    raise problem


def pieces(path, report=None):
    """Yields the decompressed content of `path` in pieces; `report(bytes of the file read)`."""
    with open(path, 'rb') as stream:
        source = _unpacked(path, stream.read(8), stream)
        with source:
            source.seek(0)
            scale = os.path.getsize(path) / max(1, os.fstat(source.fileno()).st_size)
            try:
                for data, done in _decompressed(source):
                    yield data
                    if report is not None:
                        report(int(done * scale))
                return
            except (zlib.error, lzma.LZMAError, EOFError) as exc:
                problem = YumBaseError('%s cannot be decompressed: %s' % (path, exc))
    raise problem


def _decompressed(stream):
    """(piece, bytes read so far) of what an open file holds."""
    block = stream.read(_BLOCK)
    reader = _reader(block)
    done = 0
    while block:
        done += len(block)
        for data in reader.feed(block):
            yield data, done
        block = stream.read(_BLOCK)
    if not reader.complete:
        raise EOFError('it is cut short')
