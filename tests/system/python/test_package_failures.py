# SPDX-License-Identifier: GPL-2.0-or-later
"""What becomes of packages' files when servers, disks and signals are in the way, and what is told
of it."""

import os
import shutil
import signal
import subprocess
import time
import unittest

from fetching import PACKAGES, Fetching
from fixture import Rpm, yumIOC


class Failing(Fetching):

    def setUp(self):
        super().setUp()
        self.repository('first', PACKAGES, text='timeout=1\n')

    def test_eachFailedFileIsNamedAndTheOthersStay(self):
        packages = self.ready('alpha', 'beta', 'gamma')
        self.server.behave(self.rpm_url('first', 'alpha'), 404)
        self.server.behave(self.rpm_url('first', 'beta'), 403)
        text = self.refused(packages)
        self.assertIn('2 of 3 packages', text)
        self.assertRegex(text, r'alpha-.* \(repository first\): .*/first/alpha-.*: '
                               r'not found on the server \(status 404\)')
        self.assertRegex(text, r'beta-.*refuses access \(status 403\)')
        self.assertNotIn('gamma', text)
        self.good(packages[2])
        self.assertFalse(os.path.exists(packages[0].localPkg()))
        self.server.behave(self.rpm_url('first', 'alpha'), None)
        self.server.behave(self.rpm_url('first', 'beta'), None)
        self.server.forget()
        self.fetch(packages)
        self.assertEqual(sorted([Rpm('alpha').filename, Rpm('beta').filename]),
                         sorted(self.server.names()))

    def test_aFailureIsToldToTheMeter(self):
        packages = self.ready('alpha', 'beta')
        self.server.behave(self.rpm_url('first', 'alpha'), 404)
        self.refused(packages)
        self.assertEqual(['MultiMeterNew', 'MeterStart', 'MeterFailure', 'MultiMeterRemove'],
                         [word for word in self.meters('alpha') if word != 'MeterUpdate'])
        self.assertEqual('MeterEnd', self.meters('beta')[-2])

    def test_aRefusedConnection(self):
        packages = self.ready('alpha')
        self.server.close()
        self.assertRegex(self.refused(packages), 'alpha-.*the server cannot be reached')

    def test_aTruncatedFileIsRefused(self):
        packages = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), 'truncate')
        self.assertRegex(self.refused(packages), 'alpha-.*the file came truncated')
        self.assertFalse(os.path.exists(packages[0].localPkg()))
        self.assertEqual([], self.leftovers())

    def test_aTruncatedFileIsTriedAgain(self):
        packages = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), ['first', 'truncate'])
        self.fetch(packages)
        self.good(packages[0])
        words = [word for word in self.meters('alpha') if word != 'MeterUpdate']
        self.assertEqual(['MultiMeterNew', 'MeterStart', 'MeterFailure', 'MeterStart', 'MeterEnd',
                          'MultiMeterRemove'], words)
        self.check_closed()

    def test_retriesAreLimitedByTheConfiguration(self):
        packages = self.ready('alpha')
        self.made.system.conf.retries = 1
        self.server.behave(self.rpm_url('first', 'alpha'), 500)
        self.assertRegex(self.refused(packages), 'status 500')
        self.assertEqual(2, len(self.server.names()))

    def test_aWrongFileIsRefusedAndNotLoadedAgain(self):
        packages = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), 'corrupt')
        self.assertRegex(self.refused(packages), 'alpha-.*wrong checksum')
        self.assertFalse(os.path.exists(packages[0].localPkg()))
        self.assertEqual(1, len(self.server.names()))

    def test_aFileOfAnotherSizeIsRefused(self):
        packages = self.ready('alpha')
        with open(os.path.join(self.served, 'first', Rpm('alpha').filename), 'ab') as stream:
            stream.write(b'more')
        self.assertRegex(self.refused(packages), 'alpha-.*wrong size')

    def test_aSilentServerIsWaitedForOnce(self):
        names = ['p%02d' % number for number in range(12)]
        self.repository('many', [Rpm(name) for name in names], text='timeout=1\n')
        packages = self.ready(*names)
        for name in names:
            self.server.behave(self.rpm_url('many', name), 'hang')
        begin = time.monotonic()
        text = self.refused(packages)
        self.assertLess(time.monotonic() - begin, 5)
        for name in names:
            self.assertIn(name, text)
        self.assertIn('did not answer in time', text)

    def test_aSilentServerOfAQueryIsWaitedForOnce(self):
        names = ['p%02d' % number for number in range(12)]
        query = '/vantry?a=b&c=d&path='
        self.repository('many', [Rpm(name) for name in names], baseurl=False,
                        text='timeout=1\nbaseurl={0}silent {0}many\n'.format(
                            self.server.url + query))
        shutil.copytree(os.path.join(self.served, 'many', 'repodata'),
                        os.path.join(self.served, 'silent', 'repodata'))
        packages = self.ready(*names)
        for name in names:
            self.server.behave(query + 'silent/' + Rpm(name).filename, 'hang')
        begin = time.monotonic()
        self.fetch(packages)
        self.assertLess(time.monotonic() - begin, 5)
        self.check_closed()

    def test_aStalledFileTimesOut(self):
        packages = self.ready('alpha', 'beta')
        self.server.behave(self.rpm_url('first', 'alpha'), 'stall')
        begin = time.monotonic()
        text = self.refused(packages)
        # The downloader judges the speed over five seconds. A second try would take as many.
        self.assertLess(time.monotonic() - begin, 9)
        self.assertRegex(text, 'alpha-.*did not answer in time')
        self.good(packages[1])

    def test_oneSilentFileDoesNotCondemnItsServer(self):
        names = ['p%02d' % number for number in range(12)]
        self.repository('many', [Rpm(name) for name in names],
                        text='timeout=1\nmax_parallel_downloads=2\n')
        packages = self.ready(*names)
        self.server.behave(self.rpm_url('many', 'p00'), 'hang')
        for name in names[1:]:
            self.server.behave(self.rpm_url('many', name), ['slow', 0.2])
        text = self.refused(packages)
        self.assertIn('1 of 12', text)

    def test_credentialsAreMasked(self):
        self.repository('query', [Rpm('delta')], baseurl=False, text='baseurl=%s\n' % (
            self.server.url + '/vantry?user=me&password=secret&path=query'))
        self.repository('inline', [Rpm('epsilon')], baseurl=False, text='baseurl=%s\n' % (
            self.server.url.replace('://', '://me:secret@') + '/inline'))
        packages = self.ready('delta', 'epsilon')
        for package in packages:
            os.unlink(os.path.join(self.served, package.reponame, Rpm(package.name).filename))
        text = self.refused(packages)
        self.assertIn('delta', text)
        self.assertIn('epsilon', text)
        self.assertNotIn('secret', text)
        self.assertNotIn('secret', repr(yumIOC.calls))

    def test_cacheOnlyDownloadsNothing(self):
        packages = self.ready('alpha')
        self.made.system.conf.cacheonly = True
        self.assertIn('alpha', self.refused(packages))
        self.assertEqual([], self.server.names())

    def test_aCacheLockedByAnotherProcessIsRefusedWithItsName(self):
        packages = self.ready('alpha')
        other = subprocess.Popen(['cat'], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        # Its answer shows that it runs under its own name.
        other.stdin.write(b'here\n')
        other.stdin.flush()
        self.assertEqual(b'here\n', other.stdout.readline())
        self.addCleanup(other.stdout.close)
        self.addCleanup(other.wait)
        self.addCleanup(other.stdin.close)
        with open(os.path.join(self.made.system.conf.cachedir, 'download_lock.pid'),
                  'w') as stream:
            stream.write(str(other.pid))
        text = self.refused(packages)
        self.assertIn('cat (pid %d)' % other.pid, text)
        self.assertEqual([], self.server.names())

    def test_theLockIsGivenUpAgain(self):
        packages = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), 404)
        self.refused(packages)
        self.assertFalse(os.path.exists(
            os.path.join(self.made.system.conf.cachedir, 'download_lock.pid')))

    def test_aPlaceThatCannotBeMadeIsNamed(self):
        packages = self.ready('alpha')
        place = os.path.dirname(packages[0].localPkg())
        with open(place, 'w'):
            pass
        self.assertIn(place, self.refused(packages))

    def test_anErrorOfTheProgramEndsTheBatchAndIsPassedOn(self):
        packages = self.ready('alpha', 'beta')
        original = yumIOC.applyGrabMeterStart

        def failing(*args):
            raise ZeroDivisionError('from the program')
        yumIOC.applyGrabMeterStart = failing
        self.addCleanup(setattr, yumIOC, 'applyGrabMeterStart', original)
        with self.assertRaisesRegex(ZeroDivisionError, 'from the program'):
            self.fetch(packages)
        self.assertEqual('applyGrabMultiMeterEnd', yumIOC.calls[-1][0])


class Mirrors(Fetching):

    def several(self, *urls):
        self.repository('first', PACKAGES, baseurl=False,
                        text='timeout=1\nbaseurl=%s\n' % ' '.join(urls))
        shutil.copytree(os.path.join(self.served, 'first'), os.path.join(self.served, 'second'))

    def test_aDeadMirrorIsPassedBy(self):
        self.several('http://127.0.0.1:1/x', self.server.url + '/first')
        packages = self.ready('alpha', 'beta')
        self.fetch(packages)
        for package in packages:
            self.good(package)
        self.check_closed()
        self.assertIn('MeterFailure', self.meters())

    def test_aWrongChecksumTriesTheNextMirror(self):
        self.several(self.server.url + '/first', self.server.url + '/second')
        packages = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), 'corrupt')
        self.fetch(packages)
        self.good(packages[0])
        self.assertEqual(['first', 'second'],
                         [path.split('/')[1] for path, _ in self.server.requests()])
        words = [word for word in self.meters('alpha') if word != 'MeterUpdate']
        self.assertEqual(['MultiMeterNew', 'MeterStart', 'MeterFailure', 'MeterStart', 'MeterEnd',
                          'MultiMeterRemove'], words)

    def test_eachMirrorsReasonIsTold(self):
        self.several(self.server.url + '/first', self.server.url + '/second')
        packages = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), 'corrupt')
        self.server.behave(self.rpm_url('second', 'alpha'), 404)
        text = self.refused(packages)
        self.assertRegex(text, r'(?s)  - .*/first/alpha.*wrong checksum')
        self.assertRegex(text, r'(?s)  - .*/second/alpha.*not found')

    def test_aMirrorListIsFollowed(self):
        self.several()
        with open(os.path.join(self.served, 'list'), 'w') as stream:
            stream.write('http://127.0.0.1:1/x\n%s/second\n' % self.server.url)
        with open(self.path('etc', 'yum.repos.d', 'first.repo'), 'w') as stream:
            stream.write('[first]\nname=first\ntimeout=1\nmirrorlist=%s/list\n' % self.server.url)
        packages = self.ready('alpha')
        self.fetch(packages)
        self.good(packages[0])
        self.assertEqual(['list', Rpm('alpha').filename], self.server.names())

    def test_aLostMirrorListIsNamed(self):
        self.test_aMirrorListIsFollowed()
        yumIOC.clear()
        os.unlink(os.path.join(self.served, 'list'))
        packages = [package for package in self.made.lists.available if package.name == 'beta']
        text = self.refused(packages)
        self.assertRegex(text, 'beta.*Failed to download the list of mirrors.*404')
        self.assertIn('MultiMeterEnd', self.meters())

    def test_serversThatEndInAQueryAreTriedInTurn(self):
        self.several(self.server.url + '/vantry?a=b&c=d&path=nowhere',
                     self.server.url + '/vantry?a=b&c=d&path=second')
        shutil.copytree(os.path.join(self.served, 'second', 'repodata'),
                        os.path.join(self.served, 'nowhere', 'repodata'))
        packages = self.ready('alpha', 'beta')
        self.fetch(packages)
        for package in packages:
            self.good(package)
        self.check_closed()

    def test_notAllMirrorsOfALongListAreWaitedFor(self):
        names = ['p%02d' % number for number in range(16)]
        mirrors = ['mirror%d' % number for number in range(6)]
        self.repository('many', [Rpm(name) for name in names], baseurl=False,
                        text='timeout=2\nmax_parallel_downloads=2\nbaseurl=%s\n'
                        % ' '.join('%s/%s' % (self.server.url, mirror) for mirror in mirrors))
        for mirror in mirrors:
            os.symlink('many', os.path.join(self.served, mirror))
        packages = self.ready(*names)
        for mirror in mirrors:
            self.server.behave(self.rpm_url(mirror, 'p00'), 'hang')
            # Meanwhile other files come, so that no server is taken for a silent one.
            for name in names[1:]:
                self.server.behave(self.rpm_url(mirror, name), ['slow', 0.7])
        self.assertRegex(self.refused(packages), '1 of 16(?s:.*)p00-(?s:.*)did not answer in time')
        self.assertEqual(4, self.server.names().count(Rpm('p00').filename))

    def test_silentMirrorsAreGivenUp(self):
        self.several(self.server.url + '/first', self.server.url + '/second')
        packages = self.ready('alpha', 'beta', 'gamma')
        for package in packages:
            self.server.behave(self.rpm_url('first', package.name), 'hang')
        begin = time.monotonic()
        self.fetch(packages)
        self.assertLess(time.monotonic() - begin, 4)


class Interrupted(Fetching):

    def setUp(self):
        super().setUp()
        self.repository('first', PACKAGES)

    def test_aSignalBreaksTheDownloadOffAndTheNextOneWorks(self):
        packages = self.ready('alpha', 'beta')
        self.server.behave(self.rpm_url('first', 'beta'), ['rate', 20000])
        original = yumIOC.applyGrabMeterEnd

        def ended(*args):
            original(*args)
            os.kill(os.getpid(), signal.SIGINT)
        yumIOC.applyGrabMeterEnd = ended
        with self.assertRaises(KeyboardInterrupt):
            self.fetch(packages)
        yumIOC.applyGrabMeterEnd = original
        self.check_closed()
        self.assertEqual([], self.leftovers())
        self.good(packages[0])
        self.assertFalse(os.path.exists(packages[1].localPkg()))
        self.fetch(packages)
        self.good(packages[1])

    def test_aKilledDownloadLeavesNothingThatCounts(self):
        package, = self.ready('alpha')
        directory = os.path.dirname(package.localPkg())
        stale = os.path.join(directory, '.vok-fetch-stale')
        os.makedirs(stale)
        with open(os.path.join(stale, Rpm('alpha').filename), 'wb') as stream:
            stream.write(b'half')
        self.fetch([package])
        self.good(package)
        self.assertEqual([], self.leftovers())

    def test_aFileHasItsNameOnlyWhenItIsWhole(self):
        package, = self.ready('alpha')
        self.server.behave(self.rpm_url('first', 'alpha'), ['rate', 20000])
        seen = []
        original = yumIOC.applyGrabMeterUpdate

        def update(*args):
            seen.append(os.path.exists(package.localPkg()))
            original(*args)
        yumIOC.applyGrabMeterUpdate = update
        self.addCleanup(setattr, yumIOC, 'applyGrabMeterUpdate', original)
        self.fetch([package])
        self.assertTrue(seen)
        self.assertNotIn(True, seen)


class Full(Fetching):

    def test_aFullDiskIsToldInPlainWords(self):
        self.repository('first', PACKAGES)
        packages = self.ready('alpha', 'beta', 'gamma')
        place = os.path.dirname(packages[0].localPkg())
        os.makedirs(place, exist_ok=True)
        # Room for one package and a half.
        size = packages[0].downloadsize
        pages = (size + 4095) // 4096 + 1
        mounted = subprocess.run(['mount', '-t', 'tmpfs', '-o', 'size=%d' % (pages * 4096),
                                  'tmpfs', place], stderr=subprocess.PIPE,
                                 universal_newlines=True)
        if mounted.returncode:
            self.skipTest('nothing may be mounted here: %s' % mounted.stderr.strip())
        self.addCleanup(subprocess.run, ['umount', '-l', place], check=True)
        text = self.refused(packages)
        self.assertIn('No space left on device in the directory ' + place, text)
        subprocess.run(['mount', '-o', 'remount,size=1m', place], check=True)
        self.fetch(packages)
        for package in packages:
            self.good(package)


if __name__ == '__main__':
    unittest.main()
