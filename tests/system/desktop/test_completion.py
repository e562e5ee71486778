# SPDX-License-Identifier: GPL-2.0-or-later
"""Completion in the real shells, on a terminal: what stands on the line after the Tab key."""

import os
import pty
import select
import shutil
import signal
import time
import unittest

from recorders import SOURCE, Recorders

COMPLETIONS = SOURCE / "packaging" / "completions"


class Shell(Recorders):
    """Not a test: what both shells have in common. `vok` writes its arguments to a file."""

    def setUp(self):
        super().setUp()
        self.said = self.folder / "said"
        self.root = self.folder / "root"
        for folder in ("etc/yum.repos.d", "etc/mine"):
            (self.root / folder).mkdir(parents=True)
        self.write("etc/yum.conf", "[main]\ngpgcheck=1\n[in-main-file]\nname=x\n")
        self.write("etc/yum.repos.d/a.repo", "[alpha]\nname=x\n#[comment]\n [indented]\n\n[copr:host:anna:tools]\n"
                   "[copr:host:bert]\n[$(touch evil)]\n[`touch evil`]\n[last]")
        self.write("etc/yum.repos.d/a.txt", "[not-a-repo-file]\n")
        self.write("etc/mine/b.repo", "[elsewhere]\n")

    def write(self, path, text):
        (self.root / path).write_text(text)

    def start(self, command, environment):
        pid, self.terminal = pty.fork()
        if pid == 0:
            try:
                os.chdir(str(self.folder))
                os.execve(command[0], command, environment)
            finally:
                os._exit(127)
        self.addCleanup(self.end, pid)
        self.screen = ""

    def end(self, pid):
        try:
            os.kill(pid, signal.SIGKILL)
            os.waitpid(pid, 0)
        finally:
            os.close(self.terminal)

    def wait_for(self, condition, what):
        deadline = time.monotonic() + 30
        while not condition():
            self.assertGreater(deadline, time.monotonic(), "%s; on the screen: %r" % (what, self.screen))
            if select.select([self.terminal], [], [], 0.05)[0]:
                try:
                    self.screen += os.read(self.terminal, 4096).decode("utf-8", "replace")
                except OSError:
                    self.fail("the shell has ended; on the screen: %r" % self.screen)

    def send(self, keys):
        os.write(self.terminal, keys.encode())

    def completed(self, typed):
        """The arguments that vok gets when this is typed, then Tab, then Enter."""
        if self.said.exists():
            self.said.unlink()
        self.send(typed + "\t")
        # The shell is done with the key when it answers the next one.
        self.send("\n")
        self.wait_for(lambda: self.said.exists() and self.said.read_text().endswith("\n"), typed)
        return self.said.read_text()[:-1].split("|")[1:]

    def test_options_are_completed(self):
        self.assertEqual(self.completed("vok --dup"), ["--duplicates"])
        self.assertEqual(self.completed("vok --repo"), ["--repo-editor"])
        self.assertEqual(self.completed("vok-launcher --gr"), ["--groups"])

    def test_modes_and_states_are_completed_behind_long_and_short_options(self):
        self.assertEqual(self.completed("vok --mode=s"), ["--mode=search"])
        self.assertEqual(self.completed("vok -m f"), ["-m", "filter"])
        self.assertEqual(self.completed("vok --groups --state=inst"), ["--groups", "--state=installable"])
        self.assertEqual(self.completed("vok -s up"), ["-s", "updatable"])

    def test_repositories_are_completed(self):
        self.assertEqual(self.completed("vok --enablerepo=al"), ["--enablerepo=alpha"])
        self.assertEqual(self.completed("vok --disablerepo=in-"), ["--disablerepo=in-main-file"])
        self.assertEqual(self.completed("vok --enablerepo=la"), ["--enablerepo=last"])

    def test_colons_in_repositories_are_completed(self):
        self.assertEqual(self.completed("vok --enablerepo=copr:host:an"), ["--enablerepo=copr:host:anna:tools"])

    def test_what_is_no_repository_is_not_offered(self):
        for name in ("comm", "inde", "not-", "main"):
            self.assertEqual(self.completed("vok --enablerepo=" + name), ["--enablerepo=" + name])

    def test_names_in_files_are_never_executed(self):
        self.completed("vok --enablerepo=")
        self.completed("vok --enablerepo=\\$")
        self.assert_nothing_was_executed()

    def test_the_main_file_says_where_repository_files_are(self):
        self.write("etc/yum.conf", "[main]\nreposdir = /etc/none, /etc/mine\n")
        self.assertEqual(self.completed("vok --enablerepo=else"), ["--enablerepo=elsewhere"])
        self.assertEqual(self.completed("vok --enablerepo=al"), ["--enablerepo=al"])

    def test_without_any_file_nothing_is_said(self):
        shutil.rmtree(str(self.root))
        self.assertEqual(self.completed("vok --enablerepo=al"), ["--enablerepo=al"])
        self.assertNotIn("No such file", self.screen)


@unittest.skipUnless(os.path.exists("/bin/bash"), "bash is missing")
class Bash(Shell):
    def setUp(self):
        super().setUp()
        rc = self.folder / "rc"
        rc.write_text("PS1='ready> '\nbind 'set bell-style none'\nbind 'set enable-bracketed-paste off'\nset +o histexpand\n"
                      "vok() { local IFS='|'; echo \"|$*\" >%s; }\nvok-launcher() { vok \"$@\"; }\n. %s\n" % (
                          self.said, COMPLETIONS / "vok.bash"))
        self.start(["/bin/bash", "--noprofile", "--rcfile", str(rc), "-i"],
                   {"PATH": str(self.bin), "TERM": "dumb", "VOKROOT": str(self.root), "HISTFILE": "",
                    "INPUTRC": "/dev/null", "LC_ALL": "C.UTF-8"})
        self.wait_for(lambda: "ready> " in self.screen, "prompt")


@unittest.skipUnless(shutil.which("zsh"), "zsh is missing")
class Zsh(Shell):
    def setUp(self):
        super().setUp()
        rc = self.folder / ".zshrc"
        rc.write_text("PS1='ready> '\nunset zle_bracketed_paste\nunsetopt beep auto_menu\nfpath=(%s $fpath)\n"
                      "vok() { echo \"|${(j:|:)@}\" >| %s }\nvok-launcher() { vok \"$@\" }\n"
                      "autoload -Uz compinit && compinit -u -D\n" % (COMPLETIONS, self.said))
        self.start([shutil.which("zsh"), "-o", "no_global_rcs", "-i"],
                   {"PATH": "/usr/bin:/bin", "TERM": "dumb", "VOKROOT": str(self.root), "ZDOTDIR": str(self.folder),
                    "LC_ALL": "C.UTF-8"})
        self.wait_for(lambda: "ready> " in self.screen, "prompt")


del Shell

if __name__ == "__main__":
    unittest.main()
