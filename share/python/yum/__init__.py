# SPDX-License-Identifier: GPL-2.0-or-later
"""The name under which the program looks up the package manager: its version and its exceptions."""

import dnf.const

# The program walks this module's dictionary to the exception classes.
from yum import Errors

__all__ = ('Errors', '__version__')

__version__ = dnf.const.VERSION
