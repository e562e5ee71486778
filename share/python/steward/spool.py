# SPDX-License-Identifier: GPL-2.0-or-later
"""Many pieces of text, each found by a number, in a file without a name.

The pages of the file are the system's cache, not this process's memory, so any order of reading is
as good as any other. The file has no name from the start, so nothing stays behind however the
process ends.
"""

import os
import tempfile

_LENGTH_BITS = 32
_LENGTH_MASK = (1 << _LENGTH_BITS) - 1
_BUFFER = 1 << 20


class Spool:
    """Append with `add`, then `finish`, then `get` in any order and from any thread."""

    def __init__(self, directory):
        self._stream = tempfile.TemporaryFile(dir=directory, buffering=0)
        self._descriptor = self._stream.fileno()
        self._places = {}
        self._pending = []
        self._pending_size = 0
        self._end = 0

    def __len__(self):
        return len(self._places)

    def __contains__(self, key):
        return key in self._places

    def add(self, key, data):
        """Stores `data` (bytes) under the number `key`. The first of a key stays."""
        if key in self._places:
            return
        self._places[key] = self._end << _LENGTH_BITS | len(data)
        self._end += len(data)
        self._pending.append(data)
        self._pending_size += len(data)
        if self._pending_size >= _BUFFER:
            self.finish()

    def finish(self):
        """Writes out what is pending."""
        rest = memoryview(b''.join(self._pending))
        self._pending = []
        self._pending_size = 0
        while rest:
            rest = rest[os.write(self._descriptor, rest):]

    def get(self, key):
        """The bytes under `key`; b'' if there are none."""
        place = self._places.get(key)
        if place is None:
            return b''
        size, offset = place & _LENGTH_MASK, place >> _LENGTH_BITS
        data = os.pread(self._descriptor, size, offset)
        while len(data) < size:
            more = os.pread(self._descriptor, size - len(data), offset + len(data))
            if not more:
                raise OSError('the temporary file of the extra package data is cut short')
            data += more
        return data

    def close(self):
        self._stream.close()
        self._places = {}
