# SPDX-License-Identifier: GPL-2.0-or-later
"""The maker of sandbox systems: what it makes, and that it makes the same again."""

import gzip
import hashlib
import os
import re
import subprocess
import tempfile
import time
import unittest
import xml.etree.ElementTree as ET
from pathlib import Path

from demo import SandboxError, make
from demo.default import RECIPE, busybox, filesystem
from demo.recipe import DAY, EPOCH, Change, File, Group, Package, Recipe, Repository

ALPHA = Package("alpha", "1.0", epoch=2, summary="Größe: 100 %", description="erste\n\n %description 文", group="Suite",
                requires=("/bin/sh",), provides=("letter = 1",), scripts=(("post", "echo 100% > /usr/share/alpha/post"),),
                changes=(Change(EPOCH - 9 * DAY, "Chloé <c@example.org> - 0.9-1", "- 50% done"),
                         Change(EPOCH, "Ada <a@example.org> - 1.0-1", "- all done")),
                files=(File("/usr/share/alpha", directory=True), File("/usr/share/alpha/a b", text="text", mode=0o640),
                       File("/usr/share/alpha/link", link="a b")))
BETA = Package("beta", arch="i686", signer="demo", files=(File("/usr/lib/beta", noise=100000),))
GAMMA = Package("gamma", arch="x86_64", signer="stranger", files=(File("/usr/lib64/gamma", noise=1000),))
GROUP = Group("letters", "Letters & more", visible=False, mandatory=("alpha",), default=("beta",), optional=("gamma",),
              conditional=(("delta", "alpha"),), names=(("de", "Buchstaben"),))
SMALL = Recipe(installed=(filesystem, busybox, ALPHA), repositories=(
    Repository("one", packages=(ALPHA, ALPHA.but(version="2.0"), BETA, GAMMA), groups=(GROUP,), key="demo",
               gpgcheck=True, file="one.repo"),
    Repository("main-one", packages=(BETA,), file="", enabled=None, options=("cost=5",)),
    Repository("closed", auth="query", enabled=False, file="closed.repo"),
    Repository("many", by="several", file="one.repo"), Repository("list", by="mirrorlist", file="one.repo")))


def digests(folder: Path):
    return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in sorted(folder.rglob("*")) if path.is_file()}


def rpm(path, query: str) -> str:
    return subprocess.run(["rpm", "-qp", "--nosignature", "--qf", query, str(path)], check=True,
                          stdout=subprocess.PIPE, encoding="utf-8").stdout


class Making(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.directory = Path(cls.folder.name)
        cls.sandbox = make(SMALL, cls.directory / "first", cache=cls.directory / "cache")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_packages_carry_what_the_recipe_says(self):
        path = self.sandbox.rpm(ALPHA, "one")
        self.assertEqual(rpm(path, "%{nevra}|%{summary}|%{group}|%{buildtime}|%{buildhost}"),
                         "alpha-2:1.0-1.noarch|Größe: 100 %%|Suite|%d|build.example.org" % EPOCH)
        self.assertEqual(rpm(path, "%{description}"), ALPHA.description)
        self.assertEqual(rpm(path, "[%{filenames}:%{filemodes:perms};]"),
                         "/usr/share/alpha:drwxr-xr-x;/usr/share/alpha/a b:-rw-r-----;/usr/share/alpha/link:lrwxrwxrwx;")
        self.assertEqual(rpm(path, "[%{changelogname}: %{changelogtext};]"),
                         "Ada <a@example.org> - 1.0-1: - all done;Chloé <c@example.org> - 0.9-1: - 50% done;")
        self.assertEqual(rpm(self.sandbox.rpm(BETA, "one"), "%{arch}"), "i686")

    def test_noise_can_not_be_compressed(self):
        self.assertGreater(len(gzip.compress(self.sandbox.rpm(BETA, "one").read_bytes())), 95000)

    def test_a_signer_signs_with_a_key_of_its_own(self):
        signatures = [rpm(self.sandbox.rpm(package, "one"), "%{rsaheader:pgpsig}") for package in (ALPHA, BETA, GAMMA)]
        ids = [re.findall("Key ID ([0-9a-f]+)", signature) for signature in signatures]
        self.assertEqual(ids[0], [])
        self.assertEqual([len(ids[1]), len(ids[2])], [1, 1])
        self.assertNotEqual(ids[1], ids[2])

    def test_signatures_hold_against_the_key_that_the_repository_offers(self):
        home = self.directory / "rpmdb"
        keys = ["rpmkeys", "--dbpath", str(home)]
        subprocess.run([*keys, "--import", str(self.sandbox.keys / "demo.asc")], check=True)
        check = [*keys, "--define", "_pkgverify_level signature", "-K"]
        self.assertEqual(subprocess.run([*check, self.sandbox.rpm(BETA, "one")], check=False,
                                        stdout=subprocess.DEVNULL).returncode, 0)
        self.assertNotEqual(subprocess.run([*check, self.sandbox.rpm(GAMMA, "one")], check=False,
                                           stdout=subprocess.DEVNULL).returncode, 0)

    def test_the_root_has_the_packages_really_installed(self):
        self.assertEqual(self.sandbox.query("--qf", "%{nevra}\\n", "alpha"), "alpha-2:1.0-1.noarch\n")
        self.assertEqual((self.sandbox.root / "usr/share/alpha/a b").read_text(), "text")
        self.assertEqual((self.sandbox.root / "usr/share/alpha/post").read_text(), "100%\n")

    def test_groups_have_all_four_kinds_of_members(self):
        # Not each release keeps it uncompressed, too.
        path = next((self.sandbox.repos / "one/repodata").glob("*-comps.xml.gz"))
        with gzip.open(path) as stream:
            group = ET.parse(stream).getroot().find("group")
        self.assertEqual(group.findtext("name"), "Letters & more")
        self.assertEqual(group.findtext("uservisible"), "false")
        self.assertEqual([(node.get("type"), node.text, node.get("requires")) for node in group.iter("packagereq")],
                         [("mandatory", "alpha", None), ("default", "beta", None), ("optional", "gamma", None),
                          ("conditional", "delta", "alpha")])

    def test_the_configuration_names_every_repository_in_its_file(self):
        self.sandbox.configure("http://127.0.0.1:8")
        main = (self.sandbox.root / "etc/yum.conf").read_text()
        self.assertTrue(main.startswith("[main]\n"))
        self.assertIn("\n[main-one]\nname=main-one\nbaseurl=http://127.0.0.1:8/repos/main-one\ncost=5\n", main)
        one = (self.sandbox.root / "etc/yum.repos.d/one.repo").read_text()
        self.assertIn("enabled=1\ngpgcheck=1\ngpgkey=http://127.0.0.1:8/keys/demo.asc\n", one)
        self.assertIn("baseurl=http://127.0.0.1:8/repos/many\n        http://127.0.0.1:8/mirror/1/many\n", one)
        self.assertIn("[list]\nname=list\nmirrorlist=http://127.0.0.1:8/mirrorlist/list\n", one)
        closed = (self.sandbox.root / "etc/yum.repos.d/closed.repo").read_text()
        self.assertIn("/vantry?user=&pass=&path=/repos/closed\nenabled=0\n", closed)

    def test_another_server_finds_a_changed_configuration_unchanged_but_for_its_address(self):
        self.sandbox.configure("http://127.0.0.1:8")
        path = self.sandbox.root / "etc/yum.repos.d/one.repo"
        path.write_text(path.read_text() + "# mine\n")
        before = path.read_text()
        self.sandbox.readdress("http://127.0.0.1:9999")
        self.assertEqual(path.read_text(), before.replace("127.0.0.1:8/", "127.0.0.1:9999/"))
        self.assertNotEqual(path.read_text(), before)

    def test_made_again_from_the_cache_is_the_same_and_quick(self):
        before = digests(self.sandbox.repos)
        start = time.monotonic()
        again = make(SMALL, self.directory / "again", cache=self.directory / "cache")
        self.assertLess(time.monotonic() - start, 5)
        self.assertEqual(digests(again.repos), before)

    def test_made_again_without_the_cache_is_the_same(self):
        again = make(SMALL, self.directory / "fresh", cache=self.directory / "other")
        names = [path.name for path in (again.repos / "one").glob("*.rpm")]
        self.assertEqual(len(names), 4)
        for name in names:
            # The keys are new ones, and so are the signatures; they aren't part of these digests.
            query = "%{sha256header} %{payloaddigest}"
            self.assertEqual(rpm(again.repos / "one" / name, query), rpm(self.sandbox.repos / "one" / name, query))
        unsigned = "alpha-1.0-1.noarch.rpm"
        self.assertEqual((again.repos / "one" / unsigned).read_bytes(),
                         (self.sandbox.repos / "one" / unsigned).read_bytes())

    def test_making_puts_a_changed_system_back(self):
        place = self.directory / "spoilt"
        sandbox = make(SMALL, place, cache=self.directory / "cache")
        (sandbox.root / "usr/share/alpha/a b").write_text("spoilt")
        (sandbox.repos / "one/beta-1.0-1.i686.rpm").write_text("spoilt")
        (sandbox.root / "left-behind").write_text("spoilt")
        again = make(SMALL, place, cache=self.directory / "cache")
        self.assertEqual((again.root / "usr/share/alpha/a b").read_text(), "text")
        self.assertEqual(digests(again.repos), digests(self.sandbox.repos))
        self.assertFalse((again.root / "left-behind").exists())

    def test_nothing_temporary_is_left(self):
        self.assertEqual(os.listdir(self.directory / "cache/tmp"), [])

    def test_a_tool_that_fails_is_reported_with_what_it_said(self):
        with self.assertRaisesRegex(SandboxError, "(?s)rpmbuild failed.*Version"):
            make(Recipe(installed=(Package("bad", "1-0"),)), self.directory / "bad", cache=self.directory / "cache")
        self.assertEqual(os.listdir(self.directory / "cache/tmp"), [])


class Default(unittest.TestCase):
    def test_the_demo_has_one_of_everything(self):
        available = {package for repo in RECIPE.repositories for package in repo.packages}
        names = {package.name for package in available}
        self.assertGreaterEqual(len(names), 60)
        self.assertEqual({package.arch for package in available}, {"noarch", "i686", "x86_64"})
        self.assertEqual(sum(package.name == "kernel" for package in RECIPE.installed), 2)
        self.assertGreaterEqual(sum(package.group == "Suite" for package in available), 3)
        self.assertTrue(any(package.epoch for package in available))
        self.assertTrue(any(package.conflicts for package in available))
        self.assertTrue(any(package.obsoletes for package in available))
        self.assertEqual({package.signer for package in available}, {"", "demo", "stranger"})
        self.assertEqual({repo.by for repo in RECIPE.repositories}, {"baseurl", "several", "mirrorlist"})
        self.assertEqual({repo.auth for repo in RECIPE.repositories}, {"", "basic", "query", "path"})
        groups = [group for repo in RECIPE.repositories for group in repo.groups]
        self.assertEqual({group.visible for group in groups}, {True, False})
        for kind in ("mandatory", "default", "optional", "conditional"):
            self.assertTrue(any(getattr(group, kind) for group in groups), kind)
        members = {name for group in groups for kind in ("mandatory", "default", "optional")
                   for name in getattr(group, kind)}
        self.assertEqual(members - names, set())


if __name__ == "__main__":
    unittest.main()
