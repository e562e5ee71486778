# SPDX-License-Identifier: GPL-2.0-or-later
"""Downloads and reading steps on their way to the program's progress.

The program tells a download by its file name, of which it takes the next-to-last component as the
repository and the start of the last one as the kind: "metalink", "repomd", "group_gz", or contents.
It advances its acts with each start, two for each repository and kind, so a repository has one
meter for all its contents together.
"""

import yumIOC

from steward.texts import masked


class Meter:
    """One download. The program knows it by this object's identity, from start to end."""

    __slots__ = ('_update', '_end', '_failure', '_last', '_open')

    def __init__(self, prefix, repo, kind, size):
        start = getattr(yumIOC, prefix + 'GrabMeterStart')
        self._update = getattr(yumIOC, prefix + 'GrabMeterUpdate')
        self._end = getattr(yumIOC, prefix + 'GrabMeterEnd')
        self._failure = getattr(yumIOC, prefix + 'GrabMeterFailure')
        self._last = 0
        self._open = True
        name = masked(repo)
        start(self, '/%s/%s' % (name, kind), None, kind, int(size) if size and size > 0 else None,
              '%s/%s' % (name, kind))

    def update(self, amount):
        amount = int(amount)
        if amount > self._last:
            self._last = amount
            self._update(self, amount)

    def end(self, amount=None):
        if self._open:
            self._open = False
            self._end(self, self._last if amount is None else int(amount))

    def fail(self, message):
        if self._open:
            self._open = False
            self._failure(self, masked(message))


class Collection:
    """The meters of a collection or of one load of extra data."""

    def download(self, repo, kind, size=None):
        return Meter('collect', repo, kind, size)

    def reading(self, repo):
        """A repository is being read, with no count to give."""
        yumIOC.collectProgress(-1, -1, masked(repo))

    def read(self, current, total, repo):
        yumIOC.collectProgress(int(current), int(total), masked(repo))
