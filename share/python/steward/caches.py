# SPDX-License-Identifier: GPL-2.0-or-later
"""Empties the parts of the cache directory. Nothing outside of it is ever touched."""

import os
import re

import dnf.repo

from steward.texts import masked

_REPO = dnf.repo._CACHEDIR_RE
PACKAGES = re.compile(r'^%s/packages/.+\.(d?rpm)$' % _REPO)
METADATA = re.compile(
    r'^%s/(.*((xml|yaml)(\.gz|\.xz|\.bz2|\.zst|\.zck)?|asc|cachecookie)|(metalink\.xml|mirrorlist))$'
    % _REPO)
# The library's parsed form of the metadata, and sqlite files that a repository may offer.
DATABASES = re.compile(r'^([^/]+\.solvx?|%s/repodata/.+\.sqlite(\.gz|\.xz|\.bz2|\.zst)?)$' % _REPO)


def clean(directory, pattern, kind, log):
    """Removes the files below `directory` whose path in it matches `pattern`.

    Returns (code, messages): 0 when all went, else 1; each message is also given to `log`.
    Symbolic links are not followed: one that matches is removed itself.
    """
    removed, failures = 0, []
    for top, _, names in os.walk(directory, followlinks=False):
        for name in names:
            path = os.path.join(top, name)
            if not pattern.match(os.path.relpath(path, directory)):
                continue
            try:
                os.unlink(path)
                removed += 1
            except OSError as exc:
                failures.append(masked('%s: %s' % (path, exc.strerror)))
    messages = ['%d %s %s removed' % (removed, kind, 'file' if removed == 1 else 'files')]
    messages += failures
    for message in messages:
        log(message)
    return (1 if failures else 0), messages
