# SPDX-License-Identifier: GPL-2.0-or-later
"""Complaints of rpm among the output of scripts are known in every language."""

import gettext
import os
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
SHARE = os.environ.get('VOKSHARE') or os.path.join(HERE, '..', '..', '..', 'share')
sys.path.insert(0, os.path.join(SHARE, 'python'))

from steward import complaints  # noqa: E402

GERMAN = {
    'error: ': 'Fehler: ',
    'warning: ': 'Warnung: ',
    '%s scriptlet failed, exit status %d\n': '%s Scriptlet fehlgeschlagen, Beenden-Status %d\n',
}


def german(text):
    return GERMAN.get(text, text)


class Complaints(unittest.TestCase):

    def test_errorsAndFailedScriptsAreComplaints(self):
        match = complaints.pattern(lambda text: text).match
        self.assertTrue(match('error: unpacking of archive failed'))
        self.assertTrue(match('warning: %post(a-1-1.noarch) scriptlet failed, exit status 1'))
        self.assertTrue(match('warning: %post(a-1-1.noarch) scriptlet failed, signal 9'))
        self.assertFalse(match('warning: /etc/a.conf created as /etc/a.conf.rpmnew'))
        self.assertFalse(match('an error: of the script itself'))
        self.assertFalse(match('done'))

    def test_theyAreInAnotherLanguage(self):
        match = complaints.pattern(german).match
        self.assertTrue(match('Fehler: Entpacken des Archivs fehlgeschlagen'))
        self.assertTrue(match('Warnung: %post(a-1-1.noarch) Scriptlet fehlgeschlagen, Beenden-Status 1'))
        self.assertFalse(match('Warnung: /etc/a.conf erstellt als /etc/a.conf.rpmnew'))
        # A text that the language lacks stays English, and so may others.
        self.assertTrue(match('Warnung: %post(a-1-1.noarch) scriptlet failed, signal 9'))
        self.assertTrue(match('error: x'))

    @unittest.skipUnless(gettext.find('rpm', '/usr/share/locale', ['de']), "rpm's translations are not installed")
    def test_rpmHasTheTextsThatAreLookedUp(self):
        said = gettext.translation('rpm', '/usr/share/locale', ['de']).gettext
        for text in GERMAN:
            self.assertNotEqual(said(text), text)

    def test_withoutALanguageTextsStay(self):
        self.assertEqual(complaints.by_rpm('error: '), 'error: ')


if __name__ == '__main__':
    unittest.main()
