# SPDX-License-Identifier: GPL-2.0-or-later
"""A small system with repositories that refuse without name and password, with the demo's command line.

    credentials.py make DIRECTORY
    credentials.py serve DIRECTORY --ready-file FILE
"""

import sys

from demo.__main__ import main
from demo.default import busybox, chess, filesystem, glib, package, setup
from demo.recipe import Recipe, Repository

#: With a few characters that a URL can't have as they are.
KEEPER = {"user": "keeper", "password": "xyzzy&42/plugh"}

handbook = package("members-handbook", "2.0", summary="Only for members", requires=("/bin/sh",),
                   scripts=(("post", "echo bound the handbook"),))
minutes = package("members-minutes", "1.1", summary="Only for members")

RECIPE = Recipe(
    installed=(filesystem, busybox, setup, glib, chess),
    repositories=(
        Repository("base", "Base", gpgcheck=False, packages=(filesystem, busybox, setup, glib, chess)),
        Repository("members", "In the query", auth="query", gpgcheck=False, file="members.repo",
                   packages=(handbook,), **KEEPER),
        Repository("minutes", "In the path", auth="path", gpgcheck=False, file="members.repo",
                   packages=(minutes,), **KEEPER),
    ))

if __name__ == "__main__":
    sys.exit(main(RECIPE))
