# SPDX-License-Identifier: GPL-2.0-or-later
"""The share directory's pictures and outside scripts."""

import os
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

SHARE = Path(__file__).resolve().parents[3] / "share"
ICONS = ("update", "install", "remove", "check", "updateBox", "installBox", "removeBox", "checkBox", "noneBox",
         "out-of-date", "up-to-date", "suite", "group", "package")


def size(path: Path):
    data = path.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", path
    return struct.unpack(">II", data[16:24])


class Icons(unittest.TestCase):
    def test_every_icon_is_a_small_square_picture_and_has_its_drawing(self):
        for name in ICONS:
            self.assertEqual(size(SHARE / "icons" / (name + ".png")), (32, 32), name)
            self.assertTrue((SHARE / "icons" / (name + ".svg")).exists(), name)
        self.assertEqual(size(SHARE / "pixmaps" / "vok.icon.png"), (64, 64))

    def test_no_two_icons_are_the_same(self):
        self.assertEqual(len({(SHARE / "icons" / (name + ".png")).read_bytes() for name in ICONS}), len(ICONS))


class Outside(unittest.TestCase):
    """The scripts with commands in their way that only tell how they were called."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.bin = self.folder / "bin"
        self.bin.mkdir()
        self.file = self.folder / "a file;$(touch evil).pdf"
        self.file.write_text("text")

    def command(self, name: str, status: int = 0):
        path = self.bin / name
        path.write_text('#!/bin/sh\nfor word in "$0" "$@"; do printf "<%%s>" "${word##*/bin/}"; done\nexit %d\n' % status)
        path.chmod(0o755)

    def run_script(self, name: str, *arguments, **environment):
        return subprocess.run(["/bin/sh", str(SHARE / name), *arguments], cwd=self.folder, check=False,
                              env={"PATH": str(self.bin), **environment}, encoding="utf-8",
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def test_the_browser_gets_the_url_as_one_word_whatever_is_in_it(self):
        self.command("xdg-open")
        url = "http://host/$(touch evil)`touch evil`; touch evil & * 'x\"%s"
        self.assertEqual(self.run_script("webbrowser", url).stdout, "<xdg-open><%s>" % url)
        self.assertFalse((self.folder / "evil").exists())

    def test_the_users_own_browser_comes_first(self):
        self.command("xdg-open")
        self.command("mine")
        done = self.run_script("webbrowser", "http://host/", BROWSER="missing:mine --new %s -x:other")
        self.assertEqual(done.stdout, "<mine><--new><http://host/><-x>")

    def test_a_browser_that_fails_is_followed_by_the_next(self):
        self.command("xdg-open", status=3)
        self.command("firefox")
        self.assertEqual(self.run_script("webbrowser", "/").stdout, "<xdg-open></><firefox></>")

    def test_nothing_to_browse_starts_nothing_and_is_no_failure(self):
        self.command("xdg-open")
        for arguments in ((), ("",)):
            done = self.run_script("webbrowser", *arguments)
            self.assertEqual((done.stdout, done.returncode), ("", 0))

    def test_what_is_no_url_starts_nothing(self):
        self.command("xdg-open")
        for target in ("-version", "javascript:alert(1)", "host", "/no/such/file"):
            done = self.run_script("webbrowser", target)
            self.assertEqual((done.stdout, done.returncode), ("", 1), target)

    def test_without_a_browser_the_password_in_the_url_stays_secret(self):
        done = self.run_script("webbrowser", "http://host/vantry?user=a&pass=geheim&path=/x")
        self.assertEqual(done.returncode, 1)
        self.assertIn("no browser found", done.stderr)
        self.assertNotIn("geheim", done.stderr)

    def test_the_viewer_gets_the_file_as_one_word(self):
        self.command("xdg-open")
        done = self.run_script("mimeviewer", "application/pdf", str(self.file))
        self.assertEqual((done.stdout, done.returncode), ("<xdg-open><%s>" % self.file, 0))

    def test_the_mailcap_is_asked_by_type(self):
        self.command("run-mailcap")
        done = self.run_script("mimeviewer", "application/pdf", str(self.file))
        self.assertEqual(done.stdout, "<run-mailcap><--action=view><application/pdf:%s>" % self.file)

    def test_no_type_no_file_and_no_viewer_are_failures(self):
        for arguments in ((), ("application/pdf",), ("application/pdf", "/no/such/file"), ("pdf", str(self.file)),
                          ("a/b;c", str(self.file)), ("application/pdf", str(self.file))):
            done = self.run_script("mimeviewer", *arguments)
            self.assertEqual(done.returncode, 1, arguments)
            self.assertIn("mimeviewer: ", done.stderr)

    def test_both_scripts_can_be_executed(self):
        for name in ("webbrowser", "mimeviewer"):
            self.assertTrue(os.access(SHARE / name, os.X_OK), name)


if __name__ == "__main__":
    unittest.main()
