# SPDX-License-Identifier: GPL-2.0-or-later
"""Makes a large system to measure on, without building a single package.

    generate.py DIRECTORY [--packages N] [--installed N]

DIRECTORY/root is the system, with its configuration and an rpm database; DIRECTORY/repos/large and
DIRECTORY/repos/updates are repositories of metadata whose packages don't exist. Everything follows
from the package's number, so that each run makes the same. Four packages make a family: a program,
its libraries in two architectures, and its documentation, headers or translations. Packages ask
only for packages with lower numbers, so the first ones can be installed by themselves.
"""

import argparse
import hashlib
import multiprocessing
import os
import random
import shutil
import subprocess
import sys
import time
import zlib
from pathlib import Path
from typing import Callable, Iterable, List, Tuple

TREE = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TREE)]

from demo.build import comps, privileges, rpm_root  # noqa: E402
from demo.recipe import Group  # noqa: E402
from headers import installed  # noqa: E402

START = 1672531200  # 2023-01-01
DAY = 86400
WORDS = ("a the this that program library tool set system user file text network image sound data server client "
         "small fast simple flexible portable complete modern graphical common remote local shared secure reads writes "
         "shows converts manages plays edits sends finds keeps checks renders compares analyses and or with for from "
         "into over without many several different formats protocols messages documents archives fonts languages "
         "tables devices windows plugins scripts templates accounts calendars maps games colours statistics").split()
LICENSES = ("GPLv2+", "LGPLv2+", "MIT", "BSD", "ASL 2.0", "GPLv3+", "Artistic 2.0", "MPLv2.0")
GROUPS = ("Applications/Internet", "Applications/System", "Development/Libraries", "System Environment/Libraries",
          "Applications/Multimedia", "Documentation", "Unspecified", "Suite")
EXTENSIONS = ("html", "png", "py", "h", "mo", "so", "xml", "conf", "txt", "svg")


def syllables(count: int) -> List[str]:
    """Words that can be spoken and mean nothing."""
    dice = random.Random(7)
    words = set()
    while len(words) < count:
        words.add("".join(dice.choice("bdfgklmnprstvz") + dice.choice("aeiou") for _ in range(dice.randint(1, 3))))
    return sorted(words)


STEMS = syllables(601)  # a prime, so that the numbering below meets every pair
BASES = ["%s-%s%d.%s" % (STEMS[n % 601], STEMS[n * 7 % 601], n, EXTENSIONS[n % 10]) for n in range(4000)]


class Item:
    """A package, by its number; `newer` is the one in the repository of updates."""

    __slots__ = ("number", "family", "role", "name", "arch", "version", "release", "time", "license", "group", "dice",
                 "stem")
    vendor = "Example Project"
    packager = "Example Builders <builders@example.org>"

    def __init__(self, number: int, newer: bool = False):
        self.number = number
        self.family, self.role = divmod(number, 4)
        self.stem = stem_of(self.family)
        last = ("-devel", "-doc", "-langpack-de")[self.family % 3]
        self.name = self.stem + ("", "-libs", "-libs", last)[self.role]
        self.arch = ("x86_64", "x86_64", "i686", "x86_64" if last == "-devel" else "noarch")[self.role]
        self.version = "%d.%d.%d" % (self.family % 9, self.family % 23, self.family % 7 + newer)
        self.release = "%d.demo9" % (self.family % 5 + 1)
        self.time = START + self.family % 300 * DAY + newer * 90 * DAY + self.role
        self.license = LICENSES[self.family % len(LICENSES)]
        self.group = GROUPS[self.family % 7 if number % 500 else 7]
        self.dice = random.Random(number)

    @property
    def url(self) -> str:
        return "https://%s.example.org/" % self.stem

    @property
    def source(self) -> str:
        return "%s-%s-%s.src.rpm" % (self.stem, self.version, self.release)

    @property
    def evr(self) -> str:
        return "%s-%s" % (self.version, self.release)

    @property
    def digest(self) -> str:
        return hashlib.sha256(("%s-%s.%s" % (self.name, self.evr, self.arch)).encode()).hexdigest()

    def size(self) -> int:
        return 8000 + self.number * 2654435761 % (1 << (12 + self.family % 12))

    def summary(self) -> str:
        self.dice.seed(self.number)
        return " ".join(self.dice.choices(WORDS, k=6)).capitalize()

    def description(self) -> str:
        self.dice.seed(self.number + 1)
        return "\n".join("%s." % " ".join(self.dice.choices(WORDS, k=13)).capitalize() for _ in range(4))

    def provides(self) -> List[Tuple[str, str]]:
        bits = {"x86_64": "(x86-64)", "i686": "(x86-32)"}.get(self.arch)
        out = [(self.name, self.evr)]
        if bits:
            out.append((self.name + bits, self.evr))
        if self.role in (1, 2):
            out.append((soname(self.family, self.arch), ""))
        if self.number == 0:
            out += [("/bin/sh", ""), ("system-release", "9"), ("system-release(releasever)", "9")]
        return out

    def requires(self) -> List[str]:
        if self.role == 3:
            return [self.stem + "-libs" if self.name.endswith("-devel") else self.stem]
        self.dice.seed(self.number + 2)
        # Old families are asked for far more often than young ones.
        others = {int(self.family * self.dice.random() ** 3) for _ in range(2 + self.number % 7)}
        others.discard(self.family)
        out = [soname(family, self.arch) for family in sorted(others)]
        if self.role == 0:
            out += [soname(self.family, self.arch), "/bin/sh"]
        return out

    def files(self) -> Iterable[Tuple[str, List[str]]]:
        """Folders and the names in them: 110 files on the average."""
        count = (120, 12, 12, 296)[self.role]
        if self.role == 0:
            yield "/usr/bin", [self.stem]
        place = "/usr/%s/%s" % ({"x86_64": "lib64", "i686": "lib"}.get(self.arch, "share"), self.name)
        for part in range(0, count, 40):
            start = (self.number * 131 + part) % 3950
            names = BASES[start:start + min(40, count - part)]
            yield "%s/%s" % (place, STEMS[part * 3 // 40]), names

    def changes(self) -> List[Tuple[int, str, str]]:
        """Newest first, as a header has them."""
        return [(self.time - age * 50 * DAY, "%s Example <%s@example.org> - %s" % (
            STEMS[(self.family + age) % 601].capitalize(), STEMS[(self.family + age) % 601], self.evr),
            "- %s\n- %s" % (" ".join(WORDS[(self.number + age + n) % len(WORDS)] for n in range(6)), "Rebuild"))
            for age in (0, 1)]


def stem_of(family: int) -> str:
    pair = family * 7919 % (601 * 601)
    return "%s-%s" % (STEMS[pair // 601], STEMS[pair % 601]) if family % 3 else STEMS[pair // 601] + STEMS[pair % 601] + "x"


def soname(family: int, arch: str) -> str:
    return "lib%s.so.%d%s" % (stem_of(family), family % 4, "" if arch == "i686" else "()(64bit)")


def updated(family: int) -> bool:
    return family * 2654435761 % (1 << 32) < (1 << 32) // 9


def xml(text: str) -> str:
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def entry(name: str, version: str) -> str:
    if not version:
        return '<rpm:entry name="%s"/>' % name
    number, _, release = version.partition("-")
    return '<rpm:entry name="%s" flags="EQ" epoch="0" ver="%s"%s/>' % (
        name, number, ' rel="%s"' % release if release else "")


def primary(item: Item) -> str:
    size = item.size()
    files = "<file>/usr/bin/%s</file>" % item.stem if item.role == 0 else ""
    requires = "".join(entry(name, "") for name in item.requires())
    return (
        '<package type="rpm"><name>%s</name><arch>%s</arch><version epoch="0" ver="%s" rel="%s"/>\n'
        '<checksum type="sha256" pkgid="YES">%s</checksum><summary>%s</summary><description>%s</description>\n'
        '<packager>%s</packager><url>%s</url><time file="%d" build="%d"/>\n'
        '<size package="%d" installed="%d" archive="%d"/><location href="Packages/%s-%s.%s.rpm"/>\n'
        '<format><rpm:license>%s</rpm:license><rpm:vendor>%s</rpm:vendor><rpm:group>%s</rpm:group>'
        '<rpm:buildhost>build.example.org</rpm:buildhost><rpm:sourcerpm>%s</rpm:sourcerpm>'
        '<rpm:header-range start="4504" end="9000"/>\n<rpm:provides>%s</rpm:provides>%s%s</format></package>\n' % (
            item.name, item.arch, item.version, item.release, item.digest, xml(item.summary()),
            xml(item.description()), xml(item.packager), item.url, item.time, item.time, size, size * 3, size * 3 + 500,
            item.name, item.evr, item.arch, item.license, item.vendor, item.group, item.source,
            "".join(entry(name, version) for name, version in item.provides()),
            "<rpm:requires>%s</rpm:requires>" % requires if requires else "", files))


def head(item: Item) -> str:
    return '<package pkgid="%s" name="%s" arch="%s"><version epoch="0" ver="%s" rel="%s"/>\n' % (
        item.digest, item.name, item.arch, item.version, item.release)


def filelists(item: Item) -> str:
    out = [head(item)]
    for folder, names in item.files():
        if folder != "/usr/bin":
            out.append('<file type="dir">%s</file>\n' % folder)
        front = "<file>%s/" % folder
        out += [front + name + "</file>\n" for name in names]
    out.append("</package>\n")
    return "".join(out)


def other(item: Item) -> str:
    return head(item) + "".join(
        '<changelog author="%s" date="%d">%s</changelog>\n' % (xml(author), date, xml(text))
        for date, author, text in reversed(item.changes())) + "</package>\n"


PARTS = {
    "primary": ("metadata", "common", primary),
    "filelists": ("filelists", "filelists", filelists),
    "other": ("otherdata", "other", other),
}


class Compressed:
    """A gzip file that knows what repomd.xml tells of it; the same bytes each time."""

    def __init__(self, path: Path):
        self.stream = open(path, "wb")
        self.packer = zlib.compressobj(4, zlib.DEFLATED, 31)
        self.open_digest, self.digest = hashlib.sha256(), hashlib.sha256()
        self.open_size = self.size = 0

    def write(self, text: str) -> None:
        data = text.encode()
        self.open_digest.update(data)
        self.open_size += len(data)
        self.put(self.packer.compress(data))

    def put(self, data: bytes) -> None:
        self.digest.update(data)
        self.size += len(data)
        self.stream.write(data)

    def close(self) -> None:
        self.put(self.packer.flush())
        self.stream.close()


def write_part(task: Tuple[Path, str, int, bool]) -> str:
    """Writes one metadata file; gives its entry of repomd.xml."""
    folder, kind, packages, newer = task
    root, space, render = PARTS[kind]
    numbers = [number for number in range(packages) if not newer or updated(number // 4)]
    out = Compressed(folder / (kind + ".xml.gz"))
    out.write('<?xml version="1.0" encoding="UTF-8"?>\n<%s xmlns="http://linux.duke.edu/metadata/%s" '
              'xmlns:rpm="http://linux.duke.edu/metadata/rpm" packages="%d">\n' % (root, space, len(numbers)))
    for start in range(0, len(numbers), 100):
        out.write("".join([render(Item(number, newer)) for number in numbers[start:start + 100]]))
    out.write("</%s>\n" % root)
    out.close()
    return repomd_entry(kind, kind + ".xml.gz", out.digest.hexdigest(), out.size, out.open_digest.hexdigest(),
                        out.open_size)


def repomd_entry(kind: str, name: str, digest: str, size: int, open_digest: str = "", open_size: int = 0) -> str:
    opened = ('<open-checksum type="sha256">%s</open-checksum><open-size>%d</open-size>' % (open_digest, open_size)
              if open_digest else "")
    return ('<data type="%s"><checksum type="sha256">%s</checksum>%s<location href="repodata/%s"/>'
            "<timestamp>%d</timestamp><size>%d</size></data>\n" % (kind, digest, opened, name, START, size))


def group_file(packages: int) -> str:
    groups = []
    for number in range(40):
        names = [Item(4 * ((number * 37 + at) % (packages // 4))).name for at in range(30)]
        groups.append(Group("group-%02d" % number, "%s tools" % STEMS[number * 3].capitalize(),
                            " ".join(WORDS[number:number + 12]), number % 8 != 0, tuple(names[:10]),
                            tuple(names[10:20]), tuple(names[20:])))
    return comps(groups)


def write_repositories(directory: Path, packages: int) -> None:
    tasks = []
    # The largest first: filelists of the large one takes longest.
    for kind in ("filelists", "primary", "other"):
        for name in ("large", "updates"):
            folder = directory / "repos" / name / "repodata"
            folder.mkdir(parents=True, exist_ok=True)
            tasks.append((folder, kind, packages, name == "updates"))
    with multiprocessing.Pool() as pool:
        entries = pool.map(write_part, tasks, 1)
    text = group_file(packages).encode()
    place = directory / "repos" / "large" / "repodata"
    (place / "comps.xml").write_bytes(text)
    for folder in {task[0] for task in tasks}:
        mine = [line for task, line in zip(tasks, entries) if task[0] == folder]
        if folder == place:
            mine.append(repomd_entry("group", "comps.xml", hashlib.sha256(text).hexdigest(), len(text)))
        (folder / "repomd.xml").write_text(
            '<?xml version="1.0" encoding="UTF-8"?>\n<repomd xmlns="http://linux.duke.edu/metadata/repo">\n'
            "<revision>%d</revision>\n%s</repomd>\n" % (START, "".join(mine)), encoding="utf-8")


def write_root(directory: Path, count: int) -> None:
    root = directory / "root"
    for folder in ("var/lib/rpm", "var/cache", "var/log", "etc/yum.repos.d"):
        (root / folder).mkdir(parents=True, exist_ok=True)
    (root / "etc" / "yum.conf").write_text("[main]\ncachedir=/var/cache/yum\nkeepcache=0\ngpgcheck=0\nplugins=0\n")
    (root / "etc" / "yum.repos.d" / "bench.repo").write_text("\n".join(
        "[%s]\nname=%s\nbaseurl=file://%s/repos/%s\nenabled=1\ngpgcheck=0\n" % (name, name.capitalize(), directory, name)
        for name in ("large", "updates")))
    headers = directory / "headers"
    with open(headers, "wb") as stream:
        for number in range(count):
            stream.write(installed(Item(number), number))
    with open(headers, "rb") as stream:
        subprocess.run([*privileges(), "rpmdb", *rpm_root(root), "--importdb"], stdin=stream, check=True)
    headers.unlink()


def timed(what: str, step: Callable, *arguments) -> None:
    start = time.monotonic()
    step(*arguments)
    print("%-14s %6.1f s" % (what, time.monotonic() - start), flush=True)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("directory", type=Path)
    parser.add_argument("--packages", type=int, default=66000, help="of the large repository (%(default)s)")
    parser.add_argument("--installed", type=int, default=2500, help="packages in the root (%(default)s)")
    options = parser.parse_args()
    if not 4 <= options.installed <= options.packages:
        parser.error("there must be 4 packages, and not more installed than there are")
    directory = Path(os.path.abspath(options.directory))
    for name in ("root", "repos"):
        if (directory / name).exists():
            shutil.rmtree(directory / name)
    timed("rpm database", write_root, directory, options.installed)
    timed("repositories", write_repositories, directory, options.packages)
    return 0


if __name__ == "__main__":
    sys.exit(main())
