# SPDX-License-Identifier: GPL-2.0-or-later
"""Packages that do no harm to a running machine whose files they join; with the demo's command line.

    realroot.py make DIRECTORY
    realroot.py serve DIRECTORY --ready-file FILE
"""

import sys

from demo.__main__ import main
from demo.default import package
from demo.recipe import Recipe, Repository

#: Waits, in the middle of rpm's transaction, until it may go on.
WAITS = """
echo > /began
while [ ! -e /go ]; do sleep 0.1; done
echo bettered: in place of the old one
"""

#: Stands for all that the machine has and its package database doesn't know.
ground = package("ground", files=(), provides=("/bin/sh", "system-release = 9", "system-release(releasever) = 9"))
better = package("bettered", requires=("/bin/sh",))
dropped = package("dropped", requires=("/bin/sh",), scripts=(("preun", "echo dropped: good bye"),))
adds = package("adds", requires=("library", "/bin/sh"),
               scripts=(("post", "echo adds: here I am\necho adds: not without a sigh >&2"),))

RECIPE = Recipe(
    installed=(ground, better, dropped),
    repositories=(
        Repository("plain", "Unsigned", gpgcheck=False, packages=(
            adds, package("library"), package("later"), better.but(version="2.0", scripts=(("pre", WAITS),)))),
        Repository("signed", "With a key", gpgcheck=True, key="demo", packages=(package("sealed", signer="demo"),)),
    ))

if __name__ == "__main__":
    sys.exit(main(RECIPE))
