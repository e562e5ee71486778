# SPDX-License-Identifier: GPL-2.0-or-later
"""Each file says under which licence it is, and the texts of all these licences are shipped."""

import fnmatch
import re
import unittest
from pathlib import Path

import tree

OURS = "GPL-2.0-or-later"
# Not in one piece: whoever collects licences would take what follows for the name of one.
NAME = "SPDX-License-" + "Identifier"
TAG = re.compile(NAME + r": ([A-Za-z0-9.+-]+)")
#: May be under another licence: what describes the program to catalogues is copied into theirs.
FREER = {"*.metainfo.xml": {"CC0-1.0", "FSFAP"}}


def spoken_for():
    """The patterns of REUSE.toml with a licence."""
    patterns = []
    for block in tree.read("REUSE.toml").split("[[annotations]]")[1:]:
        licence = re.search(NAME + ' = "(.*)"', block)
        if licence:
            path = re.search(r"^path = (\[.*?\]|.*?$)", block, re.MULTILINE | re.DOTALL).group(1)
            patterns += [(pattern, licence.group(1)) for pattern in re.findall(r'"(.*?)"', path)]
    return patterns


def matches(path: Path, pattern: str) -> bool:
    """As REUSE has it: one asterisk stands for part of a name, two for folders, too."""
    words = [re.escape(word).replace(r"\*", "[^/]*") for word in pattern.split("**")]
    return re.fullmatch(".*".join(words), str(path)) is not None


def said(path: Path) -> str:
    """The licence in the line where it belongs, or beside a file that has no room; empty where there is none."""
    beside = tree.TOP / (str(path) + ".license")
    if beside.exists():
        return TAG.search(beside.read_text(encoding="utf-8")).group(1)
    with open(tree.TOP / path, "rb") as stream:
        head = [stream.readline(), stream.readline()]
    # What says what the file is comes first.
    second = head[0].startswith((b"#!", b"<?xml", b"<svg", b"#compdef"))
    lines = head if second else head[:1]
    found = TAG.search(b"".join(lines).decode("utf-8", "replace"))
    return found.group(1) if found else ""


class Licences(unittest.TestCase):
    def setUp(self):
        self.files = [path for path in tree.files() if path.parts[0] not in ("LICENSE", "LICENSES")]

    def licences(self):
        patterns = spoken_for()
        found = {}
        for path in self.files:
            other = [licence for pattern, licence in patterns if matches(path, pattern)]
            found[path] = said(path) or (other[-1] if other else "")
        return found

    def test_every_file_has_a_licence(self):
        self.assertGreater(len(self.files), 300)
        silent = [str(path) for path, licence in self.licences().items() if not licence]
        self.assertEqual(silent, [])

    def test_what_can_say_its_licence_says_it_itself(self):
        kinds = {".cpp", ".h", ".py", ".cmake", ".svg", ".spec", ".in", ".desktop"}
        silent = [str(path) for path in self.files
                  if (path.suffix in kinds or path.name == "CMakeLists.txt" or path.parts[0] == "scripts")
                  and not said(path)]
        self.assertEqual(silent, [])

    def test_all_is_under_the_same_licence(self):
        for path, licence in self.licences().items():
            allowed = {OURS}
            for pattern, freer in FREER.items():
                if fnmatch.fnmatchcase(path.name, pattern + "*"):
                    allowed |= freer
            with self.subTest(path=str(path)):
                self.assertIn(licence, allowed)

    def test_no_file_confuses_those_who_collect_licences(self):
        for path in self.files:
            text = (tree.TOP / path).read_bytes().decode("utf-8", "replace")
            for line in re.findall("^.*%s:.*$" % NAME, text, re.MULTILINE):
                self.assertRegex(line, r"%s: [A-Za-z0-9.+-]+( -->| \*/|\r)?$" % NAME, str(path))

    def test_the_texts_of_the_licences_are_those_in_use(self):
        texts = {path.stem for path in (tree.TOP / "LICENSES").iterdir()}
        self.assertEqual(texts, set(self.licences().values()))

    def test_the_text_is_whole(self):
        text = tree.read("LICENSES/%s.txt" % OURS)
        self.assertIn("GNU GENERAL PUBLIC LICENSE\n                       Version 2, June 1991", text)
        self.assertIn("11. BECAUSE THE PROGRAM IS LICENSED FREE OF CHARGE", text)
        self.assertIn("END OF TERMS AND CONDITIONS", text)
        self.assertEqual(tree.read("LICENSE"), text)

    def test_descriptions_name_the_licence(self):
        described = [path for path in self.files if path.name.endswith((".metainfo.xml", ".metainfo.xml.in"))]
        for path in described:
            self.assertIn("<project_license>%s</project_license>" % OURS, tree.read(path), str(path))
            metadata = re.search("<metadata_license>(.*)</metadata_license>", tree.read(path)).group(1)
            self.assertEqual(metadata, said(path), str(path))
        self.assertRegex(tree.read("packaging/rpm/vok.spec"), r"(?m)^License: +%s$" % OURS)
        self.assertIn(OURS, tree.read("README.md"))


if __name__ == "__main__":
    unittest.main()
