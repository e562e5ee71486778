# SPDX-License-Identifier: GPL-2.0-or-later
"""A collection from the lock to the groups, over real packages."""

import os
import shutil
import unittest

from fixture import COMPS, Rpm, SystemTest, make_repository, nevra, nevras, yumIOC


class Lists(SystemTest):

    def test_listsUpdatesInstalledAndAvailable(self):
        self.install(Rpm('alpha'), Rpm('old'))
        self.repository('base', [Rpm('alpha'), Rpm('alpha', '2.0', epoch=1), Rpm('beta')], COMPS)
        lists = self.collect().lists
        self.assertEqual(nevras(lists.updates), ['alpha-1:2.0-1.noarch'])
        self.assertEqual(nevras(lists.installed), ['alpha-1.0-1.noarch', 'old-1.0-1.noarch'])
        self.assertEqual(nevras(lists.available), ['alpha-1:2.0-1.noarch', 'beta-1.0-1.noarch'])

    def test_anUpdateThatChangesTheFamilyIsAvailableOnly(self):
        self.install(Rpm('alpha', files=()))
        self.repository('base', [Rpm('alpha', '2.0', arch='x86_64', files=())])
        lists = self.collect().lists
        self.assertEqual(nevras(lists.updates), [])
        self.assertEqual(nevras(lists.available), ['alpha-2.0-1.x86_64'])

    def test_bothFamiliesOfAnUpdateAreListed(self):
        self.install(Rpm('alpha', arch='x86_64', files=()), Rpm('alpha', arch='i686', files=()))
        self.repository('base', [Rpm('alpha', '2.0', arch='x86_64', files=()),
                                 Rpm('alpha', '2.0', arch='i686', files=())])
        self.assertEqual(nevras(self.collect().lists.updates),
                         ['alpha-2.0-1.i686', 'alpha-2.0-1.x86_64'])

    def test_whatTheSystemCannotRunIsLeftOut(self):
        self.repository('base', [Rpm('alpha', arch='aarch64', files=()), Rpm('beta')])
        self.assertEqual(nevras(self.collect().lists.available), ['beta-1.0-1.noarch'])

    def test_twoInstalledVersionsAreBothListed(self):
        self.install(Rpm('kernel'), Rpm('kernel', '2.0'))
        self.repository('base', [Rpm('beta')])
        self.assertEqual(nevras(self.collect().lists.installed),
                         ['kernel-1.0-1.noarch', 'kernel-2.0-1.noarch'])

    def test_anExcludedInstalledPackageDoesNotVanish(self):
        self.config('[main]\nexclude=alpha\n')
        self.install(Rpm('alpha'))
        self.repository('base', [Rpm('alpha', '2.0'), Rpm('beta')])
        lists = self.collect().lists
        self.assertEqual(nevras(lists.installed), ['alpha-1.0-1.noarch'])
        self.assertEqual(nevras(lists.updates), [])
        self.assertEqual(nevras(lists.available), ['beta-1.0-1.noarch'])

    def test_obsoletersOfOtherNamesAreAvailableNotUpdates(self):
        self.install(Rpm('alpha'))
        self.repository('base', [Rpm('omega', tags=['Obsoletes: alpha < 5'])])
        lists = self.collect().lists
        self.assertEqual(nevras(lists.updates), [])
        self.assertEqual(nevras(lists.available), ['omega-1.0-1.noarch'])

    def test_theRepositoryOfHigherPriorityDecides(self):
        self.repository('base', [Rpm('alpha', '3.0')])
        self.repository('first', [Rpm('alpha', '2.0')], text='priority=1\n')
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-2.0-1.noarch'])

    def test_isBetterThanPrefersTheBaseArchitectureThenNoarchThenTheVersion(self):
        self.repository('base', [Rpm('a', '1', arch='x86_64', files=()), Rpm('b', '2'),
                                 Rpm('c', '3', arch='i686', files=()),
                                 Rpm('d', '9', arch='x86_64', files=())])
        made = self.collect()
        native, noarch, foreign, newer = sorted(made.lists.available, key=lambda p: p.name)
        self.assertIs(made.isBetterThan(native, noarch), True)
        self.assertIs(made.isBetterThan(noarch, native), False)
        self.assertIs(made.isBetterThan(noarch, foreign), True)
        self.assertIs(made.isBetterThan(foreign, noarch), False)
        self.assertIs(made.isBetterThan(newer, native), True)
        self.assertIs(made.isBetterThan(native, newer), False)

    def test_getBiArchGivesFamilies(self):
        made = self.make()
        self.assertEqual([made.getBiArch(arch) for arch in
                          ('noarch', 'i686', 'athlon', 'x86_64', 'nonesuch', 'i686')],
                         ['noarch', 'i386', 'i386', 'x86_64', 'nonesuch', 'i386'])

    def test_aSecondCollectionOfOneObjectKeepsTheChoiceOfRepositories(self):
        self.repository('base', [Rpm('alpha')])
        self.repository('more', [Rpm('beta')])
        made = self.make()
        made.repos.disableRepo('more')
        self.assertEqual(nevras(self.collect(made).lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual(nevras(self.collect(made).lists.available), ['alpha-1.0-1.noarch'])

    def test_packagesStayUsableAfterTheNextCollection(self):
        self.install(Rpm('alpha'))
        self.repository('base', [Rpm('beta')])
        first = self.collect()
        kept = first.lists
        self.again(first)
        del first
        self.assertEqual(nevras(kept.available), ['beta-1.0-1.noarch'])
        self.assertEqual(kept.available[0].returnSimple('summary'), 'The package beta')
        self.assertEqual(kept.installed[0].hdr['name'], 'alpha')
        self.assertTrue(kept.available[0].localPkg() is None or
                        kept.available[0].localPkg().endswith('beta-1.0-1.noarch.rpm'))


class Groups(SystemTest):

    def test_groupsCarryTheirMembersAndWhetherTheyAreInstalled(self):
        self.install(Rpm('alpha'))
        self.repository('base', [Rpm('beta')], COMPS)
        groups = {group.name: group for group in self.collect().lists.groups}
        tools = groups['Tools']
        self.assertTrue(tools.user_visible)
        self.assertTrue(tools.installed)
        self.assertEqual(list(tools.mandatory_packages), ['alpha'])
        self.assertEqual(list(tools.default_packages), ['beta'])
        self.assertEqual(list(tools.optional_packages), ['gamma'])
        self.assertEqual(tools.conditional_packages, {'delta': 'alpha'})
        self.assertFalse(groups['Hidden'].user_visible)
        self.assertFalse(groups['Hidden'].installed)

    def test_withoutGroupsTheSetupSaysSoAndTheListIsEmpty(self):
        self.repository('base', [Rpm('beta')])
        made = self.collect()
        with self.assertRaises(self.names['yum'].Errors.GroupsError) as caught:
            made.setupTsGroup()
        self.assertEqual(caught.exception.value, 'No Groups Available')
        self.assertEqual(list(made.collectGroupInfo()), [])


class Configuration(SystemTest):

    def test_reposIsATrueDictionaryWithIntegersForEnabled(self):
        self.repository('base', [Rpm('alpha')])
        self.repository('off', [Rpm('beta')], text='enabled=0\n')
        repos = self.make().repos.repos
        self.assertIsInstance(repos, dict)
        self.assertEqual({key: int(dict.__getitem__(repos, key).enabled)
                          for key in dict.keys(repos)}, {'base': 1, 'off': 0})

    def test_repositoriesAreSwitchedForTheSession(self):
        self.repository('base', [Rpm('alpha')])
        self.repository('off', [Rpm('beta')], text='enabled=0\n')
        made = self.make()
        made.repos.enableRepo('off')
        made.repos.disableRepo('base')
        self.assertEqual(nevras(self.collect(made).lists.available), ['beta-1.0-1.noarch'])

    def test_anUnknownRepositoryIsARepoError(self):
        made = self.make()
        for switch in (made.repos.enableRepo, made.repos.disableRepo):
            with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
                switch('nowhere')
            self.assertIn('nowhere', caught.exception.value)

    def test_repositoriesInTheMainFileCount(self):
        make_repository(os.path.join(self.served, 'inside'), [Rpm('alpha')])
        self.config('[main]\n[inside]\nname=Inside\nbaseurl=%s/inside\n' % self.server.url)
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_theFileInEtcYumWinsAndReposdirReplacesTheDefault(self):
        self.repository('base', [Rpm('alpha')])
        os.makedirs(self.path('etc/yum'))
        os.makedirs(self.path('one'))
        os.rename(self.path('etc/yum.repos.d/base.repo'), self.path('one/base.repo'))
        with open(self.path('etc/yum.repos.d/broken.repo'), 'w') as stream:
            stream.write('[broken]\nbaseurl=http://localhost:1/\n')
        with open(self.path('etc/yum/yum.conf'), 'w') as stream:
            stream.write('[main]\nreposdir=/one, /two\n')
        self.assertEqual(list(self.make().repos.repos), ['base'])

    def test_bothDefaultDirectoriesBelowTheRootAreRead(self):
        self.repository('base', [Rpm('alpha')])
        os.makedirs(self.path('etc/yum/repos.d'))
        with open(self.path('etc/yum/repos.d/second.repo'), 'w') as stream:
            stream.write('[second]\nname=x\nbaseurl=http://localhost:1/\nenabled=0\n')
        self.assertEqual(sorted(self.make().repos.repos), ['base', 'second'])

    def test_aRepositoryWithTheIdMainIsRead(self):
        self.repository('main', [Rpm('alpha')])
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_aBadFileIsAWarningWithItsNameAndTheOthersAreRead(self):
        self.repository('base', [Rpm('alpha')])
        with open(self.path('etc/yum.repos.d/bad.repo'), 'w') as stream:
            stream.write('nonsense before\n[bad\nname\n')
        with open(self.path('etc/yum.repos.d/badid.repo'), 'w') as stream:
            stream.write('[bad id]\nname=x\nbaseurl=http://localhost:1/\n')
        self.collect()
        warnings = '\n'.join(yumIOC.lines('errorlog'))
        self.assertIn('/bad.repo', warnings)
        self.assertIn('/badid.repo', warnings)

    def test_aFileThatCannotBeOpenedIsAWarningWithItsName(self):
        self.repository('base', [Rpm('alpha')])
        gone = self.path('etc/yum.repos.d/gone.repo')
        os.symlink('/nonexistent/gone.repo', gone)
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])
        self.assertIn(gone + ': No such file or directory', yumIOC.lines('errorlog'))

    def test_aMissingMainFileIsARepoErrorOfSetupRepos(self):
        os.unlink(self.path('etc/yum.conf'))
        made = self.make()
        self.assertEqual(dict(made.repos.repos), {})
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            made.setupRepos()
        self.assertIn('yum.conf', caught.exception.value)

    def test_aLibraryThatIsTooOldIsARepoErrorOfSetupRepos(self):
        import dnf
        self.addCleanup(setattr, dnf.Base, 'unload_plugins', dnf.Base.unload_plugins)
        del dnf.Base.unload_plugins
        made = self.make()
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            made.setupRepos()
        made.flush()
        self.assertRegex(caught.exception.value, r'dnf \d.* is too old for this program')

    def test_aMalformedMainFileIsARepoErrorOfSetupRepos(self):
        self.config('what is this\n')
        made = self.make()
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            made.setupRepos()
        self.assertIn('yum.conf', caught.exception.value)

    def test_variablesOfTheRootAreReplaced(self):
        os.makedirs(self.path('etc/dnf/vars'))
        with open(self.path('etc/dnf/vars/where'), 'w') as stream:
            stream.write('base\n')
        make_repository(os.path.join(self.served, 'base'), [Rpm('alpha')])
        with open(self.path('etc/yum.repos.d/x.repo'), 'w') as stream:
            stream.write('[x]\nname=x\nbaseurl=%s/$where\n' % self.server.url)
        made = self.collect()
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual(made.conf.yumvar['where'], 'base')
        self.assertTrue(made.conf.yumvar['basearch'])
        self.assertTrue(made.conf.yumvar['arch'])
        self.assertIn('releasever', made.conf.yumvar)

    def test_everythingWrittenStaysBelowTheRoot(self):
        self.repository('base', [Rpm('alpha')])
        self.collect()
        self.assertTrue(os.path.exists(self.path('var/cache/yum/base.solv')))
        self.assertTrue(os.path.isdir(self.path('var/lib/dnf')))

    def test_aConfiguredCacheDirectoryIsUsedBelowTheRoot(self):
        self.config('[main]\ncachedir=/elsewhere/$basearch\n')
        self.repository('base', [Rpm('alpha')])
        made = self.collect()
        self.assertTrue(os.path.exists(
            self.path('elsewhere', made.conf.yumvar['basearch'], 'base.solv')))

    def test_aBrokenPluginIsLoggedAndNotFatal(self):
        plugins = self.path('plugins')
        os.makedirs(plugins)
        with open(os.path.join(plugins, 'broken.py'), 'w') as stream:
            stream.write('raise ValueError("broken at import")\n')
        with open(os.path.join(plugins, 'angry.py'), 'w') as stream:
            stream.write('import dnf\nclass Angry(dnf.Plugin):\n name="angry"\n'
                         ' def config(self):\n  raise KeyError("broken at work")\n')
        self.addCleanup(self.calm)
        self.config('[main]\nplugins=1\npluginpath=%s\n' % plugins)
        self.repository('base', [Rpm('alpha')])
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])
        errors = '\n'.join(yumIOC.lines('errorlog'))
        self.assertIn('broken at import', errors)
        self.assertIn('broken at work', errors)

    @staticmethod
    def calm():
        """The library finds every plugin class that ever was."""
        import dnf.plugin
        for made in dnf.plugin.Plugin.__subclasses__():
            if made.__name__ == 'Angry':
                made.config = lambda self: None

    def test_theInstalledPackagesOfTheRootAreReadNotTheUsers(self):
        self.install(Rpm('alpha'))
        self.repository('base', [Rpm('beta')])
        self.assertEqual([nevra(p) for p in self.collect().lists.installed],
                         ['alpha-1.0-1.noarch'])

    def test_aRootWithoutPackageDatabaseHasNothingInstalled(self):
        shutil.rmtree(self.path('var/lib/rpm'))
        self.repository('base', [Rpm('beta')])
        self.assertEqual(self.collect().lists.installed, [])
        self.assertIn(self.path('var/lib/rpm'), ''.join(yumIOC.lines('errorlog')))

    def test_aDamagedPackageDatabaseIsARepoErrorNotAnEmptySystem(self):
        self.install(Rpm('alpha'))
        self.repository('base', [Rpm('beta')])
        for name in os.listdir(self.path('var/lib/rpm')):
            with open(self.path('var/lib/rpm', name), 'wb') as stream:
                stream.write(b'garbage' * 1000)
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.make().setupRepos()
        self.assertIn(self.path('var/lib/rpm'), caught.exception.value)


class Contract(SystemTest):

    def test_theTopLevelDefinesWhatTheProgramLooksUp(self):
        import dnf
        self.assertIs(self.names['usesSqlite'](), False)
        yum = self.names['yum']
        self.assertEqual(yum.__version__, dnf.__version__)
        for name in ('YumBaseError', 'RepoError', 'LockError', 'GroupsError',
                     'NoMoreMirrorsRepoError'):
            self.assertTrue(issubclass(vars(yum.Errors)[name], yum.Errors.YumBaseError))
        self.assertTrue(issubclass(yum.Errors.NoMoreMirrorsRepoError, yum.Errors.RepoError))

    def test_capabilities(self):
        made = self.make()
        self.assertIs(made.hasMultiProgress(), True)
        self.assertIs(type(made.usesPresto()), bool)

    def test_callingOutOfOrderRaisesWhatTheProgramExpects(self):
        made = self.make()
        error = self.names['yum'].Errors.YumBaseError
        for method in (made.setupTs, made.collectUpdates, made.collectAll, made.setupTsGroup,
                       made.collectFileLists, made.collectOtherData):
            with self.assertRaises(error):
                method()
        self.assertEqual(list(made.collectGroupInfo()), [])


if __name__ == '__main__':
    unittest.main()
