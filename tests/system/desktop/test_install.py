# SPDX-License-Identifier: GPL-2.0-or-later
"""What is installed: where the program and the desktop look for it, each time the same."""

import os
import re
import shutil
import stat
import subprocess
import unittest
from pathlib import Path

from recorders import SHARE, SOURCE, Recorders

BUILD = Path(os.environ.get("VOK_BUILD", SOURCE / "build" / "release"))
CMAKE = os.environ.get("VOK_CMAKE", "cmake")
TREE = Path(__file__).with_name("installed.txt")


def cached(name, default):
    found = re.search(r"^%s:\w+=(.*)$" % name, (BUILD / "CMakeCache.txt").read_text(), re.MULTILINE)
    return found.group(1) if found and found.group(1) else default


@unittest.skipUnless((BUILD / "src" / "shell" / "vok").exists(), "the program isn't built")
class Installed(Recorders):
    # Parts of the cache that the list takes for granted.
    NAMES = {"bin": "CMAKE_INSTALL_BINDIR", "libexec": "CMAKE_INSTALL_LIBEXECDIR", "share": "CMAKE_INSTALL_DATADIR"}

    def install(self, prefix, destination=None):
        """Installs and returns the folder that stands for the prefix."""
        environment = {name: value for name, value in os.environ.items() if name != "DESTDIR"}
        if destination:
            environment["DESTDIR"] = str(destination)
        command = [CMAKE, "--install", str(BUILD), "--prefix", str(prefix)]
        if not (BUILD / "docs" / "manual.pdf").exists():
            # Whoever has built the program alone installs it without its manual.
            command += ["--component", "Unspecified"]
        subprocess.run(command, check=True, env=environment, stdout=subprocess.PIPE, cwd=str(self.folder))
        return Path(str(destination or "") + str(prefix))

    def setUp(self):
        super().setUp()
        for folder, name in self.NAMES.items():
            if cached(name, folder) != folder:
                self.skipTest("%s is %s" % (name, cached(name, folder)))

    def files(self, root):
        return sorted(str(path.relative_to(root)) for path in root.glob("**/*") if not path.is_dir())

    def test_the_tree_is_what_is_promised(self):
        """installed.txt names each file; a line that ends in a slash and two stars stands for any number of them."""
        rules = [line for line in TREE.read_text().splitlines() if line and not line.startswith("#")]
        exact = {line for line in rules if not line.endswith("/**")}
        free = tuple(line[:-2] for line in rules if line.endswith("/**"))
        found = self.files(self.install("/usr", self.folder / "stage"))
        self.assertEqual([name for name in found if name not in exact and not name.startswith(free)], [], "not promised")
        self.assertEqual([name for name in sorted(exact) if name not in found], [], "missing")
        for folder in ("share/vok/python/",):
            self.assertTrue(any(name.startswith(folder) for name in found), folder)

    def test_nothing_is_installed_outside_of_the_stage(self):
        stage = self.folder / "stage"
        self.install("/usr", stage)
        self.assertEqual(os.listdir(str(stage)), ["usr"])

    def test_the_whole_script_is_installed(self):
        root = self.install("/usr", self.folder / "stage")
        sources = [path for path in SHARE.glob("python/**/*.py")]
        self.assertGreater(len(sources), 5)
        for path in sources:
            self.assertTrue((root / "share" / "vok" / path.relative_to(SHARE)).exists(), path)
        self.assertEqual([name for name in self.files(root) if "__pycache__" in name or name.endswith(".pyc")], [])

    def test_programs_can_be_executed_and_data_cannot(self):
        root = self.install("/usr", self.folder / "stage")
        for name in self.files(root):
            mode = stat.S_IMODE((root / name).stat().st_mode)
            program = name.startswith(("bin/", "libexec/")) or (root / name).read_bytes()[:2] == b"#!"
            self.assertEqual(mode, 0o755 if program else 0o644, name)

    def test_two_installations_are_equal(self):
        one = self.install("/usr", self.folder / "one")
        other = self.install("/usr", self.folder / "other")
        self.assertEqual(self.files(one), self.files(other))
        for name in self.files(one):
            self.assertEqual((one / name).read_bytes(), (other / name).read_bytes(), name)

    def test_no_file_names_the_place_where_it_was_built(self):
        root = self.install("/usr", self.folder / "stage")
        for name in self.files(root):
            # Debug information does.
            if name != "bin/vok":
                for place in (BUILD, SOURCE, self.folder):
                    self.assertNotIn(str(place).encode(), (root / name).read_bytes(), name)

    def test_programs_know_the_prefix_that_they_were_installed_below(self):
        root = self.install("/usr", self.folder / "stage")
        self.assertIn('vok="/usr/bin/vok"\n', (root / "bin" / "vok-launcher").read_text())
        self.assertIn(">/usr/libexec/vok-as-root<",
                      (root / "share/polkit-1/actions/org.vok.PackageSteward.policy").read_text())
        other = self.install(self.folder / "other place")
        text = (other / "libexec" / "vok-as-root").read_text()
        self.assertIn('%s/bin/vok" "$@"' % other, text)
        for name in ("bin/vok-launcher", "bin/vok-report", "libexec/vok-as-root"):
            self.assertNotRegex((other / name).read_text(), r"@VOK_\w+@")

    def start(self, program, script, **environment):
        """Starts the program with its script replaced by one that writes a word of Python to the file `said`."""
        share, word = script
        (share / "python" / "YumIO.py").write_text(
            "import os\nopen(%r, 'w').write(%s)\nos._exit(0)\n" % (str(self.folder / "said"), word))
        system = self.folder / "system"
        (system / "etc").mkdir(parents=True)
        (system / "etc" / "yum.conf").write_text("[main]\n")
        subprocess.run([str(program)], check=True, timeout=120, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                       env={"QT_QPA_PLATFORM": "offscreen", "HOME": str(self.folder), "PATH": "/usr/bin:/bin",
                            "LC_ALL": "C.UTF-8", "VOKROOT": str(system), **environment})
        return (self.folder / "said").read_text()

    def test_below_another_prefix_the_program_finds_its_data_and_tells_the_script(self):
        root = self.install(self.folder / "opt")
        share = root / "share" / "vok"
        self.assertEqual(self.start(root / "bin" / "vok", (share, "os.environ.get('VOKSHARE', '')")), str(share))

    def test_below_another_prefix_the_help_menu_finds_the_manual(self):
        version = re.search(r"project\(vok VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text()).group(1)
        usual = Path("/usr/share/doc/vok-" + version)
        if usual.exists():
            self.skipTest("there is a manual in %s" % usual)
        root = self.install(self.folder / "opt")
        manual = root / "share" / "doc" / usual.name
        for name in ("html/index.html", "manual.pdf"):
            if not (BUILD / "docs" / "manual.pdf").exists():
                (manual / name).parent.mkdir(parents=True, exist_ok=True)
                (manual / name).write_text("as if it had been built")
        self.command("xdg-open")
        self.run_script(root / "share/vok/webbrowser", str(usual / "html/index.html"))
        self.run_script(root / "share/vok/mimeviewer", "application/pdf", str(usual / "manual.pdf"))
        self.assertEqual(self.called(), [["xdg-open", str(manual / "html/index.html")],
                                         ["xdg-open", str(manual / "manual.pdf")]])

    def test_the_variable_wins_over_the_prefix(self):
        root = self.install(self.folder / "opt")
        share = self.folder / "mine"
        shutil.copytree(str(root / "share" / "vok"), str(share))
        self.assertEqual(self.start(root / "bin" / "vok", (share, "'mine'"), VOKSHARE=str(share)), "mine")


if __name__ == "__main__":
    unittest.main()
