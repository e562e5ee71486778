# SPDX-License-Identifier: GPL-2.0-or-later
"""What desktops, shells and their validators say of the files in packaging and of the scripts."""

import configparser
import re
import shutil
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

from recorders import PYTHON, SHARE, SOURCE

PACKAGING = SOURCE / "packaging"
ID = "org.vok.PackageSteward"
ENTRY = PACKAGING / "desktop" / (ID + ".desktop")
METAINFO = PACKAGING / "desktop" / (ID + ".metainfo.xml")
POLICY = PACKAGING / "polkit" / (ID + ".policy.in")
SHELL_SCRIPTS = [SHARE / "webbrowser", SHARE / "mimeviewer", SHARE / "session.sh", SOURCE / "scripts" / "render-icons",
                 PACKAGING / "programs" / "vok-launcher.in", PACKAGING / "programs" / "vok-as-root.in",
                 PACKAGING / "completions" / "vok.bash"]


def wants(command):
    return unittest.skipUnless(shutil.which(command), "%s is missing" % command)


class Validators(unittest.TestCase):
    def run_silently(self, *command):
        done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              encoding="utf-8", check=False, cwd=str(SOURCE), timeout=60)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

    @wants("desktop-file-validate")
    def test_the_desktop_entry_is_valid(self):
        self.run_silently("desktop-file-validate", ENTRY)

    @wants("appstreamcli")
    def test_the_metainfo_is_valid(self):
        self.run_silently("appstreamcli", "validate", "--pedantic", "--no-net", METAINFO)

    @wants("appstream-util")
    def test_the_metainfo_is_valid_for_those_who_build_packages(self):
        self.run_silently("appstream-util", "validate-relax", "--nonet", METAINFO)

    @wants("shellcheck")
    def test_scripts_pass_shellcheck(self):
        for path in SHELL_SCRIPTS:
            self.run_silently("shellcheck", "-x", "-P", SOURCE, "-P", SHARE, path)

    @wants("dash")
    def test_scripts_for_sh_are_read_by_a_plain_one(self):
        for path in SHELL_SCRIPTS:
            if re.match(r"#!/bin/sh\n|#.*\n# shellcheck shell=sh\n", path.read_text()):
                self.run_silently("dash", "-n", path)

    @wants("zsh")
    def test_completion_for_zsh_is_read_by_it(self):
        self.run_silently("zsh", "-f", "-n", PACKAGING / "completions" / "_vok")

    def test_the_report_is_python(self):
        text = (PACKAGING / "programs" / "vok-report.in").read_text()
        compile(text, "vok-report", "exec")
        self.assertTrue(text.startswith("#!%s -I\n" % PYTHON))
        if shutil.which("pyflakes3"):
            done = subprocess.run(["pyflakes3"], input=text, encoding="utf-8", check=False, stdout=subprocess.PIPE)
            self.assertEqual(done.stdout, "")


class Agreement(unittest.TestCase):
    """Names and versions that stand in several files."""

    def setUp(self):
        self.metainfo = ElementTree.parse(str(METAINFO)).getroot()
        self.entry = configparser.ConfigParser(interpolation=None)
        self.entry.optionxform = str
        self.entry.read_string(ENTRY.read_text())

    def test_the_release_is_the_programs(self):
        version = re.search(r"project\(vok VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text()).group(1)
        self.assertEqual(self.metainfo.find("releases/release").get("version"), version)

    def test_the_application_has_one_name(self):
        self.assertEqual(self.metainfo.findtext("id"), ID)
        self.assertEqual(self.metainfo.findtext("launchable"), ENTRY.name)
        self.assertEqual(self.entry["Desktop Entry"]["Icon"], ID)
        self.assertEqual(ElementTree.parse(str(POLICY)).findtext("icon_name"), ID)
        self.assertTrue((SHARE / "icons/hicolor/scalable/apps" / (ID + ".svg")).exists())

    def test_desktops_are_told_all_of_it_in_the_languages_of_the_program(self):
        languages = [path.stem.partition("_")[2] for path in (SOURCE / "translations").glob("vok_*.ts")]
        self.assertIn("de", languages)
        kind = "{http://www.w3.org/XML/1998/namespace}lang"
        for language in languages:
            for name in self.entry.sections():
                for key in ("GenericName", "Comment", "Keywords") if name == "Desktop Entry" else ("Name",):
                    self.assertTrue(self.entry[name].get("%s[%s]" % (key, language)), (name, key, language))
            for root, tags in ((self.metainfo, ("summary", "developer_name", "p", "li")),
                               (ElementTree.parse(str(POLICY)).getroot(), ("description", "message"))):
                for tag in tags:
                    found = [element.get(kind) for element in root.iter(tag)]
                    self.assertGreater(found.count(None), 0, tag)
                    self.assertEqual(found.count(language), found.count(None), (tag, language))

    def test_each_entry_of_the_menu_starts_the_launcher_with_options_of_vok(self):
        options = set(re.findall(r'^ +\{"([\w-]+)", \w+_argument',
                                 (SOURCE / "src/shell/CommandLine.cpp").read_text(), re.MULTILINE))
        self.assertIn("repo-editor", options)
        sections = [name for name in self.entry.sections() if name.startswith("Desktop Action ")]
        self.assertEqual(["Desktop Action " + name for name in self.entry["Desktop Entry"]["Actions"].split(";") if name],
                         sections)
        for name in ["Desktop Entry"] + sections:
            words = self.entry[name]["Exec"].split()
            self.assertEqual(words[0], "vok-launcher")
            for word in words[1:]:
                self.assertIn(word.split("=")[0].lstrip("-"), options)

    def test_every_option_is_completed_and_passed_on(self):
        source = (SOURCE / "src/shell/CommandLine.cpp").read_text()
        options = set(re.findall(r'^ +\{"([\w-]+)", \w+_argument', source, re.MULTILINE))
        self.assertEqual(len(options), 10)
        words = set(re.findall(r'"(filter|search|updatable|installable|removable|all)", PackageTable', source))
        self.assertEqual(len(words), 6)
        for name in ("vok.bash", "_vok"):
            text = (PACKAGING / "completions" / name).read_text()
            for option in options:
                self.assertIn("--" + option, text, name)
            for word in words:
                self.assertRegex(text, r"[( ]%s[ )]" % word)
        passed = re.search(r"for option in ([\w -]+);", (PACKAGING / "programs" / "vok-as-root.in").read_text())
        self.assertEqual(set(passed.group(1).split()), options)


if __name__ == "__main__":
    unittest.main()
