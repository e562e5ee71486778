# SPDX-License-Identifier: GPL-2.0-or-later
"""The exception classes that the program knows, as names of the package manager's own.

The first three are the library's classes, so that what a plugin raises is understood as well.
"""

import dnf.exceptions

YumBaseError = dnf.exceptions.Error
RepoError = dnf.exceptions.RepoError
LockError = dnf.exceptions.LockError
GroupsError = dnf.exceptions.CompsError


class NoMoreMirrorsRepoError(RepoError):
    """Every mirror of a repository was tried without success."""
