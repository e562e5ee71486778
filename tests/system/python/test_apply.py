# SPDX-License-Identifier: GPL-2.0-or-later
"""Marks become transactions: what the solver adds, what the review and the events say."""

import os
import sys
import unittest

from applying import ApplyTest, package_files
from fixture import Rpm, build, make_repository, nevras, yumIOC


class Changes(ApplyTest):
    """What is done, and how it is told."""

    def check(self, program, review, database):
        self.assertEqual(program.review, sorted(review))
        self.assertEqual(self.database(), sorted(database))
        self.assertEqual(program.reports, [])

    def test_anInstallBringsTheChainOfItsDependencies(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: beta']),
                                  Rpm('beta', tags=['Requires: gamma']), Rpm('gamma')])
        program.apply('install alpha')
        self.check(program, ['installed alpha-1.0-1.noarch [base]',
                             'depinstalled beta-1.0-1.noarch [base]',
                             'depinstalled gamma-1.0-1.noarch [base]'],
                   ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch', 'gamma-1.0-1.noarch'])
        self.assertTrue(os.path.exists(self.path('usr/share/gamma/readme')))
        self.assertEqual(sorted(program.solve), [
            'Marking beta-1.0-1.noarch as install for alpha-1.0-1.noarch',
            'Marking gamma-1.0-1.noarch as install for beta-1.0-1.noarch'])
        self.assertEqual(program.labels, ['Installing gamma', 'Installing beta',
                                          'Installing alpha'])

    def test_theReviewIsInTheOrderOfTheNames(self):
        self.repository('another', [Rpm('beta'), Rpm('delta')], text='gpgcheck=0\n')
        program = self.begin([], [Rpm('alpha'), Rpm('gamma')])
        program.apply('install gamma', 'install delta', 'install beta', 'install alpha')
        self.assertEqual(program.listed, ['installed alpha-1.0-1.noarch [base]',
                                          'installed beta-1.0-1.noarch [another]',
                                          'installed delta-1.0-1.noarch [another]',
                                          'installed gamma-1.0-1.noarch [base]'])

    def test_anUpdateTakesTheOldVersionAway(self):
        program = self.begin([Rpm('alpha')], [Rpm('alpha', '2.0')])
        program.apply('update alpha')
        self.check(program, ['updated alpha-2.0-1.noarch [base]'], ['alpha-2.0-1.noarch'])
        self.assertEqual(program.solve, [])
        self.assertEqual(program.labels, ['Updating alpha', 'Completing update for: alpha'])

    def test_anUpdateThatNeedsAnotherUpdateSaysSo(self):
        program = self.begin([Rpm('alpha'), Rpm('beta', epoch=1)],
                             [Rpm('alpha', '2.0', tags=['Requires: beta >= 1:2']),
                              Rpm('beta', '2.0', epoch=1)])
        program.apply('update alpha')
        self.check(program, ['updated alpha-2.0-1.noarch [base]',
                             'depupdated beta-1:2.0-1.noarch [base]'],
                   ['alpha-2.0-1.noarch', 'beta-1:2.0-1.noarch'])
        self.assertEqual(program.solve,
                         ['Marking 1:beta-2.0-1.noarch as update for alpha-2.0-1.noarch'])

    def test_anUpdateThatFollowsFromVersionsSaysSo(self):
        """The old data requires the old program; nothing new requires the new data."""
        program = self.begin([Rpm('alpha'), Rpm('alpha-data', tags=['Requires: alpha = 1.0'])],
                             [Rpm('alpha', '2.0'),
                              Rpm('alpha-data', '2.0', tags=['Requires: alpha = 2.0'])])
        program.apply('update alpha')
        self.check(program, ['updated alpha-2.0-1.noarch [base]',
                             'depupdated alpha-data-2.0-1.noarch [base]'],
                   ['alpha-2.0-1.noarch', 'alpha-data-2.0-1.noarch'])
        self.assertEqual(program.solve, ['Updating alpha-data-2.0-1.noarch to resolve dep.'])

    def test_aRemovalTakesItsDependentsAlong(self):
        program = self.begin([Rpm('alpha'), Rpm('beta', tags=['Requires: alpha']), Rpm('gamma')],
                             [Rpm('delta')])
        program.apply('remove alpha')
        self.check(program, ['removed alpha-1.0-1.noarch', 'depremoved beta-1.0-1.noarch'],
                   ['gamma-1.0-1.noarch'])
        self.assertFalse(os.path.exists(self.path('usr/share/alpha/readme')))
        self.assertEqual(program.solve, ['beta-1.0-1.noarch marked as erase'])
        self.assertEqual(program.labels, ['Removing beta', 'Removing alpha'])

    def removeWithLeftovers(self):
        """Alpha came with beta, gamma was asked for; then alpha goes."""
        program = self.begin([], [Rpm('alpha', tags=['Requires: beta', 'Requires: gamma']),
                                  Rpm('beta'), Rpm('gamma')])
        program.apply('install alpha', 'install gamma')
        program = self.open()
        program.apply('remove alpha')
        return program

    def test_aRemovalTakesAlongWhatNothingElseNeeds(self):
        self.check(self.removeWithLeftovers(),
                   ['removed alpha-1.0-1.noarch', 'depremoved beta-1.0-1.noarch'],
                   ['gamma-1.0-1.noarch'])

    def test_aRemovalLeavesWhatItNeededWhereTheConfigurationSaysSo(self):
        self.config('[main]\nclean_requirements_on_remove=0\n')
        self.check(self.removeWithLeftovers(), ['removed alpha-1.0-1.noarch'],
                   ['beta-1.0-1.noarch', 'gamma-1.0-1.noarch'])

    def test_allThreeInOneTransaction(self):
        program = self.begin([Rpm('alpha'), Rpm('beta')], [Rpm('alpha', '2.0'), Rpm('gamma')])
        program.apply('update alpha', 'remove beta', 'install gamma')
        self.check(program, ['updated alpha-2.0-1.noarch [base]', 'removed beta-1.0-1.noarch',
                             'installed gamma-1.0-1.noarch [base]'],
                   ['alpha-2.0-1.noarch', 'gamma-1.0-1.noarch'])
        names = [call[0] for call in yumIOC.calls]
        order = ['dsTsCheck', 'listTransaction', 'reportDownloadSize', 'userconfirm',
                 'applyGrabMultiMeterStart', 'applyGrabMultiMeterEnd', 'gpgsigcheck',
                 'tsInitCallback', 'tsInitCallback', 'postTransactionOutput']
        self.assertEqual([name for name in names if name in order], order)
        self.assertEqual(yumIOC.named('tsInitCallback'), [('tsInitCallback', 0),
                                                          ('tsInitCallback', 1)])

    def test_anInstallThatObsoletesSaysWhat(self):
        program = self.begin([Rpm('old')], [Rpm('new', '2.0', tags=['Obsoletes: old < 2'])])
        program.apply('install new')
        self.check(program, ['installed new-2.0-1.noarch [base]',
                             'obsoleted old-1.0-1.noarch with new-2.0-1.noarch'],
                   ['new-2.0-1.noarch'])
        self.assertEqual(program.labels, ['Installing new', 'Removing old'])

    def test_anObsoletedPackageThatHasAnUpdateIsTold(self):
        program = self.begin([Rpm('old')], [Rpm('old', '1.5'),
                                            Rpm('new', '2.0', tags=['Obsoletes: old < 2'])])
        if program.row('old').state != 'updatable':
            self.skipTest('the library offers no update of what is obsoleted')
        program.apply('install new')
        self.check(program, ['installed new-2.0-1.noarch [base]',
                             'obsoleted old-1.0-1.noarch with new-2.0-1.noarch'],
                   ['new-2.0-1.noarch'])
        self.assertEqual(program.solve,
                         ['Obsoleting old-1.0-1.noarch with new-2.0-1.noarch to resolve dep.'])

    def test_anUpdateThatObsoletesAnotherPackage(self):
        program = self.begin([Rpm('alpha'), Rpm('old')],
                             [Rpm('alpha', '2.0', tags=['Obsoletes: old'])])
        program.apply('update alpha')
        self.check(program, ['updated alpha-2.0-1.noarch [base]',
                             'obsoleted old-1.0-1.noarch with alpha-2.0-1.noarch'],
                   ['alpha-2.0-1.noarch'])

    def test_aConflictEndsInRefusalUnlessTheOtherIsRemoved(self):
        program = self.begin([Rpm('alpha')], [Rpm('beta', tags=['Conflicts: alpha'])])
        text = self.refused(program, 'install beta')
        self.assertIn('conflicts with alpha', text)
        self.assertEqual(yumIOC.named('userconfirm', 'listTransaction'), [])
        program.apply('install beta', 'remove alpha')
        self.check(program, ['installed beta-1.0-1.noarch [base]', 'removed alpha-1.0-1.noarch'],
                   ['beta-1.0-1.noarch'])

    def test_anEpochCountsMoreThanTheVersion(self):
        program = self.begin([Rpm('alpha', '9.0')], [Rpm('alpha', '1.0', epoch=2)])
        program.apply('update alpha')
        self.check(program, ['updated alpha-2:1.0-1.noarch [base]'], ['alpha-2:1.0-1.noarch'])

    def test_bothArchitecturesOfOneNameAreUpdated(self):
        program = self.begin(
            [Rpm('lib', arch='x86_64'), Rpm('lib', arch='i686', files=['/usr/share/lib32/x'])],
            [Rpm('lib', '2.0', arch='x86_64'),
             Rpm('lib', '2.0', arch='i686', files=['/usr/share/lib32/x'])])
        program.apply('update lib.x86_64', 'update lib.i686')
        self.check(program, ['updated lib-2.0-1.i686 [base]', 'updated lib-2.0-1.x86_64 [base]'],
                   ['lib-2.0-1.i686', 'lib-2.0-1.x86_64'])
        self.assertEqual(sorted(program.labels), ['Completing update for: lib'] * 2
                         + ['Updating lib'] * 2)

    def test_oneArchitectureIsInstalledBesideTheOther(self):
        program = self.begin(
            [Rpm('lib', arch='x86_64')],
            [Rpm('lib', arch='i686', files=['/usr/share/lib32/x'])])
        program.apply('install lib.i686')
        self.check(program, ['installed lib-1.0-1.i686 [base]'],
                   ['lib-1.0-1.i686', 'lib-1.0-1.x86_64'])

    def test_anUpdateToAnotherFamilyTellsBothHalves(self):
        program = self.begin([Rpm('alpha')], [Rpm('alpha', '2.0', arch='x86_64')])
        program.apply('install alpha.x86_64')
        self.check(program, ['installed alpha-2.0-1.x86_64 [base]', 'removed alpha-1.0-1.noarch'],
                   ['alpha-2.0-1.x86_64'])

    def test_aDowngradeToAnotherFamilyTellsBothHalves(self):
        program = self.begin([Rpm('alpha', '2.0')], [Rpm('alpha', arch='x86_64')])
        program.apply('install alpha.x86_64')
        self.check(program, ['installed alpha-1.0-1.x86_64 [base]', 'removed alpha-2.0-1.noarch'],
                   ['alpha-1.0-1.x86_64'])

    def test_aDowngradeForADependencyTellsBothHalves(self):
        need = Rpm('beta', tags=['Requires: alpha = 1.0'])
        program = self.begin([Rpm('alpha', '2.0')], [Rpm('alpha'), need])
        program.apply('install beta')
        self.check(program, ['installed beta-1.0-1.noarch [base]',
                             'depinstalled alpha-1.0-1.noarch [base]',
                             'depremoved alpha-2.0-1.noarch'],
                   ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])
        # Its row is up to date, so the program wants to hear of no addition there.
        self.assertEqual(program.solve, ['alpha-2.0-1.noarch marked as erase'])

    def test_duplicatesOfOnePackageAreAllUpdated(self):
        self.rpm_command('-i', '--justdb', build(Rpm('alpha')))
        self.rpm_command('-i', '--justdb', '--force', build(Rpm('alpha', '1.5')))
        program = self.begin([], [Rpm('alpha', '2.0')])
        self.assertEqual(len(program.row('alpha').behind), 2)
        program.apply('update alpha')
        self.check(program, ['updated alpha-2.0-1.noarch [base]'], ['alpha-2.0-1.noarch'])

    def test_removingARowRemovesAllItsVersions(self):
        self.rpm_command('-i', '--justdb', build(Rpm('alpha')))
        self.rpm_command('-i', '--justdb', '--force', build(Rpm('alpha', '1.5')))
        program = self.begin([], [Rpm('beta')])
        program.apply('remove alpha')
        self.check(program, ['removed alpha-1.0-1.noarch', 'removed alpha-1.5-1.noarch'], [])

    def test_aFileDependencyThatNeedsTheFileListsHasThemLoaded(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: /usr/share/beta/data']),
                                  Rpm('beta', files=['/usr/share/beta/data'])])
        self.server.forget()
        program.apply('install alpha')
        self.check(program, ['installed alpha-1.0-1.noarch [base]',
                             'depinstalled beta-1.0-1.noarch [base]'],
                   ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])
        names = [call[0] for call in yumIOC.named('dsTsCheck', 'dsRestartLoop')]
        self.assertEqual(names, ['dsTsCheck', 'dsRestartLoop', 'dsTsCheck'])
        # Of the metadata nothing but the file lists was asked for.
        self.assertEqual([name for name in self.server.names() if not name.endswith('.rpm')],
                         ['filelists.xml.gz'])
        meters = [call[2] for call in yumIOC.named('applyGrabMeterStart')]
        self.assertTrue(any('filelists' in name for name in meters), meters)

    def test_aRemovalTakesNothingAlongForLackOfFileLists(self):
        """The new version of beta still has the file, but only the file lists say so."""
        data = ['/usr/share/beta/data']
        program = self.begin([Rpm('alpha', tags=['Requires: /usr/share/beta/data']),
                              Rpm('beta', files=data), Rpm('gamma')],
                             [Rpm('beta', '2.0', files=data)])
        program.apply('update beta', 'remove gamma')
        self.check(program, ['updated beta-2.0-1.noarch [base]', 'removed gamma-1.0-1.noarch'],
                   ['alpha-1.0-1.noarch', 'beta-2.0-1.noarch'])

    def test_fileListsThatAreGoneBringTheNewerMetadata(self):
        alpha = Rpm('alpha', tags=['Requires: /usr/share/beta/data'])
        program = self.begin([], [alpha, Rpm('beta', files=['/usr/share/beta/data'])])
        self.repository('base', [alpha, Rpm('beta', '2.0', files=['/usr/share/beta/data'])],
                        text='gpgcheck=0\n')
        program.apply('install alpha')
        self.check(program, ['installed alpha-1.0-1.noarch [base]',
                             'depinstalled beta-2.0-1.noarch [base]'],
                   ['alpha-1.0-1.noarch', 'beta-2.0-1.noarch'])

    def test_aRecommendedPackageComesAlong(self):
        program = self.begin([], [Rpm('alpha', tags=['Recommends: beta']), Rpm('beta')])
        program.apply('install alpha')
        self.check(program, ['installed alpha-1.0-1.noarch [base]',
                             'depinstalled beta-1.0-1.noarch [base]'],
                   ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])
        self.assertEqual(program.solve,
                         ['Marking beta-1.0-1.noarch as install for alpha-1.0-1.noarch'])

    def test_otherDependenciesOnFilesNeedNoFileLists(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: /usr/bin/beta']),
                                  Rpm('beta', files=['/usr/bin/beta'])])
        self.server.forget()
        program.apply('install alpha')
        self.assertEqual(sorted(self.server.names()),
                         ['alpha-1.0-1.noarch.rpm', 'beta-1.0-1.noarch.rpm'])
        self.assertEqual(yumIOC.named('dsRestartLoop'), [])

    def test_aPackageOfTwoRepositoriesComesFromTheMarkedOne(self):
        self.repository('other', [Rpm('alpha', summary='Another build')],
                        text='gpgcheck=0\npriority=10\n')
        program = self.begin([], [Rpm('alpha')])
        program.apply('install alpha')
        self.assertEqual(program.review, ['installed alpha-1.0-1.noarch [other]'])

    def test_anExcludedPackageIsNotBroughtIn(self):
        self.config('[main]\nexcludepkgs=beta\n')
        program = self.begin([], [Rpm('alpha', tags=['Requires: beta']), Rpm('beta')])
        text = self.refused(program, 'install alpha')
        self.assertIn('beta', text)

    def test_anExcludedInstalledPackageCanBeRemoved(self):
        self.config('[main]\nexcludepkgs=alpha\n')
        program = self.begin([Rpm('alpha')], [Rpm('beta')])
        program.apply('remove alpha')
        self.check(program, ['removed alpha-1.0-1.noarch'], [])

    def test_theChoiceOfRepositoriesIsThatOfTheCollection(self):
        self.repository('extra', [Rpm('beta')], text='gpgcheck=0\nenabled=0\n')
        self.repository('base', [Rpm('gamma')], text='gpgcheck=0\n')
        made = self.make()
        made.repos.enableRepo('extra')
        made.repos.disableRepo('base')
        program = self.open(made)
        program.apply('install beta')
        self.check(program, ['installed beta-1.0-1.noarch [extra]'], ['beta-1.0-1.noarch'])


class InstallOnly(ApplyTest):
    """Packages of which several versions are kept side by side."""

    def kernel(self, version):
        return Rpm('kernel', version, files=['/usr/share/kernel-%s/x' % version])

    def test_anUpdateIsInstalledBesideTheOldVersion(self):
        program = self.begin([self.kernel('1')], [self.kernel('2')])
        program.apply('update kernel')
        self.assertEqual(program.review, ['installed kernel-2-1.noarch [base]'])
        self.assertEqual(self.database(), ['kernel-1-1.noarch', 'kernel-2-1.noarch'])
        self.assertEqual(program.labels, ['Installing kernel'])
        self.assertEqual(program.reports, [])

    def test_theOldestGoesBeyondTheLimit(self):
        self.config('[main]\ninstallonly_limit=2\n')
        program = self.begin([self.kernel('1'), self.kernel('2')], [self.kernel('3')])
        program.apply('update kernel')
        self.assertEqual(program.review, ['depremoved kernel-1-1.noarch',
                                          'installed kernel-3-1.noarch [base]'])
        self.assertEqual(self.database(), ['kernel-2-1.noarch', 'kernel-3-1.noarch'])
        self.assertEqual(program.labels, ['Installing kernel', 'Completing update for: kernel'])
        self.assertEqual(program.reports, [])

    def test_beyondTheLimitThroughADependencyIsTold(self):
        self.config('[main]\ninstallonly_limit=2\n')
        program = self.begin([self.kernel('1'), self.kernel('2')],
                             [self.kernel('3'), Rpm('driver', tags=['Requires: kernel >= 3'])])
        program.apply('install driver')
        self.assertEqual(program.review, ['depinstalled kernel-3-1.noarch [base]',
                                          'depremoved kernel-1-1.noarch',
                                          'installed driver-1.0-1.noarch [base]'])
        self.assertEqual(self.database(), ['driver-1.0-1.noarch', 'kernel-2-1.noarch',
                                           'kernel-3-1.noarch'])
        self.assertEqual(program.reports, [])

    def test_anOlderVersionForADependencyIsInstalledBeside(self):
        program = self.begin([self.kernel('3')],
                             [self.kernel('1'), Rpm('driver', tags=['Requires: kernel = 1'])])
        program.apply('install driver')
        self.assertEqual(program.review, ['depinstalled kernel-1-1.noarch [base]',
                                          'installed driver-1.0-1.noarch [base]'])
        self.assertEqual(self.database(), ['driver-1.0-1.noarch', 'kernel-1-1.noarch',
                                           'kernel-3-1.noarch'])
        self.assertEqual(program.reports, [])

    def test_oneOfTwoVersionsIsRemovedWithTheRest(self):
        program = self.begin([self.kernel('1'), self.kernel('2')], [self.kernel('3')])
        program.apply('remove kernel')
        self.assertEqual(program.review, ['removed kernel-1-1.noarch', 'removed kernel-2-1.noarch'])
        self.assertEqual(self.database(), [])
        self.assertEqual(program.reports, [])


class Events(ApplyTest):
    """The shape of what comes while rpm runs."""

    def test_aPackagesEventsRunFromZeroToItsTotal(self):
        program = self.begin([Rpm('old')], [Rpm('alpha', files=['/usr/share/a/%d' % number
                                                               for number in range(9)])])
        program.apply('install alpha', 'remove old')
        for name, code in (('alpha', 20), ('old', 40)):
            events = [event for event in program.raw if event[0] == name]
            self.assertEqual({event[1] for event in events}, {code})
            self.assertEqual(events[0][2], 0)
            self.assertEqual(events[-1][2], events[-1][3])
            self.assertEqual([event[2] for event in events],
                             sorted(event[2] for event in events))
        elements = [event[4] for event in program.raw]
        self.assertEqual(sorted(set(elements)), [1, 2])
        self.assertEqual(elements, sorted(elements))
        self.assertEqual({event[5] for event in program.raw}, {2})

    def test_nothingIsImportedWhileRpmRuns(self):
        script = [('%post', 'echo done'), ('%preun', 'exit 0')]
        program = self.begin([Rpm('gone', scripts=script)],
                             [Rpm('alpha', scripts=script),
                              Rpm('bad', scripts=[('%pre', 'echo \\303\\251; exit 1')])],
                             shell=True)
        loaded = []
        yumIOC.hooks['tsInitCallback'] = lambda run: loaded.append(set(sys.modules)) if run else None
        with self.assertRaises(self.names['yum'].Errors.YumBaseError):
            program.apply('install alpha', 'install bad', 'remove gone')
        self.assertEqual(len(loaded), 1)
        self.assertEqual(sorted(set(sys.modules) - loaded[0]), [])

    def test_theDatabaseIsNotOpenedElsewhereWhileRpmRuns(self):
        program = self.begin([Rpm('old')], [Rpm('alpha')])
        old = program.row('old').package
        seen = []
        program.during = lambda: seen.append((old.returnFileEntries('file'), old.name))
        program.apply('install alpha')
        self.assertEqual(seen[0], ([], 'old'))
        self.assertFalse(os.path.exists(self.root + self.root))
        self.assertEqual(old.returnFileEntries('file'), ['/usr/share/old/readme'])

    def test_theOutputOfScriptletsComesLineByLine(self):
        program = self.begin([], [Rpm('alpha', scripts=[
            ('%post', 'echo to standard output\necho to standard error >&2\n'
                      "printf 'broken \\377 text\\n'")])], shell=True)
        program.apply('install alpha')
        lines = [call[1] for call in yumIOC.named('stdoutWrite')]
        self.assertIn('to standard output\n', lines)
        self.assertIn('to standard error\n', lines)
        self.assertIn('broken \ufffd text\n', lines)
        # Once, not a second time as a line of the library's log.
        self.assertNotIn('to standard output', self.log())


class Around(ApplyTest):
    """What an Apply leaves behind: caches, history, and the collection it was made from."""

    def test_downloadedPackagesGoAfterSuccess(self):
        program = self.begin([], [Rpm('alpha')])
        program.apply('install alpha')
        self.assertEqual(package_files(self), [])

    def test_keepcacheKeepsThem(self):
        self.config('[main]\nkeepcache=1\n')
        program = self.begin([], [Rpm('alpha')])
        program.apply('install alpha')
        self.assertEqual(package_files(self), ['alpha-1.0-1.noarch.rpm'])

    def test_packagesOfALocalRepositoryStay(self):
        directory = os.path.join(self.top, 'local')
        make_repository(directory, [Rpm('alpha')])
        with open(self.path('etc/yum.repos.d/local.repo'), 'w') as stream:
            stream.write('[local]\nname=Local\nbaseurl=file://%s\ngpgcheck=0\n' % directory)
        program = self.open()
        program.apply('install alpha')
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])
        self.assertTrue(os.path.exists(os.path.join(directory, 'alpha-1.0-1.noarch.rpm')))
        # Nothing of it has to be downloaded.
        self.assertEqual(yumIOC.named('reportDownloadSize')[0][1], [])

    def test_theNextCollectionAsksNoServer(self):
        program = self.begin([], [Rpm('alpha')])
        program.apply('install alpha')
        self.server.forget()
        self.again(self.made)
        self.assertEqual(self.server.requests(), [])

    def test_aRefreshAfterACanceledApplyAsksTheServer(self):
        program = self.begin([], [Rpm('alpha')])
        yumIOC.answer = 0
        program.apply('install alpha')
        self.server.forget()
        self.again(self.made)
        self.assertIn('repomd.xml', self.server.names())

    def test_metadataThatWentOldMeanwhileIsUsedAsItIs(self):
        program = self.begin([], [Rpm('alpha')], text='gpgcheck=0\nmetadata_expire=1\n')
        directory = self.path('var/cache/yum')
        for top, _, names in os.walk(directory):
            for name in names:
                os.utime(os.path.join(top, name), (1000000000, 1000000000))
        self.server.forget()
        program.apply('install alpha')
        self.assertEqual(self.server.names(), ['alpha-1.0-1.noarch.rpm'])

    def test_metadataThatIsGoneMeanwhileIsFetchedAgain(self):
        program = self.begin([], [Rpm('alpha')])
        self.made.cleanMetadata()
        program.apply('install alpha')
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])

    def test_theHistoryIsWrittenUnderTheRoot(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: beta']), Rpm('beta')])
        program.apply('install alpha')
        import dnf
        conf = dnf.conf.Conf()
        conf.installroot = self.root
        conf.persistdir = self.path('var/lib/dnf')
        self.assertTrue(os.path.exists(self.path('var/lib/dnf/history.sqlite')))
        with dnf.Base(conf) as base:
            last = base.history.last()
            self.assertEqual(sorted(str(item) for item in last.packages()),
                             ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])
            self.assertEqual(last.return_code, 0)
            reasons = {str(item): item.reason for item in last.packages()}
            from libdnf import transaction
            self.assertEqual(reasons, {
                'alpha-1.0-1.noarch': transaction.TransactionItemReason_USER,
                'beta-1.0-1.noarch': transaction.TransactionItemReason_DEPENDENCY})

    def test_whatTheProgramShowsStaysReadableAfterAnApply(self):
        program = self.begin([Rpm('alpha', changelog='* Mon Jan 06 2020 A B <a@b> - 1\n- Old')],
                             [Rpm('alpha', '2.0', changelog='* Tue Jan 07 2020 A B <a@b> - 2\n- New'),
                              Rpm('beta')])
        old, new = program.row('alpha').behind[0], program.row('alpha').package
        beta = program.row('beta').package
        for answer in (0, 1):
            yumIOC.answer = answer
            program.apply('install beta')
            self.assertEqual(nevras(program.row('alpha').behind), ['alpha-1.0-1.noarch'])
            self.assertEqual(old.returnFileEntries('file'), ['/usr/share/alpha/readme'])
            self.assertIn('Old', old.returnChangelog()[0][2])
            self.assertTrue(new.localPkg().endswith('alpha-2.0-1.noarch.rpm'))
            self.made.collectFileLists()
            self.made.collectOtherData()
            self.assertEqual(beta.returnFileEntries('file'), ['/usr/share/beta/readme'])
            self.assertIn('New', new.returnChangelog()[0][2])
            self.assertEqual(new.returnSimple('repoid'), 'base')

    def test_threeAppliesWithANewCollectionBeforeEach(self):
        program = self.begin([], [Rpm(name) for name in ('alpha', 'beta', 'gamma')])
        for name in ('alpha', 'beta', 'gamma'):
            program.apply('install ' + name)
            self.made.flush()
            program = self.open()
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch',
                                           'gamma-1.0-1.noarch'])

    def test_threeAppliesOfOneCollection(self):
        program = self.begin([Rpm('delta')], [Rpm(name) for name in ('alpha', 'beta')])
        program.apply('install alpha')
        program.apply('install beta')
        program.apply('remove delta')
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])
        self.assertEqual(program.reports, [])

    def test_noFileStaysOpenAfterAnApply(self):
        program = self.begin([], [Rpm(name) for name in ('alpha', 'beta', 'gamma')])
        program.apply('install alpha')
        yumIOC.clear()
        before = len(os.listdir('/proc/self/fd'))
        program.apply('install beta')
        program.apply('install gamma')
        yumIOC.clear()
        self.assertLessEqual(len(os.listdir('/proc/self/fd')), before)

    def test_pluginsServeTheApplyAndTheNextCollection(self):
        self.plugin('probe', 'open(%r, "a").write("x")' % self.path('ran'))
        program = self.begin([], [Rpm('alpha'), Rpm('beta')])
        program.apply('install alpha')
        program.apply('install beta')
        with open(self.path('ran')) as stream:
            self.assertEqual(stream.read(), 'xx')
        self.made.flush()
        self.assertEqual(len(self.open().made.lists.installed), 2)


if __name__ == '__main__':
    unittest.main()
