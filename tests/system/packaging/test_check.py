# SPDX-License-Identifier: GPL-2.0-or-later
"""The tests that run while the package is built, where there is little more than a compiler."""

import json
import os
import re
import subprocess
import unittest

import tree

SPEC = tree.read("packaging/rpm/vok.spec")


class Check(unittest.TestCase):
    def setUp(self):
        told = subprocess.run([os.environ["VOK_CTEST"], "--show-only=json-v1"], cwd=os.environ["VOK_BUILD"], check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, encoding="utf-8").stdout
        self.tests = {test["name"]: " ".join(test.get("command", [])) for test in json.loads(told)["tests"]}
        self.left_out = re.compile(re.search(r"--exclude-regex '(.*)'", SPEC).group(1))

    def test_what_wants_a_display_is_left_out(self):
        displayed = [name for name, command in self.tests.items() if "/with-display " in command]
        self.assertGreater(len(displayed), 5)
        self.assertEqual([name for name in displayed if not self.left_out.search(name)], [])

    def test_what_runs_the_tools_of_a_distribution_is_left_out(self):
        scripts = [name for name, command in self.tests.items() if command.split()[0:1] and "python3" in command.split()[0]]
        self.assertGreater(len(scripts), 5)
        self.assertEqual([name for name in scripts if not self.left_out.search(name)], [])

    def test_most_tests_of_units_are_left_in(self):
        units = [name for name in self.tests if re.match(r"(kit|log|progress|engine|repo|table|shell|contract)\.", name)]
        left_in = [name for name in units if not self.left_out.search(name)]
        self.assertGreater(len(left_in), len(units) * 9 // 10)

    def test_translations_belong_to_their_languages(self):
        for path in (tree.TOP / "translations").glob("vok_*.ts"):
            language = path.stem.split("_")[1]
            self.assertIn("%%lang(%s) %%{_datadir}/%%{name}/translations/vok_%s.qm\n" % (language, language), SPEC)


if __name__ == "__main__":
    unittest.main()
