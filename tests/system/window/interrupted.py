# SPDX-License-Identifier: GPL-2.0-or-later
"""A system whose updates wait, in the middle of rpm's transaction, for a file; with the demo's command line.

    interrupted.py make DIRECTORY
    interrupted.py serve DIRECTORY --ready-file FILE
"""

import sys

from demo.__main__ import main
from demo.default import busybox, filesystem, package, release, setup
from demo.recipe import Recipe, Repository

#: Tells what signals do to a program that it starts (SIGINT is kept from all of them by rpm itself), then waits
#: until it may go on.
WAITS = """
for name in TERM HUP; do sh -c "kill -$name \\$\\$"; echo $name $?; done > /signals 2>/dev/null
echo > /began
while [ ! -e /go ]; do sleep 0.1; done
"""

base = (filesystem, busybox, release, setup)
waits = package("waits", requires=("/bin/sh",))
#: An error that is shown when the transaction has been run.
refuses = package("refuses", requires=("/bin/sh",))
big = package("big")

RECIPE = Recipe(
    installed=(*base, waits, refuses, big),
    repositories=(Repository("updates", "Updates", gpgcheck=False, packages=(
        waits.but(version="2.0", scripts=(("pre", WAITS),)),
        refuses.but(version="2.0", scripts=(("pre", "exit 3"),)),
        big.but(version="2.0"))),))

if __name__ == "__main__":
    sys.exit(main(RECIPE))
