# SPDX-License-Identifier: GPL-2.0-or-later
"""Commands on a private PATH that only tell how they were called."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[3]
SHARE = SOURCE / "share"
PYTHON = "/usr/bin/python3"

# Writes one line of JSON to the file calls: its name, its arguments, its environment.
RECORDER = """#!%s -SE
import json, os, sys
with open(%r, "a") as calls:
    calls.write(json.dumps([os.path.basename(sys.argv[0]), sys.argv[1:], dict(os.environ), os.getuid()]) + "\\n")
sys.exit(%d)
"""


class Recorders(unittest.TestCase):
    """A test with a folder of its own, in which `bin` is all that the scripts find."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.bin = self.folder / "bin"
        self.bin.mkdir()
        self._calls = self.folder / "calls"

    def command(self, name: str, status: int = 0):
        """A command that is recorded and ends with `status`."""
        self.script(name, RECORDER % (PYTHON, str(self._calls), status))

    def script(self, name: str, text: str):
        path = self.bin / name
        path.write_text(text)
        path.chmod(0o755)

    def real(self, *names: str):
        """Lets the scripts find these of the system's commands."""
        for name in names:
            (self.bin / name).symlink_to(shutil.which(name, path="/usr/bin:/bin:/usr/sbin:/sbin"))

    def calls(self):
        """What was recorded: (name, arguments, environment) of each call, in order."""
        if not self._calls.exists():
            return []
        return [tuple(json.loads(line))[:3] for line in self._calls.read_text().splitlines()]

    def called(self):
        """The same without the environment, each call one list of words."""
        return [[name, *arguments] for name, arguments, _ in self.calls()]

    def forget(self):
        """From now on, as if nothing had been called."""
        if self._calls.exists():
            self._calls.unlink()

    def run_script(self, script, *arguments, cwd=None, **environment):
        return subprocess.run([str(script), *arguments], cwd=str(cwd or self.folder), check=False, encoding="utf-8",
                              env={"PATH": str(self.bin), **environment}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)

    def assert_nothing_was_executed(self):
        found = [name for _, _, names in os.walk(str(self.folder)) for name in names if name.startswith("evil")]
        self.assertEqual(found, [])
