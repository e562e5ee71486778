# SPDX-License-Identifier: GPL-2.0-or-later
"""Makes a small system with packages whose descriptions are hard to show, without building any.

    describe.py DIRECTORY

DIRECTORY/root is the system, DIRECTORY/repos/describe its repository:

    plain      a package like any other
    heavy      20,000 files, a change log of 5,000 entries, 5,000 relations, a description of 200 lines
    wide       lines of 10,000 characters in all fields, paths and change logs
    odd        markup, invisible, right-to-left and combining characters
    versions   an update of a package with 500 installed versions
"""

import argparse
import hashlib
import os
import shutil
import subprocess
import sys
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TREE)]

from demo.build import privileges, rpm_root  # noqa: E402
from generate import DAY, PARTS, START, Compressed, repomd_entry, xml  # noqa: E402
from headers import installed  # noqa: E402

VERSIONS = 500
ODD = ("<b>markup</b> &amp; <img src='x'> <!-- none --> \u05e9\u05dc\u05d5\u05dd and \u0645\u0631\u062d\u0628\u0627 "
       "\u202eoverride \u200b\u2028 a\u0300\u0301\u0302\u0303\u0304 \U0001f600 \U0001d518 \t tab")


class Package:
    """What `generate` and `headers` ask of a package."""

    arch, license, group, vendor = "noarch", "MIT", "Unspecified", "Example Project"
    packager, url, source, role, time = "Example Builders", "https://example.org/", "src-1-1.src.rpm", 1, START
    release = "1"

    def __init__(self, name: str, version: int = 1):
        self.name = self.stem = name
        self.version = str(version)
        self.text = "A text of a few words"
        self.paths = [("/usr/share/" + name, ["README"])]
        self.log = [(START, "Someone - 1-1", "- Made it")]
        self.relations = 0
        self.lines = 4

    @property
    def evr(self) -> str:
        return "%s-%s" % (self.version, self.release)

    @property
    def digest(self) -> str:
        return hashlib.sha256(("%s-%s" % (self.name, self.evr)).encode()).hexdigest()

    def size(self) -> int:
        return 8000

    def summary(self) -> str:
        return self.text

    def description(self) -> str:
        return "\n".join("%s, line %d." % (self.text, line) for line in range(self.lines))

    def provides(self):
        return [(self.name, self.evr)] + [("provided(%s-%d)" % (self.name, n), "1-1") for n in range(self.relations)]

    def requires(self):
        return ["required(%s-%d)" % (self.name, n) for n in range(self.relations)]

    def files(self):
        return self.paths

    def changes(self):
        return self.log


def packages():
    heavy = Package("heavy")
    heavy.lines, heavy.relations = 200, 5000
    heavy.paths = [("/usr/share/heavy/a/folder/of/some/length/%d" % folder, ["a-file-of-some-length-%d" % n for n in range(100)])
                   for folder in range(200)]
    heavy.log = [(START - n * DAY, "Some One <some.one@example.org> - 1-%d" % n, "- Change this\n- Change that")
                 for n in range(5000)]
    wide = Package("wide")
    wide.text = wide.group = wide.license = wide.vendor = wide.packager = "long words " * 909
    wide.paths = [("/usr/share/" + "long/" * 2000, ["file-%d" % n for n in range(50)])]
    wide.log = [(START, "Someone - 1-1", "- " + "word" * 2500)] * 50
    odd = Package("odd")
    odd.text = odd.packager = ODD
    odd.group = odd.license = odd.vendor = xml(ODD)  # which the templates take as they are
    odd.lines = 50
    odd.log = [(START, ODD, "- " + ODD)] * 50
    return [Package("plain"), heavy, wide, odd, Package("versions", VERSIONS + 1)]


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("directory", type=Path)
    directory = Path(os.path.abspath(parser.parse_args().directory))
    shutil.rmtree(directory, ignore_errors=True)
    repodata, root = directory / "repos" / "describe" / "repodata", directory / "root"
    for folder in (repodata, root / "var/lib/rpm", root / "var/cache", root / "var/log", root / "etc/yum.repos.d"):
        folder.mkdir(parents=True)
    (root / "etc/yum.conf").write_text("[main]\ncachedir=/var/cache/yum\nkeepcache=0\ngpgcheck=0\nplugins=0\n")
    (root / "etc/yum.repos.d/describe.repo").write_text(
        "[describe]\nname=Descriptions\nbaseurl=file://%s\nenabled=1\ngpgcheck=0\n" % repodata.parent)

    headers = b"".join(installed(Package("versions", version), version) for version in range(1, VERSIONS + 1))
    subprocess.run([*privileges(), "rpmdb", *rpm_root(root), "--importdb"], input=headers, check=True)

    entries, available = [], packages()
    for kind, (tag, space, render) in PARTS.items():
        out = Compressed(repodata / (kind + ".xml.gz"))
        out.write('<?xml version="1.0" encoding="UTF-8"?>\n<%s xmlns="http://linux.duke.edu/metadata/%s" '
                  'xmlns:rpm="http://linux.duke.edu/metadata/rpm" packages="%d">\n' % (tag, space, len(available)))
        for package in available:
            out.write(render(package))
        out.write("</%s>\n" % tag)
        out.close()
        entries.append(repomd_entry(kind, kind + ".xml.gz", out.digest.hexdigest(), out.size,
                                    out.open_digest.hexdigest(), out.open_size))
    (repodata / "repomd.xml").write_text(
        '<?xml version="1.0" encoding="UTF-8"?>\n<repomd xmlns="http://linux.duke.edu/metadata/repo">\n'
        "<revision>%d</revision>\n%s</repomd>\n" % (START, "".join(entries)), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
