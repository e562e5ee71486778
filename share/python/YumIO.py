# SPDX-License-Identifier: GPL-2.0-or-later
"""The script that the program loads: package work on the dnf stack, under the names it calls.

The program runs this file in `__main__`, makes one `YumIO` after the other, and is called back
through the module `yumIOC`. What is done where is told by the modules of `steward`.
"""

import os
import sys

sys.path.insert(0, os.path.join(os.environ.get('VOKSHARE') or '/usr/share/vok', 'python'))

# pylint: disable=wrong-import-position
import yum
from steward import session

__all__ = ('YumIO', 'usesSqlite', 'yum')


def usesSqlite():
    """The metadata is read as it is, not converted."""
    return False


class YumIO(session.Session):
    """The engine's object: one collection, and what is done with its packages."""
