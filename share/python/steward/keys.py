# SPDX-License-Identifier: GPL-2.0-or-later
"""Asks the user before a signing key is trusted."""

import time

import dnf.callback
import yumIOC

from steward.texts import masked


def confirm(lines):
    """Shows `lines` in the program's question dialog; True only for the user's yes.

    A program that can't put questions to the user is told the lines as an error, and the answer is
    no.
    """
    if not hasattr(yumIOC, 'userconfirm'):
        for line in lines:
            yumIOC.errorlog(0, masked(line))
        yumIOC.errorlog(0, 'Nobody can be asked, so it is not trusted.')
        return False
    # The dialog shows what was logged since the text was last emptied.
    yumIOC.gpgsigcheck()
    for line in lines:
        yumIOC.log(0, masked(line))
    return yumIOC.userconfirm() == 1


class KeyQuestion(dnf.callback.KeyImport):
    """Decides on a key that a repository's metadata is signed with."""

    def __init__(self, repo):
        super().__init__()
        self._repo = repo
        self.refused = False

    def _confirm(self, id, userid, fingerprint, url, timestamp):  # pylint: disable=redefined-builtin
        trusted = confirm((
            "The metadata of the repository '%s' is signed with a key that is not known yet:"
            % self._repo,
            'User ID: %s' % userid,
            'Key ID: 0x%s' % id[-8:],
            'Fingerprint: %s' % fingerprint,
            'Created: %s' % time.strftime('%Y-%m-%d', time.gmtime(timestamp)),
            'From: %s' % url,
            'Is this key to be trusted?',
        ))
        self.refused = not trusted
        return trusted
