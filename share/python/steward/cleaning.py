# SPDX-License-Identifier: GPL-2.0-or-later
"""Removes package files that have served their purpose, while other work goes on.

On a disk that is still busy with a transaction the removal takes a while, in which the list of
packages can be collected anew.
"""

import logging
import os
import threading

from steward.texts import masked

LOGGER = logging.getLogger('dnf')

_RUNNING = []


class _Removal(threading.Thread):
    """One set of files on its way out."""

    def __init__(self, paths):
        super().__init__(name='Clean')
        self._paths = paths
        # The program hears from its own threads only.
        self.failures = []

    def run(self):
        for path in self._paths:
            try:
                os.unlink(path)
            except FileNotFoundError:
                pass
            except OSError as exc:
                self.failures.append('%s cannot be removed: %s' % (path, exc.strerror))


def remove(paths):
    """Begins to remove the files. Those that don't exist are no failure."""
    paths = list(paths)
    if paths:
        removal = _Removal(paths)
        _RUNNING.append(removal)
        try:
            removal.start()
        except RuntimeError:  # there is no room for another thread
            removal.run()


def finish():
    """Waits for what has been begun, and tells what could not be removed."""
    while _RUNNING:
        removal = _RUNNING.pop()
        if removal.is_alive():
            removal.join()
        for failure in removal.failures:
            LOGGER.warning('%s', masked(failure))
