# SPDX-License-Identifier: GPL-2.0-or-later
"""A collection from the lock to the groups, over real packages."""

import unittest

from fixture import COMPS, Rpm, SystemTest, nevras, yumIOC


class Collection(SystemTest):

    def test_listsUpdatesInstalledAndAvailable(self):
        self.install(Rpm('alpha'), Rpm('old'))
        self.repository('base', [Rpm('alpha'), Rpm('alpha', '2.0', epoch=1), Rpm('beta')], COMPS)
        lists = self.collect().lists
        self.assertEqual(nevras(lists.updates), ['alpha-1:2.0-1.noarch'])
        self.assertEqual(nevras(lists.installed), ['alpha-1.0-1.noarch', 'old-1.0-1.noarch'])
        self.assertEqual(nevras(lists.available), ['alpha-1:2.0-1.noarch', 'beta-1.0-1.noarch'])


if __name__ == '__main__':
    unittest.main()
