# SPDX-License-Identifier: GPL-2.0-or-later
"""Downloads and reading steps on their way to the program's progress.

The program tells a download by its file name, of which it takes the next-to-last component as the
repository and the start of the last one as the kind: "metalink", "repomd", "group_gz", or contents.
It advances its acts with each start, two for each repository and kind, so a repository has one
meter for all its contents together.
"""

import time

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


class Apply:
    """The meters of an Apply: of metadata that it has to load, and of the packages' files."""

    def download(self, repo, kind, size=None):
        # The program shows the last component of the name.
        return Meter('apply', repo, '%s %s' % (repo, kind), size)

    def reading(self, repo):
        """Reading has a place in the progress of a collection only."""

    def read(self, current, total, repo):
        """As `reading`."""

    @staticmethod
    def batch(files, size):
        return Batch(files, size)


class Batch:
    """A download of several files side by side, opened with their number and bytes.

    The program has a slot for each file and gives them out in the order of `meter`'s objects'
    first starts. `close` is to be called in every case; it ends what is still open.
    """

    def __init__(self, files, size):
        self._meters = []
        yumIOC.applyGrabMultiMeterStart(int(files), int(size))

    def meter(self, name, repo, size):
        """The meter of one file. The program hears of it when it starts."""
        made = FileMeter(name, repo, size)
        self._meters.append(made)
        return made

    def close(self):
        try:
            for meter in self._meters:
                meter.remove('Not finished')
        finally:
            yumIOC.applyGrabMultiMeterEnd()


class FileMeter:
    """One file of a batch. `progress` starts it, again after a failure."""

    __slots__ = ('_name', '_text', '_size', '_known', '_running', '_last', '_next')

    # Seconds between two reports of one file. Each makes the program copy the state of all files,
    # so files that come faster than the eye can follow have none between start and end.
    INTERVAL = 0.05

    def __init__(self, name, repo, size):
        self._name = masked(name)
        self._text = masked('%s/%s' % (repo, name))
        self._size = int(size) if size and size > 0 else None
        self._known = False
        self._running = False
        self._last = 0
        self._next = 0.0

    def progress(self, amount):
        if not self._running:
            self._start()
        if amount > self._last:
            now = time.monotonic()
            if now >= self._next:
                self._next = now + self.INTERVAL
                self._last = int(amount)
                yumIOC.applyGrabMeterUpdate(self, self._last)

    def _start(self):
        if not self._known:
            self._known = True
            yumIOC.applyGrabMultiMeterNew(self)
        self._running = True
        self._last = 0
        self._next = time.monotonic() + self.INTERVAL
        yumIOC.applyGrabMeterStart(self, self._name, None, None, self._size, self._text)

    def end(self, amount):
        """The file is there. The meter is done with."""
        if not self._running:
            self._start()
        self._running = False
        yumIOC.applyGrabMeterEnd(self, int(amount))
        self.remove(None)

    def fail(self, message):
        """One try has failed. The next `progress` is that of another one."""
        if self._running:
            self._running = False
            yumIOC.applyGrabMeterFailure(self, masked(message))

    def remove(self, message):
        """There will be no more tries."""
        self.fail(message)
        if self._known:
            self._known = False
            yumIOC.applyGrabMultiMeterRemove(self)
