# SPDX-License-Identifier: GPL-2.0-or-later
"""How packages' files come into their places, and what the program's progress hears meanwhile."""

import base64
import os
import shutil
import unittest

from fetching import PACKAGES, Fetching
from fixture import Rpm, yumIOC


class Good(Fetching):

    def test_eachFileComesIntoItsPlace(self):
        self.repository('main1', PACKAGES)
        self.repository('main2', [Rpm('delta')])
        packages = self.ready('alpha', 'beta', 'delta')
        self.fetch(packages)
        for package in packages:
            self.good(package)
        self.assertEqual([], self.leftovers())
        self.assertEqual(sorted(Rpm(name).filename for name in ('alpha', 'beta', 'delta')),
                         sorted(self.server.names()))

    def test_oneBatchTellsOfEachFile(self):
        self.repository('main1', PACKAGES)
        self.repository('main2', [Rpm('delta')])
        packages = self.ready('alpha', 'beta', 'delta')
        self.fetch(packages)
        self.check_closed()
        self.assertEqual([('applyGrabMultiMeterStart', 3,
                           sum(package.downloadsize for package in packages))],
                         yumIOC.named('applyGrabMultiMeterStart'))
        for package in packages:
            own = self.meters(package.name)
            self.assertEqual(['MultiMeterNew', 'MeterStart'], own[:2])
            self.assertEqual(['MeterEnd', 'MultiMeterRemove'], own[-2:])
            self.assertLessEqual(set(own[2:-2]), {'MeterUpdate'})
        for call in yumIOC.named('applyGrabMeterStart'):
            self.assertIn(call[2], [Rpm(package.name).filename for package in packages])
            self.assertEqual([package.downloadsize for package in packages
                              if call[2].startswith(package.name)], [call[5]])
            self.assertRegex(call[6], r'\Amain[12]/.*\.rpm\Z')
        for call in yumIOC.named('applyGrabMeterEnd'):
            self.assertIn(call[2], [package.downloadsize for package in packages])

    def test_whatIsThereAndRightIsNotLoadedAgain(self):
        self.repository('first', PACKAGES)
        packages = self.ready('alpha', 'beta')
        self.fetch(packages[:1])
        yumIOC.clear()
        self.server.forget()
        self.fetch(packages)
        self.assertEqual([Rpm('beta').filename], self.server.names())
        self.assertEqual(1, yumIOC.named('applyGrabMultiMeterStart')[0][1])

    def test_nothingToDownloadMeansNoBatch(self):
        self.repository('first', PACKAGES)
        packages = self.ready('alpha')
        self.fetch(packages)
        yumIOC.clear()
        self.fetch(packages)
        self.fetch([])
        self.assertEqual([], self.meters())

    def test_aTruncatedFileInTheCacheIsLoadedAgain(self):
        self.repository('first', PACKAGES)
        packages = self.ready('alpha')
        self.fetch(packages)
        os.truncate(packages[0].localPkg(), 100)
        self.fetch(packages)
        self.good(packages[0])

    def test_aChangedFileOfTheSameSizeIsLoadedAgain(self):
        self.repository('first', PACKAGES)
        packages = self.ready('alpha')
        self.fetch(packages)
        with open(packages[0].localPkg(), 'r+b') as stream:
            stream.seek(-3, os.SEEK_END)
            stream.write(b'xyz')
        self.fetch(packages)
        self.good(packages[0])

    def test_aPackageNamedTwiceIsLoadedOnce(self):
        self.repository('first', PACKAGES)
        package, = self.ready('alpha')
        self.fetch([package, package])
        self.assertEqual(1, len(self.server.names()))

    def test_filesOfALocalRepositoryStayWhereTheyAre(self):
        self.repository('first', PACKAGES, baseurl=False,
                        text='baseurl=file://%s/first\n' % self.served)
        package, = self.ready('alpha')
        self.fetch([package])
        self.assertEqual(os.path.join(self.served, 'first', Rpm('alpha').filename),
                         package.localPkg())
        self.assertEqual([], self.meters())

    def test_aDamagedFileOfALocalRepositoryIsRefused(self):
        self.repository('first', PACKAGES, baseurl=False,
                        text='baseurl=file://%s/first\n' % self.served)
        alpha, beta = self.ready('alpha', 'beta')
        os.truncate(alpha.localPkg(), 100)
        os.unlink(beta.localPkg())
        text = self.refused([alpha, beta])
        self.assertRegex(text, 'alpha-.*is not what the metadata says')
        self.assertRegex(text, 'beta-.*does not exist')

    def test_aBaseOfThePackagesOwnIsUsed(self):
        other = os.path.join(self.served, 'other')
        self.repository('first', PACKAGES, options=['--baseurl', self.server.url + '/other'])
        os.makedirs(other)
        shutil.move(os.path.join(self.served, 'first', Rpm('alpha').filename), other)
        package, = self.ready('alpha')
        self.fetch([package])
        self.good(package)
        self.assertEqual(['/other/' + Rpm('alpha').filename],
                         [path for path, _ in self.server.requests()])

    def test_aBaseOfThePackagesOwnNeedsNoMirrors(self):
        self.repository('first', PACKAGES, baseurl=False,
                        text='mirrorlist=%s/list\n' % self.server.url,
                        options=['--baseurl', self.server.url + '/vantry?a=b&c=d&path=first'])
        with open(os.path.join(self.served, 'list'), 'w') as stream:
            stream.write(self.server.url + '/first\n')
        package, = self.ready('alpha')
        os.unlink(os.path.join(self.served, 'list'))
        self.fetch([package])
        self.good(package)
        self.assertEqual(['/vantry?a=b&c=d&path=first/' + Rpm('alpha').filename],
                         [path for path, _ in self.server.requests()])

    def test_thePathBelongsToTheEndOfAQuery(self):
        self.repository('first', PACKAGES, baseurl=False, text='baseurl=%s\n' % (
            self.server.url + '/vantry?user=me&password=secret&path=first'))
        package, = self.ready('alpha')
        self.fetch([package])
        self.good(package)
        self.assertEqual(['/vantry?user=me&password=secret&path=first/' + Rpm('alpha').filename],
                         [path for path, _ in self.server.requests()])
        self.assertNotIn('secret', repr(yumIOC.calls))

    def test_nameAndPasswordAreSent(self):
        self.repository('first', PACKAGES, text='username=me\npassword=secret\n')
        self.server.demand('Basic ' + base64.b64encode(b'me:secret').decode())
        package, = self.ready('alpha')
        self.fetch([package])
        self.good(package)

    def test_aProxyIsAsked(self):
        self.repository('first', PACKAGES, baseurl=False,
                        text='baseurl=http://nowhere.invalid/first\nproxy=%s\n' % self.server.url)
        package, = self.ready('alpha')
        self.fetch([package])
        self.good(package)
        self.assertEqual(['http://nowhere.invalid' + self.rpm_url('first', 'alpha')],
                         [path for path, _ in self.server.requests()])

    def test_noMoreFilesAtOnceThanAllowed(self):
        self.config('[main]\nmax_parallel_downloads=1\n')
        self.repository('first', PACKAGES)
        packages = self.ready('alpha', 'beta', 'gamma')
        self.fetch(packages)
        running = most = 0
        for word in self.meters():
            running += (word == 'MeterStart') - (word == 'MeterEnd')
            most = max(most, running)
        self.assertEqual(1, most)

    def test_aSlowFileMovesItsMeter(self):
        self.repository('first', PACKAGES)
        package, = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), ['rate', 20000])
        self.fetch([package])
        amounts = [call[2] for call in yumIOC.named('applyGrabMeterUpdate')]
        self.assertGreater(len(amounts), 2)
        self.assertEqual(sorted(set(amounts)), amounts)
        self.assertLessEqual(amounts[-1], package.downloadsize)

    def test_updatesOfOneFileAreRare(self):
        from steward import meters
        now = [0.0]
        original = meters.time
        meters.time = type('Clock', (), {'monotonic': staticmethod(lambda: now[0])})
        self.addCleanup(setattr, meters, 'time', original)
        batch = meters.Apply.batch(1, 10**6)
        meter = batch.meter('x.rpm', 'first', 10**6)
        for step in range(1000):
            now[0] = 10 + step * 0.001
            meter.progress(step * 1000)
        meter.end(10**6)
        batch.close()
        updates = yumIOC.named('applyGrabMeterUpdate')
        self.assertLessEqual(len(updates), 21)
        self.assertGreaterEqual(len(updates), 19)
        self.check_closed()


class Metadata(Fetching):
    """The meters of metadata that an Apply has to load."""

    def test_theyAreThoseOfTheApplyAndReadingIsSilent(self):
        from steward import meters, system
        self.repository('first', PACKAGES)
        self.ready('alpha')
        apply = meters.Apply()
        made = system.System(apply)
        made.load(True)
        apply.read(1, 2, 'first')
        self.assertEqual([], [call for call in yumIOC.calls if call[0].startswith('collect')])
        self.assertEqual(['/first/first repomd.xml'],
                         [call[2] for call in yumIOC.named('applyGrabMeterStart')])
        self.assertEqual([call[1] for call in yumIOC.named('applyGrabMeterStart')],
                         [call[1] for call in yumIOC.named('applyGrabMeterEnd')])
        self.assertEqual([], yumIOC.named('applyGrabMultiMeterStart'))


if __name__ == '__main__':
    unittest.main()
