# SPDX-License-Identifier: GPL-2.0-or-later
"""The private display that tests and the demo run on."""

import os
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[3] / "tests" / "support" / "with-display"


class Display(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.scratch = folder.name
        self.environment = dict(os.environ, TMPDIR=self.scratch)

    def start(self, command: str) -> subprocess.Popen:
        return subprocess.Popen([str(SCRIPT), "sh", "-c", command], env=self.environment, stdout=subprocess.PIPE,
                                encoding="utf-8")

    def test_gives_a_screen_with_a_window_manager_and_the_commands_status(self):
        with self.start("xprop -root _NET_SUPPORTING_WM_CHECK; xwininfo -root; echo $XDG_RUNTIME_DIR; exit 7") as process:
            out, _ = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 7)
        self.assertIn("window id # 0x", out)
        self.assertIn("-geometry 1280x1024", out)
        self.assertTrue(out.splitlines()[-1].startswith(self.scratch), out)
        self.assertEqual(os.listdir(self.scratch), [])

    def test_two_displays_are_two(self):
        with self.start("echo $DISPLAY; exec sleep 1000") as one:
            first = one.stdout.readline()
            with self.start("echo $DISPLAY") as two:
                second = two.communicate(timeout=60)[0]
            one.terminate()
            one.communicate(timeout=60)
        self.assertRegex(first, "^:[0-9]+$")
        self.assertRegex(second, "^:[0-9]+$")
        self.assertNotEqual(first, second)

    def test_a_signal_leaves_neither_process_nor_file(self):
        with self.start("echo $$ $PPID $DISPLAY; exec sleep 1000") as process:
            command, script, display = process.stdout.readline().split()
            self.assertEqual(int(script), process.pid)
            process.send_signal(signal.SIGTERM)
            process.communicate(timeout=60)
        self.assertEqual(process.returncode, 143)
        with self.assertRaises(ProcessLookupError):
            os.kill(int(command), 0)
        self.assertFalse(os.path.exists("/tmp/.X%s-lock" % display[1:]))
        self.assertEqual(os.listdir(self.scratch), [])

    def test_no_command_is_a_wrong_use(self):
        done = subprocess.run([str(SCRIPT)], check=False, stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, 2)


if __name__ == "__main__":
    unittest.main()
