# SPDX-License-Identifier: GPL-2.0-or-later
"""The exception classes of the contract: the text is in `value`, as the package manager has it."""


class YumBaseError(Exception):
    def __init__(self, value=None):
        Exception.__init__(self)
        self.value = value

    def __str__(self):
        return "%s" % self.value


class RepoError(YumBaseError):
    pass


class LockError(YumBaseError):
    pass


class GroupsError(YumBaseError):
    pass


class NoMoreMirrorsRepoError(RepoError):
    pass
