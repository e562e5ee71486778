# SPDX-License-Identifier: GPL-2.0-or-later
"""The man pages of the programs beside VOK: well formed, and what they say is so."""

import re
import shutil
import subprocess
import unittest

from recorders import PYTHON, SOURCE
from test_install import BUILD

PROGRAMS = SOURCE / "packaging" / "programs"
# What the tool puts at the head of each page for formatters that know links.
HEAD = re.compile(r"skipping insecure request: mso|skipping unknown macro:  LINKSTYLE")


@unittest.skipUnless((BUILD / "docs" / "manual.pdf").exists(), "the manual isn't built")
class ManPages(unittest.TestCase):
    def page(self, name, section=""):
        """The plain text of a page, or of one section."""
        text = (BUILD / "docs" / (name + ".1")).read_text(encoding="utf-8")
        if section:
            text = re.search(r'\.SH "%s"\n(.*?)(\n\.SH |\Z)' % section, text, re.DOTALL).group(1)
        return re.sub(r"\\f[A-Z]", "", text).replace(r"\-", "-").replace(r"\(aq", "'")

    def installed(self):
        return sorted(path.name[:-len(".in")] for path in PROGRAMS.glob("*.in") if path.name != "vok-as-root.in")

    def test_each_program_for_users_has_one(self):
        self.assertEqual(self.installed(), ["vok-launcher", "vok-report"])
        for name in self.installed():
            self.assertRegex(self.page(name, "NAME"), r"^%s - \w" % name)

    def test_they_lead_to_one_another(self):
        names = ["vok"] + self.installed()
        for name in names:
            for other in names:
                if other != name:
                    self.assertIn(other + "(1)", self.page(name, "SEE ALSO"))

    def test_the_options_of_the_report_are_those_that_it_tells(self):
        told = subprocess.run([PYTHON, "-B", "-I", str(PROGRAMS / "vok-report.in"), "--help"], stdout=subprocess.PIPE,
                              encoding="utf-8", check=True).stdout
        options = set(re.findall(r"(?<![\w-])--?[a-z]+", told))
        self.assertIn("--output", options)
        self.assertEqual(set(re.findall(r"(?<![\w-])--?[a-z]+", self.page("vok-report", "OPTIONS"))), options)

    def test_what_the_launcher_passes_on_is_listed(self):
        source = (PROGRAMS / "vok-launcher.in").read_text()
        passed = set(re.findall(r"\$\{(\w+):\+\1=", source))
        self.assertIn("XAUTHORITY", passed)
        listed = set(re.findall(r"\b[A-Z]+(?:_[A-Z]+)+\b|\bDISPLAY\b|\bXAUTHORITY\b", self.page("vok-launcher", "ENVIRONMENT")))
        self.assertEqual(listed, passed)

    @unittest.skipUnless(shutil.which("mandoc"), "there is no mandoc")
    def test_mandoc_finds_no_error(self):
        for name in self.installed():
            found = subprocess.run(["mandoc", "-Tlint", "-Werror", str(BUILD / "docs" / (name + ".1"))],
                                   stdout=subprocess.PIPE, encoding="utf-8", check=False).stdout
            self.assertEqual([line for line in found.splitlines() if not HEAD.search(line)], [], name)


if __name__ == "__main__":
    unittest.main()
