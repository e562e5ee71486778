# SPDX-License-Identifier: GPL-2.0-or-later
"""What goes wrong with an Apply: before anything is done, in the middle, and what is left then."""

import os
import subprocess
import sys
import unittest

from applying import ApplyTest, package_files
from fixture import Rpm, build, yumIOC


class Refused(ApplyTest):
    """Nothing is reviewed, nothing is done."""

    def check(self, program, database):
        self.assertEqual(yumIOC.named('listTransaction', 'userconfirm', 'tsInitCallback'), [])
        self.assertEqual(self.database(), database)
        self.assertEqual(program.reports, [])

    def test_whatCannotBeSolvedIsToldInFull(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: nowhere >= 3'])])
        text = self.refused(program, 'install alpha')
        self.assertTrue(text.startswith('The marked changes cannot be made:\nProblem: '), text)
        self.assertIn('nothing provides nowhere >= 3 needed by alpha-1.0-1.noarch', text)
        self.check(program, [])

    def test_severalProblemsAreAllTold(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: nowhere']),
                                  Rpm('beta', tags=['Requires: never'])])
        text = self.refused(program, 'install alpha', 'install beta')
        self.assertIn('nowhere', text)
        self.assertIn('never', text)
        self.check(program, [])

    def test_aMissingFileIsToldAfterTheFileListsWereSearched(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: /usr/share/nowhere/data'])])
        text = self.refused(program, 'install alpha')
        self.assertIn('nothing provides /usr/share/nowhere/data', text)
        self.assertEqual(len(yumIOC.named('dsRestartLoop')), 1)
        self.check(program, [])

    def test_aProtectedPackageStays(self):
        self.config('[main]\nprotected_packages=alpha\n')
        program = self.begin([Rpm('alpha'), Rpm('beta')], [Rpm('gamma')])
        text = self.refused(program, 'remove alpha')
        self.assertIn('protected', text)
        self.assertIn('alpha', text)
        self.check(program, ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])

    def test_aProtectedDependentStaysToo(self):
        self.config('[main]\nprotected_packages=beta\n')
        program = self.begin([Rpm('alpha'), Rpm('beta', tags=['Requires: alpha'])], [Rpm('gamma')])
        self.assertIn('beta', self.refused(program, 'remove alpha'))
        self.check(program, ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])

    def test_anInstallRemovesNothing(self):
        """Only with a removal among the marks may the solver remove anything."""
        program = self.begin([Rpm('alpha'), Rpm('beta', tags=['Requires: alpha = 1.0'])],
                             [Rpm('alpha', '2.0')])
        text = self.refused(program, 'update alpha')
        self.assertIn('beta', text)
        self.check(program, ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])

    def test_noMarksAtAllSaySo(self):
        program = self.begin([Rpm('alpha')], [Rpm('beta')])
        self.assertIn('nothing to do', self.refused(program))
        self.check(program, ['alpha-1.0-1.noarch'])

    def test_whatIsInstalledMeanwhileIsDroppedAndLogged(self):
        program = self.begin([], [Rpm('alpha'), Rpm('beta')])
        self.rpm_command('-i', build(Rpm('alpha')))
        program.apply('install alpha', 'install beta')
        self.assertEqual(program.review, ['installed beta-1.0-1.noarch [base]'])
        self.assertIn('alpha-1.0-1.noarch is installed already', self.log())
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])

    def test_whatIsRemovedMeanwhileIsDroppedAndLogged(self):
        program = self.begin([Rpm('alpha'), Rpm('beta')], [Rpm('gamma')])
        self.rpm_command('-e', 'alpha')
        program.apply('remove alpha', 'remove beta')
        self.assertEqual(program.review, ['removed beta-1.0-1.noarch'])
        self.assertIn('alpha-1.0-1.noarch is not installed any more', self.log())
        self.assertEqual(self.database(), [])

    def test_anUpdateOfWhatIsRemovedMeanwhileIsDropped(self):
        program = self.begin([Rpm('alpha')], [Rpm('alpha', '2.0'), Rpm('beta')])
        self.rpm_command('-e', 'alpha')
        program.apply('update alpha', 'install beta')
        self.assertEqual(program.review, ['installed beta-1.0-1.noarch [base]'])

    def test_allDoneMeanwhileSaysThatThereIsNothingToDo(self):
        program = self.begin([Rpm('beta')], [Rpm('alpha')])
        self.rpm_command('-i', build(Rpm('alpha')))
        self.rpm_command('-e', 'beta')
        text = self.refused(program, 'install alpha', 'remove beta')
        self.assertIn('nothing to do', text)
        self.check(program, ['alpha-1.0-1.noarch'])

    def test_aPackageThatIsGoneFromItsRepositoryIsNamed(self):
        program = self.begin([], [Rpm('alpha')])
        self.made.cleanMetadata()
        self.made.cleanSqlite()
        self.repository('base', [Rpm('beta')], text='gpgcheck=0\n')
        text = self.refused(program, 'install alpha')
        self.assertIn('alpha-1.0-1.noarch (repository base)', text)
        self.assertIn('Refresh', text)
        self.check(program, [])

    def test_aDependentThatTheTableLacksIsNamed(self):
        program = self.begin([Rpm('alpha')], [Rpm('gamma')])
        self.rpm_command('-i', build(Rpm('beta', tags=['Requires: alpha'])))
        text = self.refused(program, 'remove alpha')
        self.assertIn('beta-1.0-1.noarch', text)
        self.assertIn('Refresh', text)
        self.check(program, ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])

    def test_aDatabaseInUseSaysByWhom(self):
        program = self.begin([], [Rpm('alpha')])
        code = ('import fcntl, sys; f = open(sys.argv[1], "r+"); fcntl.lockf(f, fcntl.LOCK_EX);'
                'print("locked", flush=True); sys.stdin.read()')
        process = subprocess.Popen([sys.executable, '-c', code,
                                    self.path('var/lib/rpm/.rpm.lock')],
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        try:
            process.stdout.readline()
            text = self.refused(program, 'install alpha')
            self.assertIn('pid %d' % process.pid, text)
            # The lock may as well be taken while the user reads the review.
            process.stdin.close()
            process.wait()
            yumIOC.hooks['userconfirm'] = lambda: self.hold(code)
            text = self.refused(program, 'install alpha')
            self.assertIn('pid %d' % self.holder.pid, text)
            self.assertEqual(yumIOC.named('tsInitCallback'), [])
        finally:
            process.stdout.close()
        self.assertEqual(self.database(), [])

    def hold(self, code):
        self.holder = subprocess.Popen([sys.executable, '-c', code,
                                        self.path('var/lib/rpm/.rpm.lock')],
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(self.holder.wait)
        self.addCleanup(self.holder.stdout.close)
        self.addCleanup(self.holder.stdin.close)
        self.holder.stdout.readline()
        return 1

    def test_cancelDoesNothingAndTheNextApplyWorks(self):
        program = self.begin([], [Rpm('alpha')])
        yumIOC.answer = 0
        program.apply('install alpha')
        self.assertEqual(program.review, ['installed alpha-1.0-1.noarch [base]'])
        self.assertEqual(yumIOC.named('applyGrabMultiMeterStart', 'tsInitCallback',
                                      'postTransactionOutput'), [])
        self.assertEqual(self.database(), [])
        yumIOC.answer = 1
        program.apply('install alpha')
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])


class Failed(ApplyTest):
    """Something was begun."""

    def test_aFailedDownloadChangesNothing(self):
        program = self.begin([], [Rpm('alpha'), Rpm('beta')])
        self.server.behave('/base/beta-1.0-1.noarch.rpm', 404)
        text = self.refused(program, 'install alpha', 'install beta')
        self.assertIn('beta-1.0-1.noarch.rpm', text)
        self.assertEqual(self.database(), [])
        # What has come is kept for the next try.
        self.assertEqual(package_files(self), ['alpha-1.0-1.noarch.rpm'])
        self.server.behave('/base/beta-1.0-1.noarch.rpm', None)
        self.server.forget()
        program.apply('install alpha', 'install beta')
        self.assertEqual(self.server.names(), ['beta-1.0-1.noarch.rpm'])
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])
        self.assertEqual(package_files(self), [])

    def test_aFileConflictIsToldInFull(self):
        shared = ['/usr/share/shared']
        program = self.begin([Rpm('alpha', files=shared)], [Rpm('beta', files=shared)])
        text = self.refused(program, 'install beta')
        self.assertIn('nothing has changed', text)
        self.assertIn('file /usr/share/shared from install of beta-1.0-1.noarch conflicts with file '
                      'from package alpha-1.0-1.noarch', text)
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])
        self.assertEqual(yumIOC.named('tsInitCallback'), [('tsInitCallback', 0)])
        self.assertEqual(package_files(self), ['beta-1.0-1.noarch.rpm'])

    def test_aFailedPreScriptKeepsItsPackageOutAndSaysSo(self):
        program = self.begin([], [Rpm('alpha'), Rpm('bad', scripts=[('%pre', 'exit 3')])],
                             shell=True)
        text = self.refused(program, 'install alpha', 'install bad')
        self.assertIn('bad: the script that runs before its installation failed', text)
        self.assertIn('exit status 3', text)
        self.assertIn('Not done:\n  installation of bad-1.0-1.noarch', text)
        self.assertIn('What was done stays done', text)
        self.assertIn('Refresh', text)
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])
        self.assertEqual(yumIOC.named('postTransactionOutput'), [])
        # Once is enough, and the library's advice is about its own command line.
        self.assertNotIn('Error in PREIN', self.log())
        self.assertNotIn('dnf clean', self.log())
        # Downloads are kept for another try.
        self.assertIn('bad-1.0-1.noarch.rpm', package_files(self))

    def test_aFailedPostScriptIsReportedThoughThePackageIsInstalled(self):
        program = self.begin([], [Rpm('bad', scripts=[('%post', 'echo no luck; exit 1')])],
                             shell=True)
        text = self.refused(program, 'install bad')
        self.assertIn('bad: the script that runs after its installation failed', text)
        self.assertNotIn('Not done', text)
        self.assertEqual(self.database(), ['bad-1.0-1.noarch'])
        self.assertIn('no luck\n', self.output())

    def test_aFailedRemovalScriptKeepsThePackage(self):
        program = self.begin([Rpm('bad', scripts=[('%preun', 'exit 1')])], [Rpm('alpha')],
                             shell=True)
        text = self.refused(program, 'remove bad')
        self.assertIn('bad: the script that runs before its removal failed', text)
        self.assertEqual(self.database(), ['bad-1.0-1.noarch'])

    def test_aFailedUpdateKeepsTheOldVersion(self):
        program = self.begin([Rpm('bad')], [Rpm('bad', '2.0', scripts=[('%pre', 'exit 1')])],
                             shell=True)
        text = self.refused(program, 'update bad')
        self.assertIn('Not done', text)
        self.assertEqual(self.database(), ['bad-1.0-1.noarch'])

    def test_whatFailsAfterTheRunDoesNotSayThatNothingChanged(self):
        self.plugin('failing', 'raise dnf.exceptions.Error("no snapshot")')
        program = self.begin([], [Rpm('alpha')])
        text = self.refused(program, 'install alpha')
        self.assertIn('was run', text)
        self.assertIn('no snapshot', text)
        self.assertNotIn('nothing has changed', text)
        self.assertNotIn('Not done', text)
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])

    def test_anApplyAfterAFailedOneWorks(self):
        program = self.begin([Rpm('old')], [Rpm('alpha'), Rpm('bad', scripts=[('%pre', 'exit 3')])],
                             shell=True)
        self.refused(program, 'install bad', 'remove old')
        program.apply('install alpha', 'remove old')
        # The removal had succeeded, which the marks don't know.
        self.assertEqual(program.review, ['installed alpha-1.0-1.noarch [base]'])
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])
        self.made.flush()
        again = self.open()
        self.assertEqual(again.row('alpha').state, 'installed')

    def test_anInterruptDuringTheRunIsRaisedWhenItIsOver(self):
        program = self.begin([], [Rpm(name) for name in ('alpha', 'beta', 'gamma', 'delta')])
        for kind, first, second in ((KeyboardInterrupt, 'alpha', 'beta'),
                                    (SystemExit, 'gamma', 'delta')):
            def interrupt(kind=kind):
                raise kind('enough')
            program.during = interrupt
            with self.assertRaises(kind):
                program.apply('install ' + first, 'install ' + second)
            self.assertIn(first + '-1.0-1.noarch', self.database())
            self.assertIn(second + '-1.0-1.noarch', self.database())

    def test_anInterruptThroughTheLogIsRaisedToo(self):
        program = self.begin([], [Rpm('alpha')])

        def interrupt(_level, text):
            if text.startswith('Installed: '):
                raise KeyboardInterrupt(text)
        yumIOC.hooks['log'] = interrupt
        with self.assertRaises(KeyboardInterrupt):
            program.apply('install alpha')
        self.assertEqual(self.database(), ['alpha-1.0-1.noarch'])

    def test_aFullDiskSaysHowMuchIsMissing(self):
        disk = self.path('usr')
        os.makedirs(disk, exist_ok=True)
        if subprocess.call(['mount', '-t', 'tmpfs', '-o', 'size=64k', 'tmpfs', disk],
                           stderr=subprocess.DEVNULL) != 0:
            self.skipTest('no disk can be made here')
        self.addCleanup(subprocess.call, ['umount', '-l', disk])
        text = 'x' * 1000
        program = self.begin([], [Rpm('alpha', files=['/usr/share/alpha/%s%03d' % (text[:100], n)
                                                     for n in range(300)])])
        text = self.refused(program, 'install alpha')
        self.assertRegex(text, r'needs \d+[KM]B more space on the /usr filesystem')
        self.assertEqual(self.database(), [])

    def test_aFileThatIsGoneBeforeTheRunIsAnError(self):
        program = self.begin([], [Rpm('alpha')])

        def lose():
            os.unlink(os.path.join(program.row('alpha').package.localPkg()))
        yumIOC.hooks['gpgsigcheck'] = lose
        with self.assertRaises((OSError, self.names['yum'].Errors.YumBaseError)) as caught:
            program.apply('install alpha')
        self.assertIn('alpha-1.0-1.noarch.rpm', str(caught.exception))
        self.assertEqual(self.database(), [])

    def test_aFileThatIsGoneWhenRpmVerifiesItIsAnError(self):
        program = self.begin([], [Rpm('alpha'), Rpm('beta')])

        def lose(stage):
            if stage == 1:
                os.unlink(program.row('alpha').package.localPkg())
        yumIOC.hooks['tsInitCallback'] = lose
        text = self.refused(program, 'install alpha', 'install beta')
        self.assertTrue(text.startswith('The transaction was not run'), text)
        self.assertIn('alpha-1.0-1.noarch.rpm cannot be opened: No such file or directory', text)
        self.assertEqual(self.database(), [])

    def test_aFileThatIsGoneDuringTheRunLeavesItsPackageOut(self):
        program = self.begin([], [Rpm('alpha', tags=['Requires: beta']), Rpm('beta')])
        opened = []

        def enter(stage):
            # rpm has another root during the run.
            if stage == 1:
                directory = os.path.dirname(program.row('alpha').package.localPkg())
                opened.append(os.open(directory, os.O_RDONLY))
                self.addCleanup(os.close, opened[0])

        def lose():
            program.during = None
            os.unlink('alpha-1.0-1.noarch.rpm', dir_fd=opened[0])
        yumIOC.hooks['tsInitCallback'] = enter
        program.during = lose
        text = self.refused(program, 'install alpha')
        self.assertIn('Not done:\n  installation of alpha-1.0-1.noarch', text)
        self.assertIn('alpha-1.0-1.noarch.rpm cannot be opened: No such file or directory', text)
        self.assertEqual(self.database(), ['beta-1.0-1.noarch'])

    def test_theCleanupAfterAFailureNeverRaises(self):
        self.make().applyFailCleanup()
        made = self.make()
        made.flush()
        made.applyFailCleanup()


if __name__ == '__main__':
    unittest.main()
