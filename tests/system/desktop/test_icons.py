# SPDX-License-Identifier: GPL-2.0-or-later
"""The pictures in share/: complete, made of their drawings, seen on any background, told apart without colour."""

import itertools
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import pictures
from recorders import SHARE, SOURCE

PROGRAM = "icons/hicolor/%s/apps/org.vok.PackageSteward.%s"
# Icons that stand for one another's opposite in one column or menu.
FAMILIES = (("updateBox", "installBox", "removeBox", "noneBox", "checkBox"), ("update", "install", "remove", "check"),
            ("out-of-date", "up-to-date"), ("suite", "group", "package"))


def checked_in():
    return sorted(path.relative_to(SHARE) for path in SHARE.glob("**/*.png"))


class Icons(unittest.TestCase):
    def test_every_icon_that_the_program_names_is_there(self):
        named = set()
        for path in (SOURCE / "src").glob("**/*.cpp"):
            named.update(re.findall(r'"((?:icons/|pixmaps/)?[\w.-]+)\.png"', path.read_text()))
        named = {name if "/" in name else "icons/" + name for name in named}
        self.assertGreaterEqual(len(named), 15)
        for name in named:
            self.assertTrue((SHARE / (name + ".png")).exists(), name)

    def test_every_icon_has_its_variants_for_smaller_dots(self):
        bases = [path for folder in ("icons", "pixmaps") for path in (SHARE / folder).glob("*.png")
                 if "@" not in path.name]
        self.assertGreaterEqual(len(bases), 15)
        for path in bases:
            size = 64 if path.parent.name == "pixmaps" else 32
            for scale, suffix in ((1, ""), (2, "@2x"), (3, "@3x")):
                picture = pictures.read(path.with_name(path.stem + suffix + ".png"))
                self.assertEqual((picture.width, picture.height), (size * scale, size * scale), path)

    def test_the_programs_icon_has_the_sizes_of_desktops(self):
        self.assertTrue((SHARE / (PROGRAM % ("scalable", "svg"))).exists())
        for size in (16, 22, 24, 32, 48, 64, 128, 256):
            picture = pictures.read(SHARE / (PROGRAM % ("%dx%d" % (size, size), "png")))
            self.assertEqual((picture.width, picture.height), (size, size))

    def test_members_of_a_family_differ_in_grey_at_16_dots(self):
        for family in FAMILIES:
            small = {name: pictures.read(SHARE / "icons" / (name + ".png")).half().grey_on(255) for name in family}
            for one, other in itertools.combinations(family, 2):
                apart = sum(abs(a - b) > 48 for a, b in zip(small[one], small[other]))
                self.assertGreater(apart, 16, "dots by which %s and %s differ" % (one, other))

    def test_every_icon_is_seen_on_white_and_grey_and_black(self):
        for path in sorted((SHARE / "icons").glob("*.svg")):
            small = pictures.read(path.with_suffix(".png")).half()
            for background in (255, 128, 0):
                seen = sum(abs(dot - background) > 40 for dot in small.grey_on(background))
                self.assertGreater(seen, 20, "%s on %d" % (path.name, background))

    def test_margins_of_boxes_are_sharp_at_16_dots(self):
        for name in ("updateBox", "installBox", "removeBox", "noneBox", "checkBox"):
            small = pictures.read(SHARE / "icons" / (name + ".png")).half()
            for y in range(4, 12):
                self.assertEqual([round(small.dots[y * 16 + x][3]) for x in (0, 1, 14, 15)], [0, 255, 255, 0], name)

    @unittest.skipUnless(shutil.which("rsvg-convert"), "rsvg-convert is missing")
    def test_pictures_are_what_the_drawings_give(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([str(SOURCE / "scripts" / "render-icons"), folder], check=True)
            made = sorted(path.relative_to(folder) for path in Path(folder).glob("**/*.png"))
            self.assertEqual(made, checked_in())
            for path in made:
                new, old = pictures.read(Path(folder) / path), pictures.read(SHARE / path)
                self.assertEqual((new.width, new.height), (old.width, old.height), path)
                # Another version of the renderer may round another way.
                off = sum(abs(a - b) > 24 for one, other in zip(new.dots, old.dots) for a, b in zip(one, other))
                self.assertLess(off, len(new.dots) * 4 // 100 + 1, path)

    @unittest.skipUnless(shutil.which("rsvg-convert"), "rsvg-convert is missing")
    def test_the_same_renderer_makes_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as one, tempfile.TemporaryDirectory() as other:
            for folder in (one, other):
                subprocess.run([str(SOURCE / "scripts" / "render-icons"), folder], check=True)
            for path in checked_in():
                self.assertEqual((Path(one) / path).read_bytes(), (Path(other) / path).read_bytes(), path)


if __name__ == "__main__":
    unittest.main()
