# SPDX-License-Identifier: GPL-2.0-or-later
"""Reads a compressed metadata file in pieces, reporting how much of the file has been read."""

import bz2
import lzma
import zlib

from yum.Errors import YumBaseError

_BLOCK = 1 << 18
_LIMIT = 1 << 20


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


def _zstd():
    """The decompressor of Python 3.14's own module, else of the one that systems package."""
    try:
        from compression import zstd  # pylint: disable=import-outside-toplevel
        return _Streams(zstd.ZstdDecompressor)
    except ImportError:
        pass
    try:
        import zstandard  # pylint: disable=import-outside-toplevel
    except ImportError:
        return None

    class Zstandard:
        complete = True

        def __init__(self):
            self._inner = zstandard.ZstdDecompressor().decompressobj(read_across_frames=True) \
                if 'read_across_frames' in (zstandard.ZstdDecompressor.decompressobj.__doc__ or '')\
                else zstandard.ZstdDecompressor().decompressobj()

        def feed(self, block):
            data = self._inner.decompress(block)
            if data:
                yield data

    return Zstandard()


def _opener(head, name):
    if head.startswith(b'\x1f\x8b'):
        return _Zlib()
    if head.startswith(b'\xfd7zXZ\0'):
        return _Streams(lzma.LZMADecompressor)
    if head.startswith(b'BZh'):
        return _Streams(bz2.BZ2Decompressor)
    if head.startswith(b'\x28\xb5\x2f\xfd'):
        made = _zstd()
        if made is None:
            raise YumBaseError('%s is compressed with zstd, which needs the Python module zstandard'
                               % name)
        return made
    if head.startswith(b'\0ZCK1'):
        raise YumBaseError('%s is compressed with zchunk, which cannot be read here' % name)
    return _Plain()


def pieces(path, report=None):
    """Yields the decompressed content of `path` in pieces; `report(bytes of the file read)`."""
    done = 0
    try:
        with open(path, 'rb') as stream:
            block = stream.read(_BLOCK)
            reader = _opener(block, path)
            while block:
                for data in reader.feed(block):
                    yield data
                done += len(block)
                if report is not None:
                    report(done)
                block = stream.read(_BLOCK)
            if not reader.complete:
                raise EOFError('it is cut short')
    except (zlib.error, lzma.LZMAError, EOFError) as exc:
        problem = YumBaseError('%s cannot be decompressed: %s' % (path, exc))
    else:
        return
    raise problem
