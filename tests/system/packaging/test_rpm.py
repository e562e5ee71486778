# SPDX-License-Identifier: GPL-2.0-or-later
"""The packages that scripts/rpm builds from this tree, anew for this test; its own tests are left out."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import tree


def output(*command) -> str:
    done = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, encoding="utf-8", check=False)
    if done.returncode:
        raise AssertionError("%s: status %d\n%s%s" % (command[0], done.returncode, done.stdout, done.stderr))
    return done.stdout


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.place = Path(os.environ["VOK_PACKAGES"])
        # Whoever builds in another folder finds the same in the cache.
        os.environ.update(CCACHE_BASEDIR=str(cls.place / "work"), CCACHE_NOHASHDIR="1", RPM_BUILD_NCPUS="2")
        output(tree.TOP / "scripts" / "rpm", "--no-check", cls.place)
        cls.rpms = {output("rpm", "-qp", "--qf", "%{name}.%|sourcerpm?{rpm}:{src}|", path): path
                    for path in sorted(cls.place.glob("*.rpm"))}

    def query(self, text, name="vok"):
        return output("rpm", "-qp", "--qf", text, self.rpms[name + ".rpm"])

    def files(self, name="vok"):
        lines = self.query(r"[%{filenames}\t%{filemodes:perms}\t%{fileusername}:%{filegroupname}\n]", name)
        return {path: (mode, owner) for path, mode, owner in (line.split("\t") for line in lines.splitlines())}

    def binary(self):
        return [name[:-4] for name in self.rpms if name.endswith(".rpm") and "debug" not in name]

    def test_these_are_built(self):
        self.assertEqual(set(self.binary()), {"vok", "vok-doc"})
        self.assertIn("vok.src", self.rpms)

    def test_they_tell_what_they_are(self):
        for name in self.binary():
            self.assertEqual(self.query("%{version} %{license}", name), tree.version() + " GPL-2.0-or-later")
        self.assertEqual(self.query("%{arch}", "vok-doc"), "noarch")

    def test_the_source_package_holds_the_tree(self):
        with tempfile.TemporaryDirectory() as place:
            archive = Path(place) / "vok.tar.gz"
            output(tree.TOP / "scripts" / "rpm", "--source", archive)
            held = {line.split("/", 1)[1] for line in output("tar", "tzf", archive).splitlines()}
            again = Path(place) / "again.tar.gz"
            output(tree.TOP / "scripts" / "rpm", "--source", again)
            self.assertEqual(archive.read_bytes(), again.read_bytes())
        self.assertEqual(held, {str(path) for path in tree.files()})
        names = output("rpm", "-qpl", self.rpms["vok.src"]).split()
        self.assertEqual(sorted(names), ["vok-%s.tar.gz" % tree.version(), "vok.spec"])

    def test_what_the_program_needs_is_required(self):
        required = set(output("rpm", "-qp", "--requires", self.rpms["vok.rpm"]).splitlines())
        self.assertLessEqual({"/etc/yum.conf", "python3-dnf", "python3-rpm", "/bin/sh"}, required)
        self.assertTrue([name for name in required if name.startswith("libpython3.")], required)
        self.assertTrue([name for name in required if name.startswith("libQt5Widgets.so.5")], required)
        recommended = set(output("rpm", "-qp", "--recommends", self.rpms["vok.rpm"]).splitlines())
        self.assertLessEqual({"polkit", "qt5-qtstyleplugins"}, recommended)

    def test_the_manual_needs_nothing(self):
        required = output("rpm", "-qp", "--requires", self.rpms["vok-doc.rpm"]).splitlines()
        self.assertEqual([name for name in required if not name.startswith("rpmlib(")], [])

    def test_nobody_can_change_or_misuse_the_files(self):
        for name in self.binary():
            for path, (mode, owner) in self.files(name).items():
                with self.subTest(path=path):
                    self.assertEqual(owner, "root:root")
                    if mode[0] == "l":
                        continue
                    programs = path.startswith("/usr/bin/") or path in (
                        "/usr/share/vok/webbrowser", "/usr/share/vok/mimeviewer") or "/usr/libexec/" in path
                    self.assertEqual(mode, "drwxr-xr-x" if mode[0] == "d" else
                                     "-rwxr-xr-x" if programs else "-rw-r--r--")

    def test_no_file_is_owned_twice(self):
        owned = [path for name in self.binary() for path in self.files(name)]
        self.assertEqual(sorted(owned), sorted(set(owned)))

    def test_every_folder_of_its_own_is_owned(self):
        shared = re.compile(r"/usr(/bin|/lib|/libexec|/share(/(applications|bash-completion(/completions)?|doc|icons"
                            r"(/hicolor(/[^/]+(/apps)?)?)?|licenses|man(/man\d)?|metainfo|polkit-1(/actions)?|zsh"
                            r"(/site-functions)?|pixmaps))?)?")
        for name in self.binary():
            owned = self.files(name)
            for path in owned:
                for parent in list(Path(path).parents)[:-1]:
                    if not shared.fullmatch(str(parent)):
                        self.assertIn(str(parent), owned, path)

    def test_the_share_folder_is_whole(self):
        owned = self.files()
        missing = [str(path) for path in tree.files()
                   if path.parts[0] == "share" and path.suffix != ".svg" and "hicolor" not in path.parts and "/usr/share/vok/%s" % Path(*path.parts[1:]) not in owned]
        self.assertEqual(missing, [])

    def test_python_has_nothing_to_compile(self):
        owned = self.files()
        for path in owned:
            if path.endswith(".py") and not path.endswith("/python/YumIO.py"):
                folder, name = os.path.split(path)
                compiled = [other for other in owned if other.startswith("%s/__pycache__/%s." % (folder, name[:-3]))]
                self.assertEqual(len(compiled), 1, path)

    def test_the_licence_comes_along(self):
        for name in self.binary():
            marked = [line.split()[1] for line in
                      self.query(r"[%{fileflags:fflags}=%{filenames}\n]", name).replace("=", " ").splitlines()
                      if line.startswith("l ")]
            self.assertTrue([path for path in marked if path.endswith("/GPL-2.0-or-later.txt")], (name, marked))

    def test_the_help_menu_finds_the_manual(self):
        folder = "/usr/share/doc/vok-%s" % tree.version()
        for path in (folder + "/html/index.html", folder + "/manual.pdf"):
            self.assertIn(path, self.files("vok-doc"))

    @unittest.skipUnless(shutil.which("rpmlint"), "rpmlint is missing")
    def test_rpmlint_finds_nothing(self):
        folder = tree.TOP / "packaging" / "rpm"
        done = subprocess.run(["rpmlint", "-c", str(folder / "rpmlint.toml"), str(folder / "vok.spec"),
                               # What rpm makes for debuggers is as rpm makes it.
                               *(str(path) for name, path in self.rpms.items() if "-debug" not in name)],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", check=False)
        self.assertRegex(done.stdout, r"[1-9]\d* packages and 1 specfiles checked")
        self.assertEqual(re.findall("^.*: [EW]: .*$", done.stdout, re.MULTILINE), [])

    def test_texts_of_a_language_are_left_out_where_it_is_not_wanted(self):
        marked = self.query(r"[%{filelangs}=%{filenames}\n]").split()
        self.assertIn("de=/usr/share/vok/translations/vok_de.qm", marked)

    def test_every_command_has_a_man_page(self):
        owned = self.files()
        commands = [path for path in owned if path.startswith("/usr/bin/")]
        self.assertEqual(len(commands), 3)
        for path in commands:
            page = "/usr/share/man/man1/%s.1" % os.path.basename(path)
            # Some systems pack them.
            self.assertTrue([name for name in owned if name == page or name.startswith(page + ".")], path)

    def test_no_scriptlets(self):
        for name in self.binary():
            self.assertEqual(output("rpm", "-qp", "--scripts", "--triggers", self.rpms[name + ".rpm"]), "")


if __name__ == "__main__":
    unittest.main()
