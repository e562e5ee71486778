# SPDX-License-Identifier: GPL-2.0-or-later
"""One process-wide lock on the package database, independent of threads and instances.

The library makes a new lock object for each use, and leaving any of them removes the lock file that
the others rely on. Here its factory is replaced by one that gives a single counting lock a file.
"""

import os

import dnf.exceptions
import dnf.lock

from yum.Errors import LockError


class CountingLock(dnf.lock.ProcessLock):
    """The library's lock without its tie to a thread; only the last leave removes the file."""

    def _lock_thread(self):
        self.count += 1

    def _unlock_thread(self):
        self.count -= 1

    def __exit__(self, *exc_args):
        if self.count == 1:
            try:
                os.unlink(self.target)
            except FileNotFoundError:
                pass
        self._unlock_thread()


_LOCKS = {}
_HELD = []
_BUILD = dnf.lock.build_rpmdb_lock


def _build_rpmdb_lock(persistdir, exit_on_lock):
    made = _BUILD(persistdir, exit_on_lock)
    return _LOCKS.setdefault(made.target, CountingLock(made.target, made.description))


def holder(pid):
    """The process `pid` for the eye: its command name and the number."""
    try:
        with open('/proc/%d/comm' % pid, 'rb') as stream:
            name = stream.read().decode('utf-8', 'replace').strip()
    except OSError:
        name = ''
    return '%s (pid %d)' % (name, pid) if name else 'the process with pid %d' % pid


def refused(exc, what):
    """A LockError that names the holder, for the library's refusal `exc`."""
    pid = getattr(exc, 'pid', None)
    if isinstance(pid, int):
        return LockError('%s is locked by another application: %s.\n'
                         'Wait until it has finished, or end it, and try again.'
                         % (what, holder(pid)))
    return LockError(str(exc))


def take(persistdir):
    """Takes the lock for the rest of the process; taking it again is no error."""
    dnf.lock.build_rpmdb_lock = _build_rpmdb_lock
    if _HELD:
        return
    lock = _build_rpmdb_lock(persistdir, True)
    try:
        lock.__enter__()
    except dnf.exceptions.LockError as exc:
        problem = refused(exc, 'The package database')
    else:
        _HELD.append(lock)
        return
    raise problem


def drop():
    """Gives the lock up. Without a lock it does nothing."""
    if _HELD:
        _HELD.pop().__exit__(None, None, None)
