# SPDX-License-Identifier: GPL-2.0-or-later
"""A small system whose repository offers the project's own packages, with the demo's command line.

    own.py make DIRECTORY
    own.py serve DIRECTORY --ready-file FILE

VOK_PACKAGES names the folder that has the packages. What they need from a distribution is played by
packages of a few bytes that say that they have it.
"""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from demo.__main__ import main
from demo.default import busybox, filesystem, package, release, setup
from demo.recipe import File, Recipe, Repository

OWN = "own"


def own_packages():
    found = [path for path in Path(os.environ["VOK_PACKAGES"]).glob("vok*.rpm")
             if not path.name.endswith(".src.rpm") and "debug" not in path.name]
    if not found:
        sys.exit("own.py: no packages in %s" % os.environ["VOK_PACKAGES"])
    return sorted(found)


def libraries():
    """What the linker wants, which depends on the machine that built the packages."""
    wanted = set()
    for path in own_packages():
        out = subprocess.run(["rpm", "-qp", "--requires", str(path)], check=True, stdout=subprocess.PIPE,
                             encoding="utf-8").stdout
        wanted.update(line for line in out.splitlines() if re.search(r"\.so[.0-9]*\(|^rtld\(", line))
    return tuple(sorted(wanted))


#: Folders that many packages use, and that a distribution's own have.
SHARED = ("/usr/libexec", "/usr/share/applications", "/usr/share/bash-completion",
          "/usr/share/bash-completion/completions", "/usr/share/icons", "/usr/share/icons/hicolor",
          *("/usr/share/icons/hicolor/%s%s" % (size, apps) for apps in ("", "/apps") for size in (
              "scalable", *("%dx%d" % (size, size) for size in (16, 22, 24, 32, 48, 64, 128, 256)))),
          "/usr/share/licenses", "/usr/share/man", "/usr/share/man/man1", "/usr/share/metainfo", "/usr/share/polkit-1",
          "/usr/share/polkit-1/actions", "/usr/share/zsh", "/usr/share/zsh/site-functions")

RECIPE = Recipe(
    installed=(filesystem, busybox, release, setup,
               package("folders", files=tuple(File(path, directory=True) for path in SHARED)),
               package("system-libraries", arch="x86_64", provides=libraries()),
               package("yum", provides=("/etc/yum.conf",)), package("python3", provides=("/usr/bin/python3",))),
    repositories=(
        Repository("ground", "What a distribution has", gpgcheck=False, packages=(
            package("python3-dnf", requires=("python3-rpm",)), package("python3-rpm"), package("polkit"),
            package("hicolor-icon-theme"), package("unrelated"))),
        Repository(OWN, "The project's own packages", gpgcheck=False),
    ))

if __name__ == "__main__":
    status = main(RECIPE)
    if status == 0 and sys.argv[1] == "make":
        place = Path(sys.argv[2]).resolve() / "repos" / OWN
        for rpm in own_packages():
            shutil.copy(str(rpm), str(place))
        subprocess.run(["createrepo_c", "--quiet", "--no-database", str(place)], check=True)
    sys.exit(status)
