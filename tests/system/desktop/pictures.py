# SPDX-License-Identifier: GPL-2.0-or-later
"""Reads PNG files into plain lists, which is all that the tests of the icons need."""

import struct
import zlib


class Picture:
    """`dots` holds red, green, blue and opacity, from 0 to 255, row by row."""

    def __init__(self, width, height, dots):
        self.width = width
        self.height = height
        self.dots = dots

    def half(self):
        """The picture at half its size: each dot the mean of four, weighed by opacity."""
        dots = []
        for y in range(0, self.height, 2):
            for x in range(0, self.width, 2):
                four = [self.dots[(y + dy) * self.width + x + dx] for dy in (0, 1) for dx in (0, 1)]
                opacity = sum(dot[3] for dot in four)
                dots.append(tuple(sum(dot[i] * dot[3] for dot in four) / opacity if opacity else 0 for i in range(3))
                            + (opacity / 4,))
        return Picture(self.width // 2, self.height // 2, dots)

    def grey_on(self, background):
        """The brightness of each dot on a grey background."""
        return [(0.299 * r + 0.587 * g + 0.114 * b) * a / 255 + background * (255 - a) / 255 for r, g, b, a in self.dots]


def read(path):
    """The picture in `path`: 8 bits a channel, true colour, not interlaced."""
    data = path.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", path
    packed = b""
    at = 8
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlaced = struct.unpack(">IIBBBBB", data[at + 8:at + 8 + length])
            assert (depth, interlaced) == (8, 0) and colour in (2, 6), path
        elif kind == b"IDAT":
            packed += data[at + 8:at + 8 + length]
        at += length + 12
    channels = 4 if colour == 6 else 3
    raw = zlib.decompress(packed)
    dots = []
    above = bytearray(width * channels)
    for y in range(height):
        start = y * (width * channels + 1)
        line = _unfiltered(raw[start], bytearray(raw[start + 1:start + 1 + width * channels]), above, channels)
        for x in range(0, width * channels, channels):
            dots.append(tuple(line[x:x + 3]) + (line[x + 3] if channels == 4 else 255,))
        above = line
    return Picture(width, height, dots)


def _unfiltered(kind, line, above, channels):
    for i, value in enumerate(line):
        left = line[i - channels] if i >= channels else 0
        up = above[i]
        corner = above[i - channels] if i >= channels else 0
        if kind == 0:
            guess = 0
        elif kind == 1:
            guess = left
        elif kind == 2:
            guess = up
        elif kind == 3:
            guess = (left + up) // 2
        else:
            paeth = left + up - corner
            guess = min((left, up, corner), key=lambda near: abs(paeth - near))
        line[i] = (value + guess) & 0xFF
    return line
