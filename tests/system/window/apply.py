# SPDX-License-Identifier: GPL-2.0-or-later
"""The demo's system and what only the tests of Apply want, with the demo's command line.

    apply.py make DIRECTORY
    apply.py serve DIRECTORY --ready-file FILE
"""

import os
import shutil
import subprocess
import sys
import tempfile
from dataclasses import replace
from pathlib import Path

from demo.__main__ import main
from demo.default import RECIPE as DEMO
from demo.default import package
from demo.recipe import File, Group, Repository

#: How many packages the repository "many" has.
MANY = 500

fails_preun = package("case-preun", summary="A %preun that fails: stays installed", requires=("/bin/sh",),
                      scripts=(("preun", "echo I will not go >&2\nexit 5"),))
fails_postun = package("case-postun", summary="A %postun that fails: goes all the same", requires=("/bin/sh",),
                       scripts=(("postun", "echo gone with a curse >&2\nexit 6"),))
big = package("case-big", summary="Ten megabytes", files=(File("/usr/share/big", directory=True),
                                                          File("/usr/share/big/data", noise=10 << 20)))
owner = package("case-owner", summary="Owns a file", files=(File("/usr/share/case-owned", text="mine\n"),))
thief = owner.but(name="case-thief", summary="Owns the same file",
                  files=(File("/usr/share/case-owned", text="no, mine\n"),))
needs_file = package("case-needs-file", summary="Needs a file that no index of packages names",
                     requires=("/usr/lib64/tabular/data",))
libraries = tuple(package("case-pair", "1.0", arch=arch) for arch in ("x86_64", "i686"))

RECIPE = replace(
    DEMO,
    installed=DEMO.installed + (fails_preun, fails_postun, owner),
    repositories=DEMO.repositories + (
        Repository("cases", "What only tests want", gpgcheck=False, file="cases.repo",
                   packages=(fails_postun, big, thief, needs_file, *libraries), groups=(
                       Group("first", "First Pair", mandatory=("edwin", "no-such-package")),
                       Group("second", "Second Pair", mandatory=("edwin",), default=("chess",)),
                   )),
        Repository("many", "Hundreds of small packages", gpgcheck=False, enabled=False, file="cases.repo"),
    ))


def make_many(place: Path, kept: Path) -> None:
    """Fills a repository with packages that one spec file makes in one go; from `kept` where it can."""
    if not kept.is_dir():
        kept.parent.mkdir(parents=True, exist_ok=True)
        with tempfile.TemporaryDirectory(dir=kept.parent) as scratch:
            lines = ["Name: many", "Version: 1.0", "Release: 1", "Summary: Many", "License: MIT", "BuildArch: noarch",
                     "AutoReqProv: no", "%description", "Many", ""]
            for number in range(MANY):
                name = "many-%03d" % number
                lines += ["%%package -n %s" % name, "Summary: Number %d" % number, "AutoReqProv: no",
                          "%%description -n %s" % name, "Number %d." % number, "%%files -n %s" % name,
                          "/usr/share/many/%s" % name, ""]
            lines += ["%install", "mkdir -p %{buildroot}/usr/share/many",
                      "for n in $(seq -w 0 %d); do echo $n > %%{buildroot}/usr/share/many/many-$n; done" % (MANY - 1), ""]
            spec = Path(scratch) / "many.spec"
            spec.write_text("\n".join(lines), encoding="utf-8")
            made = Path(scratch) / "made"
            made.mkdir()
            subprocess.run(["rpmbuild", "-bb", "--quiet", "--define", "_topdir " + scratch,
                            "--define", "_rpmdir %s" % made, "--define", "_build_name_fmt %%{NAME}-%%{VERSION}.rpm",
                            "--define", "__spec_install_post %{nil}", "--define", "_binary_payload w.ufdio", str(spec)],
                           check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
            subprocess.run(["createrepo_c", "--quiet", "--no-database", "--general-compress-type", "gz",
                            str(made)], check=True)
            made.rename(kept)
    shutil.rmtree(place)
    # Links: nobody writes to them.
    shutil.copytree(kept, place, copy_function=os.link)


if __name__ == "__main__":
    status = main(RECIPE)
    if status == 0 and sys.argv[1] == "make":
        directory = Path(sys.argv[2]).resolve()
        make_many(directory / "repos" / "many", directory / "cache" / ("many-%d" % MANY))
    sys.exit(status)
