# SPDX-License-Identifier: GPL-2.0-or-later
"""The man page: it is well formed, and its options are those that the program tells."""

import os
import re
import shutil
import subprocess
import unittest
from pathlib import Path

import texts

FILE = Path(os.environ["VOK_BUILT"]) / "docs/vok.1"
# What the tool puts at the head of each page for formatters that know links.
HEAD = re.compile(r"skipping insecure request: mso|skipping unknown macro:  LINKSTYLE")


def manual_options():
    """The options of the page, read as a person reads it."""
    page = re.search(r'\.SH "OPTIONS"\n(.*?)\n\.SH ', FILE.read_text(encoding="utf-8"), re.DOTALL).group(1)
    plain = re.sub(r"\\f[A-Z]", "", page).replace(r"\-", "-")
    return {texts.Option.parse(line) for line in re.findall(r"\.sp\n(-.+)\n\.RS 4", plain)}


class ManPage(unittest.TestCase):
    """As built."""

    def test_the_options_are_those_of_the_help(self):
        self.assertEqual(manual_options(), texts.options())

    def test_the_words_of_options_are_those_of_the_help(self):
        page = FILE.read_text(encoding="utf-8")
        for word in re.findall(r"^ {31}(.+)$", texts.help_text(), re.MULTILINE):
            for one in word.split(", "):
                self.assertIn(one.split()[0], page)

    @unittest.skipUnless(shutil.which("mandoc"), "there is no mandoc")
    def test_mandoc_finds_no_error(self):
        found = subprocess.run(["mandoc", "-Tlint", "-Werror", FILE], stdout=subprocess.PIPE,
                               check=False).stdout.decode()
        self.assertEqual([line for line in found.splitlines() if not HEAD.search(line)], [])

    @unittest.skipUnless(shutil.which("man"), "there is no man")
    def test_man_has_no_warnings(self):
        shown = subprocess.run(["man", "--warnings", "-l", FILE], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               env=dict(os.environ, MANWIDTH="80"), check=True)
        self.assertEqual(shown.stderr.decode(), "")
        if shown.stdout:  # Systems without manuals have a command that shows nothing.
            self.assertIn("VOKROOT", shown.stdout.decode())


if __name__ == "__main__":
    unittest.main()
