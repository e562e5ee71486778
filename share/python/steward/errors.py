# SPDX-License-Identifier: GPL-2.0-or-later
"""Turns whatever the package manager raises into the exceptions that the program understands."""

import functools
import traceback

import dnf.exceptions
import hawkey
import libdnf.error
import rpm
import yumIOC

from steward.texts import masked
from yum.Errors import GroupsError, LockError, NoMoreMirrorsRepoError, RepoError, YumBaseError

# What the libraries raise for an ordinary failure. Anything else is a mistake in this script.
LIBRARY = (dnf.exceptions.Error, hawkey.Exception, libdnf.error.Error, rpm.error, RuntimeError)

_NO_MORE_MIRRORS = ('All mirrors were tried', 'No more mirrors', 'all mirrors were already tried')


def text_of(exc):
    """The text of an exception, masked: its `value`, else str(), else its class name."""
    value = getattr(exc, 'value', None)
    return masked(value if isinstance(value, (str, bytes)) and value else str(exc)) \
        or type(exc).__name__


def is_exhausted(text):
    """True if `text` says that every mirror was tried."""
    return any(phrase in text for phrase in _NO_MORE_MIRRORS)


def repo_error(exc):
    """A RepoError, or its subclass for exhausted mirrors, with the masked text of `exc`."""
    text = text_of(exc)
    if isinstance(exc, NoMoreMirrorsRepoError) or is_exhausted(text):
        return NoMoreMirrorsRepoError(text)
    return RepoError(text)


def base_error(exc):
    """The exception to raise from a call that expects the communication exceptions.

    A plain RepoError becomes a YumBaseError: the program shows a RepoError outside of the
    repositories' set-up as a mistake of its own.
    """
    if isinstance(exc, (GroupsError, NoMoreMirrorsRepoError)):
        return type(exc)(text_of(exc))
    return YumBaseError(text_of(exc))


def _guarded(convert, kinds):
    def decorate(method):
        @functools.wraps(method)
        def call(*args):
            try:
                return method(*args)
            except kinds as exc:
                problem = convert(exc)
            # Outside of the handler, so that no chained walkback shows the unmasked text.
            raise problem
        return call
    return decorate


# For `setupRepos`, which may raise nothing but RepoError.
repositories = _guarded(repo_error, LIBRARY + (OSError,))
# For calls that expect the communication exceptions, OSError being one of them.
communication = _guarded(base_error, LIBRARY)


def lock_error(exc):
    """A LockError with the masked text of `exc`.

    The text goes to the error log as well: the program shows what was logged of a refused lock, not
    the exception's own text.
    """
    problem = LockError(text_of(exc))
    yumIOC.errorlog(0, problem.value)
    return problem


locking = _guarded(lock_error, LIBRARY + (OSError,))


def quiet(fallback):
    """For calls that may raise nothing: the failure is logged and `fallback()` returned."""
    def decorate(method):
        @functools.wraps(method)
        def call(*args):
            try:
                return method(*args)
            except Exception as exc:  # pylint: disable=broad-except
                yumIOC.errorlog(1, masked('%s: %s' % (method.__name__, text_of(exc))))
                yumIOC.log(5, masked(traceback.format_exc()))
                return fallback()
        return call
    return decorate
