# SPDX-License-Identifier: GPL-2.0-or-later
"""Makes a sandbox below a directory whose packages have every kind of text, valid and not.

Its one repository is named by a file URL, so nobody has to serve it.
"""

import re
import sys
from pathlib import Path

from demo import make
from demo.recipe import Change, Package, Recipe, Repository

TEXTS = (
    ("rtl", "שלום עולם and مرحبا بالعالم"),
    ("combining", "Zalgo: a\u0300\u0301\u0302\u0303\u0304e\u0323\u0324\u0325 \u0301"),
    ("astral", "😀 𝔘𝔫𝔦𝔠𝔬𝔡𝔢 👩‍👩‍👧 𓀀"),
    ("control", "bell \x07 escape \x1b[31m delete \x7f next\u0085line"),
    ("invisible", "override \u202e desrever \u200b\u2028\ufeff\ufffe"),
    ("markup", "<b>bold</b> &amp; <img src='x'> %1 %s {} \\n"),
    ("latin1", "caf\udce9 \udcff\udcfe"),
    ("cut", "ends in the middle of one: \udce2\udc82"),
    ("surrogates", "CESU \udced\udca0\udcbd\udced\udcb8\udc80, overlong \udcc0\udcaf"),
)


def package(kind: str, text: str, where: str) -> Package:
    if where == "available":
        # The XML of a repository can't hold them, and its maker writes some down all the same.
        if kind == "surrogates":
            text = text.encode("ascii", "ignore").decode()
        text = re.sub("[\x00-\x08\x0b-\x1f\ufffe]", "?", text)
    return Package("text-%s-%s" % (kind, where), summary=text, description=text, group=text, license=text,
                   vendor=text, packager=text, changes=(Change(1705320000, text, "- " + text),))


RECIPE = Recipe(
    installed=tuple(package(kind, text, "installed") for kind, text in TEXTS),
    repositories=(Repository("texts", "Texts שלום 😀", gpgcheck=False, packages=tuple(
        package(kind, text, "available") for kind, text in TEXTS)),))

if __name__ == "__main__":
    directory = Path(sys.argv[1])
    make(RECIPE, directory).configure("file://" + str(directory.resolve()))
