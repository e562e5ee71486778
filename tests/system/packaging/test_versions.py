# SPDX-License-Identifier: GPL-2.0-or-later
"""All places that name the version of the program name the same."""

import re
import time
import unittest

import tree


class Versions(unittest.TestCase):
    def setUp(self):
        self.version = tree.version()
        self.assertRegex(self.version, r"^\d+\.\d+\.\d+$")

    def test_the_program_shows_it_and_looks_there_for_its_manual(self):
        program = tree.program().read_bytes()
        self.assertIn(b"\0%s\0" % self.version.encode(), program)
        # Texts of the program's own are kept in two bytes a character.
        self.assertIn(("/usr/share/doc/vok-%s\0" % self.version).encode("utf-16-le"), program)

    def test_the_package_has_it(self):
        spec = tree.read("packaging/rpm/vok.spec")
        self.assertEqual(re.findall(r"(?m)^Version: +(.*)$", spec), [self.version])
        entry = spec.split("\n%changelog\n")[1].splitlines()[0]
        self.assertRegex(entry, r"^\* \w{3} \w{3} \d\d \d{4} .+ <.+@.+> - %s-\d+$" % re.escape(self.version))

    def test_the_list_of_changes_begins_with_it(self):
        headings = re.findall(r"(?m)^## \[(.*?)\](?: - (\S+))?$", tree.read("CHANGELOG.md"))
        self.assertEqual(headings[0], ("Unreleased", ""))
        self.assertEqual(headings[1][0], self.version)
        for name, date in headings[1:]:
            with self.subTest(version=name):
                time.strptime(date, "%Y-%m-%d")

    def test_the_dates_of_the_release_agree(self):
        spec = tree.read("packaging/rpm/vok.spec")
        day = time.strptime(spec.split("\n%changelog\n* ")[1][:15], "%a %b %d %Y")
        changes = re.search(r"(?m)^## \[%s\] - (.*)$" % re.escape(self.version), tree.read("CHANGELOG.md")).group(1)
        self.assertEqual(changes, time.strftime("%Y-%m-%d", day))

    def test_catalogues_and_manuals_have_it(self):
        for path in tree.files():
            if path.name.endswith(".metainfo.xml"):
                release = re.search(r'<release [^>]*version="(.*?)"', tree.read(path))
                self.assertEqual(release and release.group(1), self.version, str(path))
            elif path.suffix == ".adoc":
                for found in re.findall(r"(?m)^(?::revnumber:|:manversion:|:vok-version:) +(\d\S*)$", tree.read(path)):
                    self.assertEqual(found, self.version, str(path))


if __name__ == "__main__":
    unittest.main()
