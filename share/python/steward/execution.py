# SPDX-License-Identifier: GPL-2.0-or-later
"""Runs a solved transaction: rpm's events on their way to the program, and what failed.

rpm changes the root of the whole process while it runs under another one, so nothing may be imported
meanwhile; and an exception that left a callback would end the process.
"""

import fcntl
import functools
import io
import logging
import os
import re
import struct
import time

import dnf.exceptions
import dnf.util
import dnf.yum.rpmtrans
import rpm
import yumIOC
from dnf.i18n import _
from libdnf.transaction import TransactionItemState_DONE as DONE

from steward import complaints, lock
from steward.errors import LIBRARY, text_of
from steward.system import below_root
from steward.texts import masked
from steward.transaction import BACKWARD
from yum.Errors import YumBaseError

# Seconds between two events of one package.
_PAUSE = 0.05
_LIBRARYS = dnf.yum.rpmtrans.RPMTransaction
# rpm's callbacks of which there are many a package.
_MANY = (rpm.RPMCALLBACK_INST_PROGRESS, rpm.RPMCALLBACK_UNINST_PROGRESS)
# Those, too, but nobody is told of them.
_UNTOLD = (rpm.RPMCALLBACK_TRANS_PROGRESS, rpm.RPMCALLBACK_INST_START,
           getattr(rpm, 'RPMCALLBACK_VERIFY_PROGRESS', None))
_OPEN, _CLOSE = rpm.RPMCALLBACK_INST_OPEN_FILE, rpm.RPMCALLBACK_INST_CLOSE_FILE
# The answer where a package's file cannot be opened. rpm's module ends the process for one that is no
# number, and leaves the package out for one that is no open file.
_NO_FILE = -1
# From this action on the library tells of its own phases, not of packages.
_PHASES = 100
# The program's events in which a package goes by its name.
_REMOVALS = (40, 50, 90)
# The library's own word, in its own translation, for a run that rpm refused to begin.
_NOT_RUN = _('Could not run transaction.')
_SCRIPTLET = re.compile(r'Error in (\S+) scriptlet in rpm package (\S+)\Z')
_COMPLAINT = complaints.pattern()
_PARTS = {
    'PREIN': 'the script that runs before its installation',
    'POSTIN': 'the script that runs after its installation',
    'PREUN': 'the script that runs before its removal',
    'POSTUN': 'the script that runs after its removal',
    'PRETRANS': 'the script that runs before the transaction',
    'POSTTRANS': 'the script that runs after the transaction',
}
# struct flock where off_t has 64 bits: type, whence, start, length, process.
_FLOCK = 'hhqqi'


class _Failures(logging.Handler):
    """Keeps the lines of the library's errors."""

    def __init__(self):
        super().__init__(logging.ERROR)
        self.lines = []

    def emit(self, record):
        line = record.getMessage()
        self.lines.append(line[5:] if line.startswith('RPM: ') else line)


def _is_untold(record):
    """False for what the display tells too: the output of scriptlets, which the library logs as
    information, and which of them failed."""
    return record.levelno != logging.INFO and not _SCRIPTLET.match(record.getMessage())


class _Element:
    """An item of the library's transaction as its callbacks read it, without the look-up that the
    item itself makes for each."""

    __slots__ = ('item', 'pkg', 'action', 'path')

    def __init__(self, item):
        self.item = item
        self.pkg = item.pkg
        self.action = item.action
        self.path = None

    def __str__(self):
        return str(self.item)


class _Events(_LIBRARYS):
    """The library's answers to rpm's callbacks, with what it would find out for each of them kept.

    rpm calls back some twenty times a package; the library looks for the item of a removal among
    all others each time.
    """

    def __init__(self, keep, base, test=False, displays=()):
        """`keep` takes an exception: rpm goes on whatever happens here, as half a transaction is
        worse than one that nobody watches."""
        super().__init__(base, test=test, displays=displays)
        self._keep = keep
        self._by_key = {}
        self._by_name = None
        self._next = 0.0

    def callback(self, what, amount, total, key, client_data):
        if what in _UNTOLD:
            return None
        try:
            if what == _OPEN:
                return self._instOpenFile(key)
            if what == _CLOSE:
                if self.fd is not None:
                    self._instCloseFile(key)
                return None
            if what in _MANY:
                # A package's first and last, and what the eye can follow of those between.
                now = time.monotonic()
                if amount < total and now < self._next:
                    return None
                self._next = now + _PAUSE
            return super().callback(what, amount, total, key, client_data)
        except BaseException as exc:  # pylint: disable=broad-except
            self._keep(exc)
        return _NO_FILE if what == _OPEN else None

    def _elemProgress(self, key, index):
        self._next = 0.0
        super()._elemProgress(key, index)

    def _extract_cbkey(self, cbkey):
        # By identity, as a key lives as long as its element is kept here.
        known = self._by_key.get(id(cbkey))
        if known is None:
            if hasattr(cbkey, 'pkg'):
                known = self._by_key[id(cbkey)] = [_Element(cbkey)]
            else:
                known = self._removed(dnf.util._te_nevra(self._te_list[self._te_index])) \
                    or super()._extract_cbkey(cbkey)
        return known

    def _removed(self, name):
        """The items of a package that rpm knows by its name only."""
        if self._by_name is None:
            self._by_name = {}
            # Where the library doesn't say which actions are rpm's, it looks itself.
            actions = getattr(dnf.yum.rpmtrans, 'RPM_ACTIONS_SET', ())
            for item in self.base.transaction:
                if item.action in actions:
                    self._by_name.setdefault(str(item), []).append(_Element(item))
        return self._by_name.get(name)

    def _instOpenFile(self, key):
        element = self._extract_cbkey(key)[0]
        if element.path is None:
            element.path = element.pkg.localPkg()
        try:
            self.fd = io.FileIO(element.path)
        except OSError as exc:
            for display in self.displays:
                display.error('%s cannot be opened: %s' % (element.path, exc.strerror))
            return _NO_FILE
        return self.fd.fileno()


def _kept(method):
    """A method of a display whose exceptions are kept: the library would log them as its own."""
    @functools.wraps(method)
    def call(self, *args):
        try:
            method(self, *args)
        except BaseException as exc:  # pylint: disable=broad-except
            self.keep(exc)
    return call


class _Display(dnf.yum.rpmtrans.TransactionDisplay):
    """What rpm tells of the run, for the program. `keep` as with _Events."""

    def __init__(self, plan, keep):
        super().__init__()
        self._plan = plan
        self.keep = keep
        self.failures = []

    @_kept
    def progress(self, package, action, ti_done, ti_total, ts_done, ts_total):
        if action >= _PHASES:
            return
        event = self._plan.event(package, action)
        if event is not None:
            subject = package.name if event in _REMOVALS else package
            yumIOC.tsEvent(subject, event, int(ti_done), int(ti_total), int(ts_done),
                           int(ts_total))

    @_kept
    def scriptout(self, msgs):
        if not msgs:
            return
        text = msgs.decode('utf-8', 'replace') if isinstance(msgs, bytes) else msgs
        for line in text.replace('\0', ' ').splitlines():
            if line.strip():
                yumIOC.stdoutWrite(masked(line) + '\n')
                # rpm writes its own complaints among the scripts' output.
                if _COMPLAINT.match(line):
                    self._failed(line.partition(': ')[2])

    @_kept
    def error(self, message):
        self._failed(_plain(str(message)))

    def _failed(self, message):
        if message not in self.failures:
            self.failures.append(message)


def _plain(message):
    """A failure in words for the reader, where its form is known."""
    found = _SCRIPTLET.match(message)
    if found is None:
        return message
    part = _PARTS.get(found.group(1), 'the script %s' % found.group(1))
    return '%s: %s failed (%s)' % (found.group(2), part, found.group(1))


class Run:
    """The run of one plan."""

    def __init__(self, plan):
        self._plan = plan
        self._base = plan.system.base
        self._display = _Display(plan, self._keep)
        self._log = _Failures()
        self._began = False
        self._raised = None

    def run(self):
        """Raises YumBaseError with all that failed."""
        refuse_foreign_lock()
        yumIOC.tsInitCallback(0)
        problem = None
        outputs, library = logging.getLogger('dnf.rpm'), logging.getLogger('dnf')
        outputs.addFilter(_is_untold)
        library.addHandler(self._log)
        self._base._run_transaction = self._announced
        dnf.yum.rpmtrans.RPMTransaction = functools.partial(_Events, self._keep)
        try:
            self._base.do_transaction(display=self._display)
        except LIBRARY as exc:
            text = text_of(exc).strip()
            problem = YumBaseError(self._ended_badly(text) if self._began and text != _NOT_RUN
                                   else self._not_run(text))
        finally:
            dnf.yum.rpmtrans.RPMTransaction = _LIBRARYS
            del self._base._run_transaction
            library.removeHandler(self._log)
            outputs.removeFilter(_is_untold)
        if self._raised is not None:
            raise self._raised
        if problem is not None:
            raise problem
        self._check()

    def _announced(self, cb):
        """The library's step between the test and the end of the run."""
        yumIOC.tsInitCallback(1)
        self._began = True
        return type(self._base)._run_transaction(self._base, cb)

    def _keep(self, exc):
        if self._raised is None:
            self._raised = exc

    # What failed

    def _not_run(self, text):
        lines = self._log.lines
        # The check raises its last line only, and the run what it could not do.
        if lines and (text == _NOT_RUN or text == lines[-1]):
            text = '\n'.join(lines).strip()
        if 'transaction lock' in text:
            return _in_use(None)
        return masked('The transaction was not run, and nothing has changed:\n%s' % text)

    def _ended_badly(self, text):
        parts = ['The transaction was run, but something failed after it:\n%s' % text]
        return self._told(parts + self._failed())

    def _check(self):
        failed = self._failed()
        if failed:
            # What was downloaded is kept for another try.
            self._base._trans_success = False
            raise YumBaseError(self._told(
                ['The transaction was run, but not all of it succeeded.'] + failed))

    def _failed(self):
        """What was not done and why, as paragraphs."""
        parts = []
        undone = ['%s of %s' % ('removal' if item.action in BACKWARD else 'installation', package)
                  for item, package in self._plan.items if item.state != DONE]
        if undone:
            parts.append('Not done:\n  ' + '\n  '.join(undone))
        if self._display.failures:
            parts.append('Failures:\n  ' + '\n  '.join(self._display.failures))
        return parts

    @staticmethod
    def _told(parts):
        return masked('\n\n'.join(parts + [
            'The log has the output of the scripts. What was done stays done. Refresh the list of '
            'packages to see the present state.']))


def _in_use(pid):
    who = lock.holder(pid) if pid else 'another process'
    return 'The package database is in use by %s, so the transaction was not run and nothing has ' \
        'changed.\nWait until it has finished, and try again.' % who


def refuse_foreign_lock():
    """Raises YumBaseError if another process holds rpm's own lock."""
    path = below_root(rpm.expandMacro('%{?_rpmlock_path}')
                      or os.path.join(rpm.expandMacro('%{_dbpath}'), '.rpm.lock'))
    try:
        descriptor = os.open(path, os.O_RDWR | os.O_CLOEXEC)
    except OSError:
        return
    try:
        asked = struct.pack(_FLOCK, fcntl.F_WRLCK, os.SEEK_SET, 0, 0, 0)
        kind, _, _, _, pid = struct.unpack(_FLOCK, fcntl.fcntl(descriptor, fcntl.F_GETLK, asked))
    except OSError:
        return
    finally:
        os.close(descriptor)
    if kind != fcntl.F_UNLCK:
        raise YumBaseError(_in_use(pid))
