# SPDX-License-Identifier: GPL-2.0-or-later
"""How packages' files come into their places, what of the servers' failures is told, and what the
program's progress hears meanwhile."""

import base64
import os
import shutil
import signal
import subprocess
import time
import unittest

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
                        text='timeout=1\nmax_parallel_downloads=2\nbaseurl=%s\n'
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
