# SPDX-License-Identifier: GPL-2.0-or-later
"""Turns the repositories' groups into the group objects that the program reads."""

import logging
import os

import dnf.comps
import dnf.exceptions
import libcomps
import libdnf.error

from steward.errors import text_of
from steward.texts import plain
from yum.Errors import GroupsError

LOGGER = logging.getLogger('dnf')

NONE = 'No Groups Available'


class Group:
    """One group. The four member fields are dictionaries keyed by package name."""

    __slots__ = ('groupid', 'name', 'description', 'user_visible', 'installed',
                 'mandatory_packages', 'default_packages', 'optional_packages',
                 'conditional_packages')

    def __init__(self, group, installed_names, recorded):
        self.groupid = plain(group.id)
        self.name = plain(group.ui_name or group.name or group.id)
        self.description = plain(group.ui_description or group.desc)
        self.user_visible = bool(group.visible)
        members = list(group.packages)
        self.mandatory_packages = _of_type(libcomps.PACKAGE_TYPE_MANDATORY, members)
        self.default_packages = _of_type(libcomps.PACKAGE_TYPE_DEFAULT, members)
        self.optional_packages = _of_type(libcomps.PACKAGE_TYPE_OPTIONAL, members)
        self.conditional_packages = _of_type(libcomps.PACKAGE_TYPE_CONDITIONAL, members)
        self.installed = recorded or (bool(self.mandatory_packages) and
                                      installed_names.issuperset(self.mandatory_packages))


def _of_type(wanted, members):
    """Name to the package that a conditional member waits for, which others have none of."""
    return {plain(member.name): plain(member.requires) for member in members
            if member.type == wanted}


def _groups(comps):
    """`comps.groups`, without the library's own way through them: under Python 3.13 that ends the
    process with releases of libcomps whose sequences only a function such as list() can go through.
    """
    return sorted((comps._build_group(group) for group in list(comps._i.groups)),
                  key=dnf.comps._fn_display_order)


def collect(base, installed_names):
    """The groups of all enabled repositories. Raises GroupsError when there are none."""
    known = _groups(base.comps)
    recorded = _recorded(base, known)
    found = [Group(group, installed_names, group.id in recorded) for group in known]
    if not found:
        raise GroupsError(NONE)
    return found


def _recorded(base, groups):
    """Ids of those of the groups that the package manager itself has installed."""
    # Asking would make the file.
    if not os.path.exists(os.path.join(base.conf.persistdir, 'history.sqlite')):
        return frozenset()
    try:
        history = base.history.group
        return frozenset(group.id for group in groups
                         if history.get(group.id) is not None)
    except (dnf.exceptions.Error, libdnf.error.Error, RuntimeError) as exc:
        LOGGER.warning('The history of installed groups cannot be read: %s', text_of(exc))
        return frozenset()
