# SPDX-License-Identifier: GPL-2.0-or-later
"""The translations: complete, up to date with the sources, and as the originals where the program relies on that."""

import collections
import os
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[3]
FILES = sorted((SOURCE / "translations").glob("*.ts"))


def messages(path):
    """(context, source, translation element) of each message."""
    for context in ElementTree.parse(str(path)).getroot().findall("context"):
        for message in context.findall("message"):
            yield context.find("name").text, message.find("source").text, message.find("translation")


def lupdate():
    for name in ("lupdate-qt5", "lupdate", "/usr/lib/qt5/bin/lupdate"):
        found = shutil.which(name)
        if found:
            return found
    return None


class Translations(unittest.TestCase):
    def each(self):
        self.assertTrue(FILES)
        for path in FILES:
            for context, source, translation in messages(path):
                yield context, source, translation

    def test_every_text_is_translated(self):
        for _, source, translation in self.each():
            self.assertIsNone(translation.get("type"), source)
            self.assertTrue((translation.text or "").strip(), source)

    def test_the_same_values_are_filled_in(self):
        for _, source, translation in self.each():
            placeholders = re.compile(r"%(?:[0-9]|%|s)")
            self.assertEqual(collections.Counter(placeholders.findall(translation.text)),
                             collections.Counter(placeholders.findall(source)), source)

    def test_lines_end_where_the_originals_do(self):
        for _, source, translation in self.each():
            self.assertEqual(translation.text.endswith("\n"), source.endswith("\n"), source)
            self.assertEqual(translation.text.startswith("\t"), source.startswith("\t"), source)

    def test_what_has_a_key_to_press_keeps_one(self):
        key = re.compile("&[^& ]")
        for _, source, translation in self.each():
            self.assertEqual(len(key.findall(translation.text)), len(key.findall(source)), source)

    def test_names_of_colours_fonts_and_keys_stay(self):
        for context, source, translation in self.each():
            if context in ("Colors", "Fonts") or re.fullmatch("Ctrl[+].", source):
                self.assertEqual(translation.text, source)

    @unittest.skipUnless(lupdate(), "no lupdate here")
    def test_they_have_the_texts_of_the_sources(self):
        """Otherwise: build the target translations-update, and translate what is new."""
        with tempfile.TemporaryDirectory() as folder:
            for path in FILES:
                with self.subTest(file=path.name):
                    copy = os.path.join(folder, path.name)
                    shutil.copy(str(path), copy)
                    run = subprocess.run([lupdate(), "-silent", "-locations", "none", "-no-obsolete",
                                          str(SOURCE / "src"), "-ts", copy],
                                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, universal_newlines=True)
                    self.assertEqual(run.returncode, 0, run.stdout)
                    # Texts that it can't tell the class of would be left out.
                    self.assertNotIn("without context", run.stdout)
                    self.assertEqual([(context, source) for context, source, _ in messages(copy)],
                                     [(context, source) for context, source, _ in messages(path)])


if __name__ == "__main__":
    unittest.main()
