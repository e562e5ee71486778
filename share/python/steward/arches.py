# SPDX-License-Identifier: GPL-2.0-or-later
"""Families of architectures, and which of two packages of one name is the better one."""

import dnf.rpm

_FAMILIES = {}


def family(arch):
    """The base architecture of `arch`; an unknown one is a family of its own."""
    word = _FAMILIES.get(arch)
    if word is None:
        try:
            word = dnf.rpm.basearch(arch)
        except KeyError:
            word = arch
        _FAMILIES[arch] = word
    return word


def nearness(arch, base, arches):
    """Sorts architectures: smaller is nearer to the base architecture `base`.

    `arches` holds what the system can run, best first.
    """
    word = family(arch)
    if word == base:
        kind = 0
    else:
        kind = 1 if arch == 'noarch' else 2
    try:
        place = arches.index(arch)
    except ValueError:
        place = len(arches)
    return kind, place


def is_better(best, new, base, arches):
    """True if the package `best` stays better than the package `new` of the same name."""
    ours = nearness(best.arch, base, arches)
    theirs = nearness(new.arch, base, arches)
    if ours != theirs:
        return ours < theirs
    return best.evr_cmp(new) >= 0
