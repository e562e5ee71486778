# SPDX-License-Identifier: GPL-2.0-or-later
"""The way from the desktop's menu to a program with root's rights."""

import os
import unittest
import xml.etree.ElementTree as ElementTree

from recorders import SHARE, SOURCE, Recorders

PACKAGING = SOURCE / "packaging"


class Programs(Recorders):
    """The programs as they are installed, in a prefix with a space in its name and a VOK that only tells."""

    def setUp(self):
        super().setUp()
        self.prefix = self.folder / "the prefix"
        self.prefix.mkdir()
        for name in ("vok-launcher", "vok-as-root"):
            text = (PACKAGING / "programs" / (name + ".in")).read_text()
            for key, value in (("VOK_BIN", self.prefix), ("VOK_LIBEXEC", self.prefix), ("VOK_SHARE", SHARE)):
                text = text.replace("@%s@" % key, str(value))
            self.script("../the prefix/" + name, text)
        self.command("../the prefix/vok")
        self.home = self.folder / "home"
        self.home.mkdir()
        self.real("stat")


class Launcher(Programs):
    def setUp(self):
        super().setUp()
        self.script("id", "#!/bin/sh\necho 4711\n")
        self.root_starts = str(self.prefix / "vok-as-root")

    def launch(self, *options, **environment):
        environment.setdefault("HOME", str(self.home))
        return self.run_script(self.prefix / "vok-launcher", *options, **environment)

    def boxes(self):
        return [" ".join(words) for words in self.called() if words[0] == "zenity"]

    def test_the_password_is_asked_for_once_and_options_go_along(self):
        self.command("pkexec")
        done = self.launch("--regexp=a b;$(touch evil)", "-g", DISPLAY=":0", XAUTHORITY="/run/a b")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.called(), [["pkexec", self.root_starts, "DISPLAY=:0", "XAUTHORITY=/run/a b", "--",
                                          "--regexp=a b;$(touch evil)", "-g"]])
        self.assert_nothing_was_executed()

    def test_what_the_window_needs_goes_along_and_nothing_else(self):
        self.command("pkexec")
        self.launch(DISPLAY=":0", XAUTHORITY="/x", WAYLAND_DISPLAY="wayland-0", XDG_CURRENT_DESKTOP="GNOME",
                    QT_SCALE_FACTOR="2", LD_PRELOAD="", QT_PLUGIN_PATH="/evil", PYTHONPATH="/evil")
        self.assertEqual(self.called()[0][2:], ["DISPLAY=:0", "XAUTHORITY=/x", "WAYLAND_DISPLAY=wayland-0",
                                               "XDG_CURRENT_DESKTOP=GNOME", "QT_SCALE_FACTOR=2", "--"])

    def test_the_cookie_is_found_in_its_usual_place(self):
        self.command("pkexec")
        (self.home / ".Xauthority").write_text("")
        self.launch(DISPLAY=":0")
        self.assertIn("XAUTHORITY=%s" % (self.home / ".Xauthority"), self.called()[0])

    def test_without_a_home_there_is_no_cookie_to_find(self):
        self.command("pkexec")
        for environment in ({}, {"HOME": ""}):
            self.forget()
            done = self.run_script(self.prefix / "vok-launcher", DISPLAY=":0", **environment)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertEqual(self.called(), [["pkexec", self.root_starts, "DISPLAY=:0", "--"]])

    def test_root_starts_the_program_without_asking(self):
        self.command("pkexec")
        self.script("id", "#!/bin/sh\necho 0\n")
        self.launch("--groups", DISPLAY=":0")
        self.assertEqual(self.called(), [["vok", "--groups"]])

    def test_help_is_for_everybody(self):
        self.command("pkexec")
        for option in ("--help", "-h", "-H"):
            self.forget()
            self.launch(option)
            self.assertEqual(self.called(), [["vok", option]])
        self.forget()
        self.launch("--regexp", "--help", DISPLAY=":0")
        self.assertEqual([words[0] for words in self.called()], ["pkexec"])

    def refusal(self, *, tell=(), **environment):
        """What the box says where the launcher gives up."""
        self.command("zenity")
        done = self.launch(**environment)
        self.assertEqual(done.returncode, 1)
        self.assertIn("vok-launcher: ", done.stderr)
        for text in tell:
            self.assertIn(text, done.stderr)
        if environment:
            self.assertEqual(len(self.boxes()), 1)
            self.assertIn(tell[0], self.boxes()[0])

    def test_wayland_without_an_x_server_is_told(self):
        self.command("pkexec")
        self.refusal(tell=["Xwayland"], WAYLAND_DISPLAY="wayland-0")
        self.assertNotIn("pkexec", [words[0] for words in self.called()])

    def test_no_desktop_is_told(self):
        self.command("pkexec")
        self.refusal(tell=["DISPLAY isn't set"])
        self.assertEqual(self.called(), [])

    def test_missing_pkexec_is_told_with_another_way(self):
        self.refusal(tell=["pkexec", "sudo vok"], DISPLAY=":0")

    def test_a_session_that_cannot_ask_is_told(self):
        self.command("pkexec", status=127)
        self.refusal(tell=["polkit agent", "sudo vok"], DISPLAY=":0")

    def test_whoever_closes_the_question_hears_nothing(self):
        self.command("pkexec", status=126)
        self.command("zenity")
        done = self.launch(DISPLAY=":0")
        self.assertEqual((done.returncode, done.stderr, self.boxes()), (126, "", []))

    def test_refusals_of_roots_side_are_told(self):
        for status, text in ((120, "Root can't use this display"), (121, "Only options of VOK"),
                             (122, "can't read the display's cookie file /x"), (134, "its window never came")):
            with self.subTest(status=status):
                self.forget()
                self.command("pkexec", status=status)
                self.refusal(tell=[text], DISPLAY=":0", XAUTHORITY="/x")

    def test_the_programs_own_status_is_passed_on(self):
        self.command("pkexec", status=3)
        self.assertEqual(self.launch(DISPLAY=":0").returncode, 3)

    def xhost(self, answer):
        self.script("xhost", '#!/bin/sh\n[ $# -gt 0 ] || { echo "%s"; exit 0; }\necho "$1" >>%s/xhost\n' % (
            answer, self.folder))

    def said_to_xhost(self):
        path = self.folder / "xhost"
        return path.read_text().split() if path.exists() else []

    def test_a_session_without_a_cookie_lets_root_in_for_the_time_being(self):
        self.script("pkexec", "#!/bin/sh\nwhile read -r line; do echo $line; done <%s/xhost\n" % self.folder)
        self.xhost("access control enabled, only authorized clients can connect\nSI:localuser:anna")
        self.assertEqual(self.launch(DISPLAY=":0").stdout, "+si:localuser:root\n")
        self.assertEqual(self.said_to_xhost(), ["+si:localuser:root", "-si:localuser:root"])

    def test_what_root_was_allowed_before_stays(self):
        self.command("pkexec")
        for answer in ("access control enabled\nSI:localuser:root", "access control disabled, clients can connect"):
            self.xhost(answer)
            self.assertEqual(self.launch(DISPLAY=":0").returncode, 0)
            self.assertEqual(self.said_to_xhost(), [])


class Root(Programs):
    """vok-as-root, whose arguments come from whoever has the administrator's password."""

    def setUp(self):
        super().setUp()
        self.cookie = self.folder / "cookie"
        self.cookie.write_text("")
        self.owner = str(self.cookie.stat().st_uid)

    def start(self, *arguments, **environment):
        environment.setdefault("PKEXEC_UID", self.owner)
        return self.run_script(self.prefix / "vok-as-root", *arguments, **environment)

    def test_the_window_gets_its_display(self):
        done = self.start("DISPLAY=host.name:0.1", "XAUTHORITY=%s" % self.cookie, "XDG_CURRENT_DESKTOP=a:GNOME",
                          "QT_SCALE_FACTOR=1.5", "--", "--mode=search", "-e", "^a b$", "-grl")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        name, arguments, environment = self.calls()[0]
        self.assertEqual([name, *arguments], ["vok", "--mode=search", "-e", "^a b$", "-grl"])
        expected = {"DISPLAY": "host.name:0.1", "XAUTHORITY": str(self.cookie), "XDG_CURRENT_DESKTOP": "a:GNOME",
                    "QT_SCALE_FACTOR": "1.5", "QT_QPA_PLATFORM": "xcb"}
        self.assertEqual({key: environment.get(key) for key in expected}, expected)

    def test_variables_that_it_does_not_know_are_refused(self):
        for word in ("LD_PRELOAD=/x.so", "QT_PLUGIN_PATH=/x", "PYTHONPATH=/x", "VOKSHARE=/x", "PATH=/x", "display=:0",
                     "=x", "", "vok", "-x"):
            self.assertEqual(self.start("DISPLAY=:0", word, "--").returncode, 121, word)
        self.assertEqual(self.called(), [])

    def test_displays_that_are_none_are_refused(self):
        for value in ("", ":0 -x", ":0;touch evil", ":0$(touch evil)", ":0\ntouch evil", "'", ":" * 201):
            self.assertEqual(self.start("DISPLAY=%s" % value, "--").returncode, 120, value)
        self.assertEqual(self.start("--").returncode, 120)
        self.assertEqual(self.called(), [])
        self.assert_nothing_was_executed()

    def test_other_variables_with_odd_values_are_left_out(self):
        self.assertEqual(self.start("DISPLAY=:0", "XDG_CURRENT_DESKTOP=$(touch evil)", "QT_FONT_DPI=", "--").returncode, 0)
        environment = self.calls()[0][2]
        self.assertNotIn("XDG_CURRENT_DESKTOP", environment)
        self.assertNotIn("QT_FONT_DPI", environment)
        self.assert_nothing_was_executed()

    def test_cookies_that_are_none_are_refused(self):
        for path in ("relative", "", "/x/../etc/shadow", str(self.folder) + "/..", "/a\nb"):
            self.assertEqual(self.start("DISPLAY=:0", "XAUTHORITY=%s" % path, "--").returncode, 120, path)
        for path in (self.folder, self.folder / "missing", "/dev/null"):
            self.assertEqual(self.start("DISPLAY=:0", "XAUTHORITY=%s" % path, "--").returncode, 122, path)
        self.assertEqual(self.called(), [])

    @unittest.skipUnless(os.getuid() == 0, "only root can give files away")
    def test_somebody_elses_cookie_is_refused(self):
        os.chown(str(self.cookie), 4000, 4000)
        self.assertEqual(self.start("DISPLAY=:0", "XAUTHORITY=%s" % self.cookie, "--", PKEXEC_UID="4711").returncode, 120)
        self.assertEqual(self.start("DISPLAY=:0", "XAUTHORITY=%s" % self.cookie, "--", PKEXEC_UID="4000").returncode, 0)

    def test_options_by_which_qt_would_load_something_are_refused(self):
        for word in ("-platformpluginpath", "--platformpluginpath=/x", "-platform", "-plugin", "-stylesheet",
                     "-stylesheet=/x", "--stylesheet", "-style", "-session", "-qwindowgeometry", "-display", "-d",
                     "--version", "-", "-geometry"):
            self.assertEqual(self.start("DISPLAY=:0", "--", word).returncode, 121, word)
            # A value to the one is an option to the other.
            self.assertEqual(self.start("DISPLAY=:0", "--", "-e", word).returncode, 121, word)
        self.assertEqual(self.called(), [])

    def test_each_option_of_the_program_passes(self):
        options = ["-h", "-H", "--help", "-m", "filter", "--mode=search", "-e", "x", "--regexp=-platform", "-s", "all",
                   "--state=all", "--duplicates", "--dup", "-g", "--groups", "-r", "--repo-editor", "-l", "--log",
                   "--disablerepo=a", "--enablerepo", "b"]
        self.assertEqual(self.start("DISPLAY=:0", "--", *options).returncode, 0)
        self.assertEqual(self.called(), [["vok", *options]])


class Policy(unittest.TestCase):
    def test_the_administrator_is_asked_each_time(self):
        policy = ElementTree.parse(str(PACKAGING / "polkit" / "org.vok.PackageSteward.policy.in"))
        actions = policy.findall("action")
        self.assertEqual([action.get("id") for action in actions], ["org.vok.PackageSteward.run"])
        self.assertEqual([rule.text for rule in actions[0].find("defaults")], ["auth_admin"] * 3)
        self.assertEqual([(note.get("key"), note.text) for note in actions[0].findall("annotate")],
                         [("org.freedesktop.policykit.exec.path", "@VOK_LIBEXEC@/vok-as-root")])


if __name__ == "__main__":
    unittest.main()
