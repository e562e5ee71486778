# SPDX-License-Identifier: GPL-2.0-or-later
"""The system to administer: its configuration, repositories and the library's object for them.

The root is the environment's VOKROOT, else the running system. One `System` serves one collection;
the next collection makes a new one, after `end` has closed the last.
"""

import contextlib
import functools
import logging
import os
import resource

import dnf
import dnf.conf
import dnf.conf.read
import dnf.const
import dnf.exceptions
import dnf.lock
import dnf.rpm
import dnf.util
import dnf.yum.misc
import hawkey
import libdnf.conf
import libdnf.error
import rpm
import yumIOC

from steward import extradata, lock, metadata, packages
from steward.errors import repo_error, text_of
from steward.keys import KeyQuestion
from yum.Errors import RepoError

LOGGER = logging.getLogger('dnf')

CACHEDIR = '/var/cache/yum'
REPOSDIRS = ('/etc/yum.repos.d', '/etc/yum/repos.d')
RPM_DBPATH = '/var/lib/rpm'
# More than the program has open besides the repositories' files.
_OTHER_FILES = 256

_CURRENT = []


def root():
    """The root directory of the system to administer, without a slash at its end; '' for '/'."""
    return os.environ.get('VOKROOT', '').rstrip('/')


def below_root(path):
    """`path` of the administered system as a path of this process."""
    return root() + '/' + path.lstrip('/')


def config_path():
    """The main configuration file, by the rule that the program uses."""
    path = below_root('/etc/yum/yum.conf')
    return path if os.path.exists(path) else below_root('/etc/yum.conf')


def is_superuser():
    """Whether this process may change packages, of whatever system: rpm asks for root's rights."""
    return dnf.util.am_i_root()


def _is_old():
    """Whether the library lacks calls that are made here; this one came late."""
    return not hasattr(dnf.Base, 'unload_plugins')


class Base(dnf.Base):
    """The library's object, loading repositories that `metadata` has brought up to date."""

    def __init__(self, conf, meters, file_lists):
        super().__init__(conf)
        self._meters = meters
        self.file_lists = file_lists

    def _add_repo_to_sack(self, repo):
        self._meters.reading(repo.id)
        try:
            self._sack.load_repo(repo._repo, build_cache=True, load_filelists=self.file_lists,
                                 load_presto=repo.deltarpm, load_updateinfo=True)
        except (hawkey.Exception, libdnf.error.Error, RuntimeError, OSError) as exc:
            problem = RepoError("Loading repository '%s' has failed: %s" % (repo.id, text_of(exc)))
        else:
            repo.metadata = dnf.repo.Metadata(repo._repo)
            return
        raise problem


class Repositories:
    """The repositories under the names that the program uses."""

    def __init__(self, base):
        self._base = base

    @property
    def repos(self):
        return self._base.repos

    def _get(self, repoid):
        if repoid not in self._base.repos:
            raise RepoError("No such repository: '%s'" % repoid)
        return self._base.repos[repoid]

    def enableRepo(self, repoid):
        self._get(repoid).enable()

    def disableRepo(self, repoid):
        self._get(repoid).disable()


class System:
    """Configuration and base object for one collection, or for one Apply beside it.

    `beside` is the System of the collection; its choice of repositories holds for this one too, and
    its packages stay usable. `file_lists` says whether the library is to know all file names, as a
    dependency on a file that the packages' own metadata doesn't carry requires. Failures of the
    configuration are kept in `problem`, and `load` raises them.
    """

    def __init__(self, meters, file_lists=False, beside=None):
        if beside is None:
            end_current()
        else:
            beside.rest()
        self.problem = None
        self.meters = meters
        self.conf = self._configured()
        # Newer libraries don't look at file lists otherwise, although they lie there.
        if file_lists and hasattr(self.conf, 'optional_metadata_types'):
            self.conf.optional_metadata_types = [*self.conf.optional_metadata_types, 'filelists']
        self._prepare_directories()
        self.base = Base(self.conf, meters, file_lists)
        _CURRENT.append(self)
        self._plugins_loaded = False
        self._set_up()
        if beside is not None:
            self._use_repositories_of(beside)
        self.repos = Repositories(self.base)
        self._headers = None
        self._database_is_away = False
        self.extra = None
        self.installed, self.available = packages.classes(self)
        # Best first; filled by `load`.
        self.arches = []
        self.basearch = self.conf.substitutions.get('basearch', '')

    def _configured(self):
        conf = dnf.conf.Conf()
        if _is_old():
            self._failed("The package manager's library, dnf %s, is too old for this program"
                         % dnf.const.VERSION)
        _choose_rpm_database()
        # rpm makes one as soon as it is asked for it.
        self._has_database = os.path.isdir(_database_path())
        conf.installroot = root() or '/'
        conf.config_file_path = config_path()
        try:
            if os.path.exists(conf.config_file_path):
                conf.read(conf.config_file_path, priority=dnf.conf.PRIO_MAINCONFIG)
            else:
                self._failed('The configuration file %s does not exist' % conf.config_file_path)
        except (dnf.exceptions.Error, libdnf.error.Error, RuntimeError, OSError) as exc:
            self._failed('%s: %s' % (conf.config_file_path, text_of(exc)))
        # Nothing here waits for another process, and no answer is assumed.
        conf.exit_on_lock = True
        conf.assumeyes = False
        conf.assumeno = False
        # Files are fetched one by one, which zchunk's delta downloads are no part of.
        conf.zchunk = False
        self._find_variables(conf)
        self._move_below_root(conf)
        return conf

    def _find_variables(self, conf):
        substitutions = conf.substitutions
        try:
            conf.releasever = conf.releasever or dnf.rpm.detect_releasever(conf.installroot) or ''
        except (dnf.exceptions.Error, rpm.error, RuntimeError, OSError) as exc:
            LOGGER.warning('The version of the distribution is unknown: %s', text_of(exc))
            conf.releasever = ''
        substitutions.update_from_etc(conf.installroot, varsdir=conf.varsdir)

    def _move_below_root(self, conf):
        runtime, default = dnf.conf.PRIO_RUNTIME, dnf.conf.PRIO_DEFAULT
        if conf._get_priority('cachedir') == default:
            conf._set_value('cachedir', CACHEDIR, runtime)
        if conf._get_priority('reposdir') == default:
            conf._set_value('reposdir', libdnf.conf.VectorString(list(REPOSDIRS)), runtime)
        for option in ('cachedir', 'persistdir', 'logdir', 'system_cachedir'):
            conf._set_value(option, self._below(conf, conf._get_value(option)), runtime)
        for option in ('reposdir', 'pluginconfpath'):
            moved = [self._below(conf, path) for path in conf._get_value(option)]
            conf._set_value(option, libdnf.conf.VectorString(moved), runtime)

    @staticmethod
    def _below(conf, path):
        return below_root(libdnf.conf.ConfigParser.substitute(path, conf.substitutions))

    def _prepare_directories(self):
        for option in ('cachedir', 'persistdir', 'logdir'):
            path = self.conf._get_value(option)
            try:
                os.makedirs(path, exist_ok=True)
                usable = os.access(path, os.W_OK)
            except OSError as exc:
                usable = False
                if is_superuser():
                    self._failed('%s: %s' % (path, exc.strerror))
            # An ordinary user looks at the system with the library's cache for ordinary users.
            if not usable and not is_superuser() and option != 'persistdir':
                self.conf._set_value(option, dnf.yum.misc.getCacheDir(), dnf.conf.PRIO_RUNTIME)

    def _failed(self, text):
        LOGGER.critical('%s', text)
        if self.problem is None:
            self.problem = text

    def _set_up(self):
        base = self.base
        try:
            base.init_plugins()
        except (dnf.exceptions.Error, RuntimeError) as exc:
            LOGGER.error('Plugins: %s', text_of(exc))
        self._plugins_loaded = bool(self.conf.plugins) and not _is_old()
        self._run_plugins(base.pre_configure_plugins)
        self._read_repositories()
        self._run_plugins(base.configure_plugins)
        for repo in base.repos.values():
            repo._set_key_import(KeyQuestion(repo.id))

    def _use_repositories_of(self, other):
        used = {repo.id for repo in other.base.repos.iter_enabled()}
        for repo in self.base.repos.values():
            (repo.enable if repo.id in used else repo.disable)()

    @staticmethod
    def _run_plugins(step):
        try:
            step()
        except dnf.exceptions.Error as exc:
            LOGGER.error('Plugins: %s', text_of(exc))

    def _read_repositories(self):
        reader = dnf.conf.read.RepoReader(self.conf, None)
        main = self.conf.config_file_path
        if os.path.exists(main):
            self._read_file(reader, main, ('main',))
        for directory in self.conf.reposdir:
            try:
                names = os.listdir(directory)
            except OSError:
                continue
            for name in sorted(names):
                path = os.path.join(directory, name)
                if name.endswith('.repo') and not os.path.isdir(path):
                    self._read_file(reader, path, ())

    def _read_file(self, reader, path, skipped):
        """Adds the repositories of one file. What is wrong with one is logged with the file's
        name, and leaves the others alone."""
        parser = libdnf.conf.ConfigParser()
        parser.setSubstitutions(self.conf.substitutions)
        try:
            # To the library a file that can't be opened is an empty one.
            with open(path, 'rb'):
                parser.read(path)
        except (libdnf.error.Error, RuntimeError, OSError) as exc:
            LOGGER.warning('%s: %s', path, getattr(exc, 'strerror', None) or text_of(exc))
            return
        for section in parser.getData():
            if section in skipped:
                continue
            try:
                repo = reader._build_repo(parser, section, path)
                repo.repofile = path
                self.base.repos.add(repo)
            except (dnf.exceptions.Error, libdnf.error.Error, RuntimeError, ValueError,
                    TypeError) as exc:
                LOGGER.warning('%s: [%s]: %s', path, section, text_of(exc))

    def load(self, ask):
        """Brings the metadata of all enabled repositories up to date and reads it and the
        installed packages. With `ask` each server is asked, else only where the cache is too old.

        Repositories that may be missing are left out with a warning. Raises RepoError.
        """
        self._load(functools.partial(self._update, ask))

    def load_cached(self):
        """Reads the metadata that the collection has used, and the installed packages. Only what is
        missing is fetched. Raises RepoError."""
        self._load(self._complete)

    def _load(self, update):
        if self.problem is not None:
            raise RepoError(self.problem)
        if not self._has_database:
            LOGGER.warning('There was no package database at %s; nothing counts as installed',
                           _database_path())
        _allow_open_files(len(list(self.base.repos.iter_enabled())))
        try:
            update()
            self.base.fill_sack()
        except OSError as exc:
            problem = RepoError('The package database at %s, or the cache at %s, cannot be used: %s'
                                % (_database_path(), self.conf.cachedir, text_of(exc)))
        except dnf.exceptions.LockError as exc:
            problem = RepoError(text_of(lock.refused(exc, 'The metadata cache')))
        else:
            self.arches = list(self.base.sack.list_arches())
            return
        raise problem

    def _complete(self):
        if self.base.file_lists:
            with dnf.lock.build_metadata_lock(self.conf.cachedir, True):
                for repo in self.base.repos.iter_enabled():
                    try:
                        extradata.fetch(repo, self.conf, self.meters, 'filelists', 'filelists.xml')
                    except (OSError, RepoError) as exc:
                        # The server may have newer metadata by now, which is then fetched whole.
                        LOGGER.warning('%s', text_of(exc))
                    self._forget_digest(repo)
        self._update(None)

    def _forget_digest(self, repo):
        """Has the library read the repository's metadata anew, not its own digest of it: there it
        notes which files it has looked up, and one made without file lists says they don't exist.
        """
        try:
            os.unlink(os.path.join(self.conf.cachedir, repo.id + '.solv'))
        except OSError:
            pass

    def _update(self, ask):
        """First asks all servers, then downloads from all, as the program's progress expects."""
        base = self.base
        work = []
        with dnf.lock.build_metadata_lock(self.conf.cachedir, True):
            try:
                for repo in list(base.repos.iter_enabled()):
                    step = metadata.Refresh(repo, self.conf, self.meters, ask,
                                            base.file_lists)
                    work.append((repo, step))
                    if not self._attempt(repo, step.check):
                        work.pop()
                        step.close()
                for repo, step in work:
                    self._attempt(repo, step.download)
            finally:
                for repo, step in work:
                    step.close()

    @staticmethod
    def _attempt(repo, step):
        try:
            return step()
        except (dnf.exceptions.RepoError, libdnf.error.Error, RuntimeError, OSError) as exc:
            problem = repo_error(exc)
        if not repo.skip_if_unavailable:
            raise problem
        LOGGER.warning('%s', problem)
        LOGGER.warning('Ignoring repository: %s', repo.id)
        repo.disable()
        return False

    def header(self, rpmdbid):
        """The header of an installed package, or None when it is gone from the database, or when
        that can't be opened now."""
        if self._database_is_away:
            return None
        if self._headers is None:
            self._headers = rpm.TransactionSet(self.conf.installroot,
                                               rpm._RPMVSF_NOSIGNATURES | rpm._RPMVSF_NODIGESTS)
        for header in self._headers.dbMatch(rpm.RPMDBI_PACKAGES, rpmdbid):
            return header
        return None

    def rest(self):
        """Gives way to another System, without ending this one: plugins exist once in a process."""
        self.close_database()
        self._unload_plugins()

    def _unload_plugins(self):
        if self._plugins_loaded:
            self._plugins_loaded = False
            self.base.unload_plugins()

    @contextlib.contextmanager
    def without_database(self):
        """For a transaction: under another root the database has no path while rpm runs, and the
        program may look at packages at any time."""
        self.close_database()
        self._database_is_away = True
        try:
            yield
        finally:
            self._database_is_away = False

    def close_database(self):
        """Lets the package database go. It is opened again when needed."""
        if self._headers is not None:
            self._headers.closeDB()
            self._headers = None

    def end(self):
        """Closes what can be closed while packages are still in use: their data stays readable."""
        if self in _CURRENT:
            _CURRENT.remove(self)
        self.close_database()
        try:
            self._unload_plugins()
            # What a transaction was made of. The library would wait for the disk.
            self.base._clean_packages = _remove
            self.base.close()
        except (dnf.exceptions.Error, libdnf.error.Error, RuntimeError, KeyError, OSError) as exc:
            LOGGER.warning('%s', text_of(exc))


def _remove(paths):
    paths = list(paths)
    if paths:
        yumIOC.removeFiles(paths)


def end_current():
    """Ends the system of the last collection, if any: plugins exist once in a process."""
    while _CURRENT:
        _CURRENT[-1].end()


def _allow_open_files(repositories):
    """Raises the process's limit where it is too low: the library keeps a file of each repository
    open as long as its packages are in use."""
    soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
    wanted = repositories + _OTHER_FILES
    if hard != resource.RLIM_INFINITY:
        wanted = min(wanted, hard)
    if soft != resource.RLIM_INFINITY and soft < wanted:
        resource.setrlimit(resource.RLIMIT_NOFILE, (wanted, hard))


def _database_path():
    return below_root(rpm.expandMacro('%{_dbpath}'))


def _choose_rpm_database():
    """Points rpm at the system's database where its default is a directory of the user's own.

    To be called after the process's first Conf(), which reads rpm's macro files anew.
    """
    # By its name: the home before it is written in more than one way.
    if os.path.basename(rpm.expandMacro('%{_dbpath}')) == '.rpmdb':
        rpm.addMacro('_dbpath', RPM_DBPATH)
