# SPDX-License-Identifier: GPL-2.0-or-later
"""The name under which the program looks up the package manager. YumIO.py sets the version."""

import yum.Errors  # the program walks this module's dictionary to the exception classes
