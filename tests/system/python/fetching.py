# SPDX-License-Identifier: GPL-2.0-or-later
"""What the tests of the download of packages' files stand on."""

import os

from fixture import Rpm, SystemTest, build, yumIOC

PACKAGES = [Rpm('alpha'), Rpm('beta'), Rpm('gamma')]


class Fetching(SystemTest):
    """What the tests of this file have in common."""

    def setUp(self):
        super().setUp()
        from steward import packagefiles
        self.module = packagefiles
        self.errors = self.names['yum'].Errors

    def ready(self, *names):
        """The collected packages of these names, by name; and forgets what has been asked."""
        self.made = self.collect()
        self.server.forget()
        yumIOC.clear()
        found = {package.name: package for package in self.made.lists.available}
        return [found[name] for name in names]

    def fetch(self, packages):
        self.module.fetch(self.made.system, packages)

    def refused(self, packages):
        with self.assertRaises(self.errors.YumBaseError) as caught:
            self.fetch(packages)
        self.check_closed()
        return caught.exception.value

    def rpm_url(self, repoid, name):
        return '/%s/%s' % (repoid, Rpm(name).filename)

    def good(self, package):
        with open(package.localPkg(), 'rb') as one, open(build(Rpm(package.name)), 'rb') as two:
            self.assertEqual(one.read(), two.read())

    def meters(self, name=None):
        """The calls of the program's meters, by short names, without their meter; those of one
        file, or of all. Also checks that each keeps to its meter."""
        calls, names = [], {}
        for call in yumIOC.calls:
            if not call[0].startswith('applyGrab'):
                continue
            word = call[0][len('applyGrab'):]
            if word == 'MeterStart':
                names[id(call[1])] = call[2]
            calls.append((word, call))
        chosen = []
        for word, call in calls:
            if word in ('MultiMeterStart', 'MultiMeterEnd'):
                if name is None:
                    chosen.append(word)
            elif name is None or names[id(call[1])].startswith(name):
                chosen.append(word)
        return chosen

    def check_closed(self):
        """Whatever was opened is closed: batch, slots and transfers."""
        calls = [call for call in yumIOC.calls if call[0].startswith('applyGrab')]
        if not calls:
            return
        self.assertEqual('applyGrabMultiMeterStart', calls[0][0])
        self.assertEqual('applyGrabMultiMeterEnd', calls[-1][0])
        known, running = set(), set()
        for call in calls[1:-1]:
            word = call[0][len('applyGrab'):]
            meter = id(call[1])
            if word == 'MultiMeterNew':
                self.assertNotIn(meter, known)
                known.add(meter)
            else:
                self.assertIn(meter, known)
            if word == 'MeterStart':
                self.assertNotIn(meter, running)
                running.add(meter)
            elif word in ('MeterUpdate', 'MeterEnd', 'MeterFailure'):
                self.assertIn(meter, running)
                if word != 'MeterUpdate':
                    running.discard(meter)
            elif word == 'MultiMeterRemove':
                self.assertNotIn(meter, running)
                known.discard(meter)
        self.assertEqual(set(), known)
        self.assertLessEqual(
            len({id(call[1]) for call in calls if call[0] == 'applyGrabMultiMeterNew'}),
            calls[0][1])

    def leftovers(self):
        return [name for _, directories, files in os.walk(self.path('var', 'cache'))
                for name in directories + files if name.startswith('.vok')]
