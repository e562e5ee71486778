# SPDX-License-Identifier: GPL-2.0-or-later
"""Tells rpm's own complaints from the output of scripts that they stand among.

rpm writes them in the language of the process.
"""

import locale
import re

_FAILED = (
    '%s scriptlet failed, exit status %d\n',
    '%s scriptlet failed, signal %d\n',
    '%s scriptlet failed, waitpid(%d) rc %d: %s\n',
)


def by_rpm(text):
    """`text`, which rpm has, as it writes it here."""
    try:
        return locale.dgettext('rpm', text)
    except (AttributeError, UnicodeError):
        # A C library without translations, or one in another encoding.
        return text


def pattern(said=by_rpm):
    """Matches a line that is a complaint: an error, or the warning that a script failed. `said` gives
    a text of rpm's as it is written."""
    def form(text):
        return '|'.join(re.sub(r'%[sd]', '.*', re.escape(one.strip('\n')).replace(r'\%', '%'))
                        for one in sorted({text, said(text)}))

    return re.compile('(?:%s)|(?:%s).*(?:%s)' % (form('error: '), form('warning: '),
                                                 '|'.join(map(form, _FAILED))))
