# SPDX-License-Identifier: GPL-2.0-or-later
"""The object that the program calls: each method one operation, in the order of a collection.

What outlives an instance is kept in this module: whether a collection has taken place, and whether
the next one has to ask the servers.
"""

import functools
import gc
import shutil

import hawkey
import yumIOC

from steward import arches, caches, errors, execution, extradata, groups, lock, logs
from steward import meters, packagefiles, packages, signatures, system, transaction
from yum.Errors import YumBaseError

logs.start()
# What is there by now stays for good. The library collects garbage whenever it closes something, and
# would look through all of it each time. Python has this from 3.7 on.
getattr(gc, 'freeze', lambda: None)()


class _Process:
    """State of the process, beyond any one instance."""

    collected = False
    ask = False


class Collected:
    """The result of `collectAll`."""

    __slots__ = ('installed', 'available')

    def __init__(self, installed, available):
        self.installed = installed
        self.available = available


class Variables:
    """The library's configuration with the variables under the name that the program uses."""

    def __init__(self, conf):
        self._conf = conf

    def __getattr__(self, name):
        return getattr(self._conf, name)

    @property
    def yumvar(self):
        return self._conf.substitutions


class Session:
    """One collection and the work on its packages.

    The configuration is read at the first need, so that it is the one of the collection, not of the
    time when the program made the object.
    """

    def __init__(self):
        self._system = None
        self._groups = []
        # Whether the next `flush` is that of an Apply, and whether one has succeeded.
        self._applying = False
        self._applied = False

    # The system behind it

    @property
    def system(self):
        if self._system is None:
            self._system = system.System(meters.Collection())
        return self._system

    @property
    def repos(self):
        return self.system.repos

    @property
    def conf(self):
        return Variables(self.system.conf)

    # Collection

    @errors.locking
    def lock(self):
        lock.take(self.system.conf.persistdir)

    @errors.locking
    def unlock(self):
        lock.drop()

    @errors.repositories
    def setupRepos(self):
        if self._system is not None and self._system.base.sack is not None:
            self._renew()
        ask = _Process.ask
        _Process.collected = True
        self.system.load(ask)
        _Process.ask = False

    def _renew(self):
        """A second collection of one instance: the same choice of repositories, all else anew."""
        used = {repo.id: repo.enabled for repo in self._system.base.repos.values()}
        self._forget_extra()
        self._system = None
        for repo in self.system.base.repos.values():
            if repo.id in used:
                (repo.enable if used[repo.id] else repo.disable)()

    @errors.communication
    def setupTs(self):
        self._sack()

    def _sack(self):
        sack = self.system.base.sack
        if sack is None:
            raise YumBaseError('The repositories have not been set up')
        return sack

    def _runnable(self, query):
        """Leaves out what this system can't run, sources among it."""
        return query.filterm(arch=self.system.arches)

    @errors.communication
    def collectUpdates(self):
        sack = self._sack()
        families = {(package.name, arches.family(package.arch))
                    for package in sack.query().installed()}
        query = self._runnable(sack.query().filterm(upgrades_by_priority=True)) \
            .filterm(latest_per_arch_by_priority=True)
        return [package for package in packages.made(query, sack, self.system.available)
                if (package.name, arches.family(package.arch)) in families]

    @errors.communication
    def collectAll(self):
        sack = self._sack()
        installed = sack.query(flags=hawkey.IGNORE_EXCLUDES).installed()
        available = self._runnable(sack.query().available()) \
            .filterm(latest_per_arch_by_priority=True)
        return Collected(packages.made(installed, sack, self.system.installed),
                         packages.made(available, sack, self.system.available))

    @errors.communication
    def setupTsGroup(self):
        self._groups = []
        sack = self._sack()
        names = {package.name
                 for package in sack.query(flags=hawkey.IGNORE_EXCLUDES).installed()}
        self._groups = groups.collect(self.system.base, names)

    @errors.quiet(list)
    def collectGroupInfo(self):
        return self._groups

    @errors.quiet(lambda: None)
    def collectDone(self):
        return None

    @errors.quiet(lambda: False)
    def isBetterThan(self, best, new):
        return arches.is_better(best, new, self.system.basearch, self.system.arches)

    @staticmethod
    def getBiArch(arch):
        return arches.family(arch)

    # Extra data

    def _extra(self):
        self._sack()
        if self.system.extra is None:
            self.system.extra = extradata.ExtraData(self.system)
        return self.system.extra

    @errors.communication
    def collectFileLists(self):
        self._extra().load_files()
        return True

    @errors.communication
    def collectOtherData(self):
        self._extra().load_changes()
        return True

    def _forget_extra(self):
        if self._system is not None and self._system.extra is not None:
            self._system.extra.close()
            self._system.extra = None

    # Apply

    @errors.communication
    def apply(self, installs, updates, removes):
        """The marked changes as one transaction, which the user sees and confirms before."""
        self._applying = True
        self._sack()
        if not system.is_superuser():
            raise YumBaseError('The packages of a system can only be changed with superuser '
                               'privileges (under the root user on most systems).\n'
                               'Nothing has changed.')
        execution.refuse_foreign_lock()
        plan = transaction.Plan(self.system, transaction.Marks(installs, updates, removes))
        try:
            plan.solve()
            yumIOC.listTransaction(plan)
            new = plan.news()
            yumIOC.reportDownloadSize(transaction.not_yet_here(new))
            if yumIOC.userconfirm() != 1:
                return
            packagefiles.fetch(plan.system, new)
            yumIOC.gpgsigcheck()
            signatures.check(plan.system, new)
            with self.system.without_database():
                execution.Run(plan).run()
            self._applied = True
            yumIOC.postTransactionOutput(plan)
        finally:
            plan.end()

    @errors.quiet(lambda: None)
    def applyFailCleanup(self):
        """`apply` leaves nothing behind when it fails."""

    # The end

    @errors.quiet(lambda: None)
    def flush(self):
        """The object is about to be dropped, or an Apply is over.

        Dropping it is how the program refreshes, so the next collection asks the servers; when an
        Apply has succeeded the metadata that was good enough for it still is.
        """
        if self._applying:
            self._applying = False
        else:
            self._groups = []
            if _Process.collected and not self._applied:
                _Process.ask = True
        if self._system is not None:
            self._system.close_database()

    # Capabilities

    @errors.quiet(lambda: True)
    def hasMultiProgress(self):
        return True

    @errors.quiet(lambda: False)
    def usesPresto(self):
        return bool(self.system.conf.deltarpm) and shutil.which('applydeltarpm') is not None

    # Caches

    def _clean(self, pattern, kind):
        return caches.clean(self.system.conf.cachedir, pattern, kind,
                            functools.partial(yumIOC.log, 2))

    @errors.quiet(lambda: (1, []))
    def cleanHeaders(self):
        """No headers are cached."""
        return 0, []

    @errors.quiet(lambda: (1, []))
    def cleanPackages(self):
        return self._clean(caches.PACKAGES, 'package')

    @errors.quiet(lambda: (1, []))
    def cleanMetadata(self):
        return self._clean(caches.METADATA, 'metadata')

    @errors.quiet(lambda: (1, []))
    def cleanPickles(self):
        """No pickled data is cached."""
        return 0, []

    @errors.quiet(lambda: (1, []))
    def cleanSqlite(self):
        return self._clean(caches.DATABASES, 'database')
