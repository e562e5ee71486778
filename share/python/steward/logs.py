# SPDX-License-Identifier: GPL-2.0-or-later
"""Sends the library's loggers and Python's output streams to the program."""

import logging
import sys

import dnf.logging
import yumIOC
from dnf.i18n import _

from steward.texts import masked

# What the library says for its own command line, and what fits this program.
_REWORDED = {
    _("You can remove cached packages by executing '%s'."):
        'The Cache menu can remove cached packages.',
}

# The library's level from which on a line has the given debug level (0 to 10).
_DEBUG_LEVELS = (
    (logging.INFO, 2),
    (logging.DEBUG, 4),
    (dnf.logging.DDEBUG, 7),
    (dnf.logging.SUBDEBUG, 8),
    (dnf.logging.TRACE, 9),
)
_ERROR_LEVELS = (
    (logging.CRITICAL, 0),
    (logging.ERROR, 1),
    (logging.WARNING, 2),
)

LOGGERS = ('dnf', 'librepo', 'libdnf')


def _level(levelno, table, lowest):
    for floor, level in table:
        if levelno >= floor:
            return level
    return lowest


class ProgramHandler(logging.Handler):
    """Warnings and worse go to the error log, all else to the log, with numeric levels."""

    def emit(self, record):
        try:
            text = _REWORDED.get(record.msg)
            if text is None:
                # The format is that of the bare message.
                text = self.format(record) if record.exc_info else record.getMessage()
            text = masked(text)
            if record.levelno >= logging.WARNING:
                yumIOC.errorlog(_level(record.levelno, _ERROR_LEVELS, 2), text)
            else:
                yumIOC.log(_level(record.levelno, _DEBUG_LEVELS, 10), text)
        except Exception:  # pylint: disable=broad-except
            # As every handler: a line that can't be logged must not end the work.
            self.handleError(record)


class Stream:
    """An output stream whose text goes to one function of the program."""

    encoding = 'utf-8'
    errors = 'replace'
    closed = False

    def __init__(self, write, descriptor):
        self._write = write
        self._descriptor = descriptor

    def write(self, text):
        self._write(masked(text))
        return len(text)

    def writelines(self, lines):
        for line in lines:
            self.write(line)

    def flush(self):
        pass

    def isatty(self):
        return False

    def fileno(self):
        # rpm duplicates the descriptor for the output of scriptlets.
        return self._descriptor

    def readable(self):
        return False

    def writable(self):
        return True


def start():
    """Connects the streams and the loggers. Calling it again changes nothing."""
    if not isinstance(sys.stdout, Stream):
        sys.stdout = Stream(yumIOC.stdoutWrite, 1)
        sys.stderr = Stream(yumIOC.stderrWrite, 2)
    logging.raiseExceptions = False
    # Nobody is told where a line comes from, and the library logs a line or two of each package.
    logging._srcfile = None
    logging.logThreads = logging.logProcesses = logging.logMultiprocessing = False
    for name in LOGGERS:
        logger = logging.getLogger(name)
        logger.setLevel(dnf.logging.ALL)
        logger.propagate = False
        if not any(isinstance(handler, ProgramHandler) for handler in logger.handlers):
            logger.addHandler(ProgramHandler())
