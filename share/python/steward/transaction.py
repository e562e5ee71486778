# SPDX-License-Identifier: GPL-2.0-or-later
"""Turns the user's marks into a solved transaction, and that into the lists of the review.

A transaction has a System of its own beside the collection's, since the package database may have
changed, the library takes one transaction a base object, and the collection's packages have to stay
usable whatever comes of it.
"""

import logging
import os
import re

import dnf.exceptions
import dnf.selector
import hawkey
import yumIOC
from libdnf.transaction import (
    TransactionItemAction_DOWNGRADED as DOWNGRADED, TransactionItemAction_OBSOLETED as OBSOLETED,
    TransactionItemAction_REASON_CHANGE as REASON_CHANGE,
    TransactionItemAction_REINSTALLED as REINSTALLED, TransactionItemAction_REMOVE as REMOVE,
    TransactionItemAction_UPGRADE as UPGRADE, TransactionItemAction_UPGRADED as UPGRADED)

from steward import arches, meters, packages, system
from steward.errors import text_of
from steward.texts import masked
from yum.Errors import YumBaseError

LOGGER = logging.getLogger('dnf')

# The debug level of the lines about what the solver adds.
_SOLVE_LEVEL = 2
_REFRESH = 'Refresh the list of packages and apply again.'
_PATH = re.compile(r'(?:^|[\s(])(/[^\s,)]+)')
# The actions that take a package away.
BACKWARD = (DOWNGRADED, OBSOLETED, REINSTALLED, REMOVE, UPGRADED)


def nevra(package):
    return package.name, package.epoch, package.version, package.release, package.arch


def envra(package):
    """The form that the program parses: "[epoch:]name-version-release.arch"."""
    text = '%s-%s-%s.%s' % (package.name, package.version, package.release, package.arch)
    return '%d:%s' % (package.epoch, text) if package.epoch else text


def row(package):
    """What the program tells packages of its table apart by."""
    return package.name, arches.family(package.arch)


class Marks:
    """What the user asked for: packages of the collection."""

    def __init__(self, installs, updates, removes):
        self.installs = list(installs)
        self.updates = [tuple(pair) for pair in updates]
        self.removes = list(removes)
        news = self.installs + [new for new, _ in self.updates]
        self.wanted = {nevra(package) for package in news}
        self.unwanted = {nevra(package) for package in self.removes}
        self.update_rows = {row(new) for new, _ in self.updates}
        self.remove_rows = {row(package) for package in self.removes}

    def __bool__(self):
        return bool(self.installs or self.updates or self.removes)


class Table:
    """What of the packages of some names the program's table holds."""

    def __init__(self, collected, names):
        sack, names = collected.base.sack, list(names)
        available = sack.query().available().filterm(name=names, arch=collected.arches)
        updates = sack.query().filterm(upgrades_by_priority=True) \
            .filterm(name=names, arch=collected.arches)
        self._installed = {row(package) for package in sack.query(flags=hawkey.IGNORE_EXCLUDES)
                           .installed().filterm(name=names)}
        self._all = self._installed | {row(package) for package in available}
        self._updatable = {row(package) for package in updates} & self._installed

    def has(self, package):
        return row(package) in self._all

    def updatable(self, package):
        return row(package) in self._updatable

    def up_to_date(self, package):
        return row(package) in self._installed and row(package) not in self._updatable


class Member:
    """A package of the transaction, as the program reads it."""

    def __init__(self, package):
        self.po = package
        self.pkgtup = package.pkgtup
        self.repoid = package.repoid
        self.epoch = str(package.epoch)
        self.ver = package.version
        self.rel = package.release
        self.relatedto = []


class Lists:
    """The transaction by what happens to the packages; "dep" is what nobody asked for."""

    NAMES = ('updated', 'installed', 'removed', 'obsoleted',
             'depupdated', 'depinstalled', 'depremoved')

    def __init__(self):
        for name in self.NAMES:
            setattr(self, name, [])

    def makelists(self):
        return self

    def add(self, name, package, asked=True):
        member = Member(package)
        getattr(self, name if asked else 'dep' + name).append(member)
        return member

    def sort(self):
        """The order for the reader."""
        for name in self.NAMES:
            getattr(self, name).sort(key=lambda member: (member.pkgtup, member.repoid))

    def rows(self, *names):
        return {row(member.po) for name in names for member in getattr(self, name)}


class Plan:
    """One transaction from the marks to the end. `end` is to be called in every case."""

    def __init__(self, collected, marks):
        self._collected = collected
        self._marks = marks
        self.system = None
        self.tsInfo = Lists()
        # (item of the library's transaction, its package) of all that rpm is to do.
        self.items = []
        self._replacers = {}
        # Rows of the table that are updated, and that get a package beside what is there.
        self._update_rows = set()
        self._install_rows = set()

    def end(self):
        self.items = []
        self._replacers = {}
        self.tsInfo = Lists()
        if self.system is not None:
            ended, self.system = self.system, None
            ended.end()

    # Solving

    def solve(self):
        """Raises YumBaseError if it can't be done, or if there is nothing to do."""
        if not self._marks:
            raise YumBaseError('No package is marked, so there is nothing to do.')
        problem = None
        try:
            self._pass(False)
            again = self._erases_for_lack_of_files()
        except dnf.exceptions.DepsolveError as exc:
            problem = _unsolvable(exc)
            again = _needs_file_lists(problem.value)
        if again:
            self._solve_with_file_lists()
        elif problem is not None:
            raise problem
        self._read()

    def _solve_with_file_lists(self):
        """Most dependencies on files need no file lists, which are large; this is for the rest."""
        yumIOC.dsRestartLoop()
        try:
            self._pass(True)
            return
        except dnf.exceptions.DepsolveError as exc:
            problem = _unsolvable(exc)
        raise problem

    def _pass(self, file_lists):
        if self.system is not None:
            self.system.end()
        self.system = system.System(meters.Apply(), file_lists, self._collected)
        self.system.load_cached()
        self._mark(file_lists)
        yumIOC.dsTsCheck()
        self.system.base.resolve(allow_erasing=bool(self._marks.removes))

    def _erases_for_lack_of_files(self):
        """True if packages were to go only because the solver knows too few file names."""
        return any(_needs_file_lists(str(relation))
                   for package in self.system.base.goal.list_erasures()
                   if nevra(package) not in self._marks.unwanted
                   for relation in package.requires)

    def _mark(self, silent):
        base, marks = self.system.base, self._marks
        installed = self._installed([package.name for package in marks.removes]
                                    + [package.name for package in marks.installs]
                                    + [new.name for new, _ in marks.updates])
        names = {package.name for package in installed.values()}
        log = LOGGER.debug if silent else LOGGER.warning
        wanted, missing = {}, []
        for new in marks.installs:
            if nevra(new) in installed:
                log('%s is installed already', new)
            else:
                wanted[nevra(new) + (new.reponame,)] = new
        for new, _ in marks.updates:
            if nevra(new) in installed:
                log('%s is installed already', new)
            elif new.name not in names:
                log('%s is not installed any more, so there is nothing to update', new.name)
            else:
                wanted[nevra(new) + (new.reponame,)] = new
        found = self._available(wanted)
        for key, package in wanted.items():
            if key in found:
                self._install(found[key])
            else:
                missing.append('  %s (repository %s)' % (package, package.reponame))
        if missing:
            raise YumBaseError(masked(
                'These packages are not available any more:\n%s\n%s'
                % ('\n'.join(missing), _REFRESH)))
        gone = 0
        for old in marks.removes:
            if nevra(old) in installed:
                base.goal.erase(installed[nevra(old)],
                                clean_deps=base.conf.clean_requirements_on_remove)
            else:
                gone += 1
                log('%s is not installed any more', old)
        if not wanted and gone == len(marks.removes):
            raise YumBaseError('There is nothing to do: the system is already as marked.\n'
                               'Refresh the list of packages to see its present state.')

    def _install(self, package):
        """As the library's `package_install`, whose look-ups take a millisecond a package."""
        selector = dnf.selector.Selector(self.system.base.sack)
        selector.set(pkg=[package])
        self.system.base.goal.install(select=selector, optional=False)

    def _installed(self, names):
        query = self.system.base.sack.query(flags=hawkey.IGNORE_EXCLUDES).installed()
        return {nevra(package): package for package in query.filterm(name=list(set(names)))}

    def _available(self, wanted):
        query = self.system.base.sack.query().available()
        query.filterm(name=list({key[0] for key in wanted}))
        return {nevra(package) + (package.reponame,): package for package in query}

    # The result

    def _made(self, package):
        kind = self.system.installed if package._from_system else self.system.available
        return packages.made([package], self.system.base.sack, kind)[0]

    def _read(self):
        base = self.system.base
        self.items = [(item, item.pkg) for item in base.transaction or ()
                      if item.action != REASON_CHANGE]
        if not self.items:
            raise YumBaseError('There is nothing to do: the marked changes would change nothing.')
        table = Table(self._collected, {package.name for _, package in self.items})
        unknown = [str(package) for _, package in self.items if not table.has(package)]
        if unknown:
            raise YumBaseError('The system has changed since the list of packages was made. The '
                               'transaction would need these, which are not in it:\n  %s\n%s'
                               % ('\n  '.join(unknown), _REFRESH))
        self._find_replacers()
        self._fill_lists()
        self._tell_additions(table)

    def _find_replacers(self):
        goal = self.system.base.goal
        for item, new in self.items:
            if item.action in BACKWARD:
                continue
            for old in goal.obsoleted_by_package(new):
                known = self._replacers.get(old)
                if known is None or row(known) != row(old):
                    self._replacers[old] = new

    def _fill_lists(self):
        marks = self._marks
        updated = {row(old) for old, new in self._replacers.items() if row(old) == row(new)}
        members = {}
        for item, package in self.items:
            if item.action not in BACKWARD:
                name = 'updated' if item.action == UPGRADE and row(package) in updated \
                    else 'installed'
                members[package] = self.tsInfo.add(name, self._made(package),
                                                   nevra(package) in marks.wanted)
        for item, package in self.items:
            if item.action not in BACKWARD or item.action == REINSTALLED:
                continue
            new = self._replacers.get(package)
            if item.action == REMOVE or new is None:
                self.tsInfo.add('removed', self._made(package), nevra(package) in marks.unwanted)
            elif item.action == DOWNGRADED or row(package) != row(new) \
                    and package.name == new.name:
                # No row of the table is updated by this, so both halves are told.
                self.tsInfo.add('removed', self._made(package), nevra(new) in marks.wanted)
            elif package.name != new.name:
                member = self.tsInfo.add('obsoleted', self._made(package))
                member.relatedto.append((members[new], 'obsoletedby'))
        self.tsInfo.sort()
        self._update_rows = marks.update_rows | self.tsInfo.rows('updated', 'depupdated')
        self._install_rows = self.tsInfo.rows('installed', 'depinstalled')

    def news(self):
        """The packages that are installed, as the program reads them."""
        return [self._made(package) for item, package in self.items
                if item.action not in BACKWARD]

    def event(self, package, action):
        """The action by which the program finds the row that this is about; None for none.

        It finds the row of a removal by the package's name and by what is to happen to the row.
        """
        if action in _INSTALL_EVENTS:
            return _INSTALL_EVENTS[action]
        if action not in _REMOVAL_EVENTS:
            # The program reports what it doesn't understand.
            return action
        place = row(package)
        if place in self._marks.remove_rows:
            return _REMOVAL_EVENTS[action]
        new = self._replacers.get(package)
        if action in (DOWNGRADED, REINSTALLED) and new is not None and row(new) == place:
            return None
        if action == REMOVE:
            if place in self._update_rows:
                return _REMOVAL_EVENTS[UPGRADED]
            if place in self._install_rows:
                return None
        return _REMOVAL_EVENTS[action]

    # The lines about what the solver added

    def _tell_additions(self, table):
        lists = self.tsInfo
        forward = [package for item, package in self.items if item.action not in BACKWARD]
        for name, word in (('depinstalled', 'install'), ('depupdated', 'update')):
            for member in getattr(lists, name):
                if table.up_to_date(member.po):
                    continue
                other = self._one_that_requires(member.po, forward)
                if other is not None:
                    _tell('Marking %s as %s for %s' % (envra(member.po), word, envra(other)))
                elif word == 'update':
                    _tell('Updating %s to resolve dep.' % envra(member.po))
                else:
                    _tell('Marking %s as install for the transaction' % envra(member.po))
        for member in lists.obsoleted:
            # The program looks at the first word only, and wants no installed package there.
            if table.updatable(member.po):
                _tell('Obsoleting %s with %s to resolve dep.'
                      % (envra(member.po), envra(member.relatedto[0][0].po)))
        for member in lists.depremoved:
            _tell('%s marked as erase' % envra(member.po))

    def _one_that_requires(self, package, among):
        others = [other for other in among if nevra(other) != nevra(package)]
        if not others:
            return None
        query = self.system.base.sack.query().filterm(pkg=others)
        for kind in ('requires', 'recommends'):
            found = next(iter(query.filter(**{kind: package.provides})), None)
            if found is not None:
                return found
        return None


# The library's actions and the program's events for them.
_INSTALL_EVENTS = {1: 20, 2: 10, 4: 60, 6: 10, 9: 20}
_REMOVAL_EVENTS = {REMOVE: 40, DOWNGRADED: 90, UPGRADED: 90, REINSTALLED: 90, OBSOLETED: 50}


def not_yet_here(news):
    """Those of the packages whose files have to be downloaded."""
    missing = []
    for package in news:
        try:
            if os.path.getsize(package.localPkg()) == package.downloadsize:
                continue
        except (OSError, TypeError):
            pass
        missing.append(package)
    return missing


def _tell(text):
    yumIOC.log(_SOLVE_LEVEL, masked('TSINFO: ' + text))


def _needs_file_lists(text):
    """True if `text` speaks of a path that the packages' own metadata doesn't carry."""
    return any(not path.startswith('/etc/') and 'bin/' not in path
               for path in _PATH.findall(text))


def _unsolvable(exc):
    lines = text_of(exc).strip('\n').split('\n')
    if all(line.startswith(' ') for line in lines):
        lines = [line[1:] for line in lines]
    return YumBaseError('The marked changes cannot be made:\n%s' % '\n'.join(lines).strip())
