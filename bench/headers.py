# SPDX-License-Identifier: GPL-2.0-or-later
"""Headers of installed packages as rpm keeps them, written without building packages.

`rpmdb --importdb` reads them one behind the other. Building thousands of packages and installing
them would give the same database, an hour later.
"""

import struct
from typing import Iterable, List, Sequence, Tuple

_CHAR, _INT16, _INT32, _STRING, _ARRAY, _TRANSLATED = 1, 3, 4, 6, 8, 9
_INTEGERS = {_INT16: ("H", 2), _INT32: ("I", 4)}
_EQUAL = 8  # RPMSENSE_EQUAL

Field = Tuple[int, int, object]


def encode(fields: Iterable[Field]) -> bytes:
    """One header of (tag, type, value) fields."""
    index, data = [], bytearray()
    for tag, kind, value in sorted(fields, key=lambda field: field[0]):
        if kind in _INTEGERS:
            code, size = _INTEGERS[kind]
            data += bytes(-len(data) % size)
        index.append(struct.pack(">IIII", tag, kind, len(data), 1 if kind == _STRING else len(value)))
        if kind in _INTEGERS:
            data += struct.pack(">%d%s" % (len(value), code), *value)
        elif kind == _CHAR:
            data += value
        elif kind == _STRING:
            data += value.encode() + b"\0"
        else:
            data += b"".join(text.encode() + b"\0" for text in value)
    return (b"\x8e\xad\xe8\x01\0\0\0\0" + struct.pack(">II", len(index), len(data))
            + b"".join(index) + bytes(data))


def installed(item, number: int) -> bytes:
    """The header of a generated package, as if it had been installed as the `number`-th."""
    folders, bases, indexes = [], [], []
    for folder, names in item.files():
        indexes += [len(folders)] * len(names)
        folders.append(folder + "/")
        bases += names
    count = len(bases)
    changes = item.changes()
    requires = item.requires()
    fields: List[Field] = [
        (100, _ARRAY, ["C"]), (1000, _STRING, item.name), (1001, _STRING, item.version), (1002, _STRING, item.release),
        (1004, _TRANSLATED, [item.summary()]), (1005, _TRANSLATED, [item.description()]),
        (1006, _INT32, [item.time]), (1007, _STRING, "build.example.org"), (1008, _INT32, [item.time + 86400]),
        (1009, _INT32, [item.size() * 3]), (1011, _STRING, item.vendor), (1014, _STRING, item.license),
        (1015, _STRING, item.packager), (1016, _TRANSLATED, [item.group]), (1020, _STRING, item.url),
        (1021, _STRING, "linux"), (1022, _STRING, item.arch), (1044, _STRING, item.source),
        (1128, _INT32, [1700000000 + number // 50]),
        (1080, _INT32, [time for time, _, _ in changes]), (1081, _ARRAY, [author for _, author, _ in changes]),
        (1082, _ARRAY, [text for _, _, text in changes]),
    ]
    fields += _relations(item.provides(), 1047, 1112, 1113)
    fields += _relations([(name, "") for name in requires], 1049, 1048, 1050)
    if count:
        zero, empty = [0] * count, [""] * count
        fields += [
            (1028, _INT32, [2048] * count), (1029, _CHAR, bytes(count)), (1030, _INT16, [0o100644] * count),
            (1033, _INT16, zero), (1034, _INT32, [item.time] * count), (1035, _ARRAY, empty), (1036, _ARRAY, empty),
            (1037, _INT32, zero), (1039, _ARRAY, ["root"] * count), (1040, _ARRAY, ["root"] * count),
            (1045, _INT32, zero), (1095, _INT32, [1] * count), (1096, _INT32, list(range(1, count + 1))),
            (1097, _ARRAY, empty), (1116, _INT32, indexes), (1117, _ARRAY, bases), (1118, _ARRAY, folders),
        ]
    return encode(fields)


def _relations(pairs: Sequence[Tuple[str, str]], names: int, flags: int, versions: int) -> List[Field]:
    if not pairs:
        return []
    return [(names, _ARRAY, [name for name, _ in pairs]), (versions, _ARRAY, [version for _, version in pairs]),
            (flags, _INT32, [_EQUAL if version else 0 for _, version in pairs])]
