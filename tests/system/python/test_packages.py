# SPDX-License-Identifier: GPL-2.0-or-later
"""Package objects, file lists and change logs as the program reads them."""

import bz2
import gc
import gzip
import hashlib
import lzma
import os
import re
import shutil
import subprocess
import unittest

import rpm

from fixture import COMPS, Rpm, SystemTest, make_repository, yumIOC

CHANGES = '''* Tue Mar 03 2020 Second Author <two@example.org> - 1.0-2
- second <change> & more

* Mon Mar 02 2020 First Author <one@example.org> - 1.0-1
- first change
'''

RICH = dict(epoch=2, changelog=CHANGES, group='Suite', summary='Grüße & <more>',
            tags=['Provides: thing = 3:4-5', 'Requires: other >= 1.5', 'Requires: plain',
                  'Conflicts: foe < 7-1', 'Obsoletes: ancestor <= 1'],
            files=('/usr/share/rich/b', '/usr/share/rich/a', '/usr/share/rich/with & sign'))


class Fields(SystemTest):

    def setUp(self):
        super().setUp()
        self.install(Rpm('rich', **RICH), Rpm('poor', epoch=0))
        self.repository('base', [Rpm('rich', '2.0', **RICH), Rpm('poor', '2.0', epoch=0)])
        self.made = self.collect()
        self.available = {p.name: p for p in self.made.lists.available}
        self.installed = {p.name: p for p in self.made.lists.installed}

    def test_theVersionTextNamesAnEpochThatIsNotZero(self):
        self.assertEqual(self.available['rich'].printVer(), '2:2.0-1')
        self.assertEqual(self.installed['rich'].printVer(), '2:1.0-1')
        self.assertEqual(self.available['poor'].printVer(), '2.0-1')
        self.assertEqual(self.installed['poor'].printVer(), '1.0-1')

    def test_simpleFields(self):
        for package in (self.available['rich'], self.installed['rich']):
            field = package.returnSimple
            self.assertEqual(field('group'), 'Suite')
            self.assertEqual(field('summary'), 'Grüße & <more>')
            self.assertEqual(field('description'), 'What rich is for.')
            self.assertEqual(field('vendor'), 'Example Maker')
            self.assertEqual(field('license'), 'GPLv2+')
            self.assertEqual(field('packager'), 'Example Packager')
            self.assertEqual(field('url'), 'http://example.org/rich')
            self.assertTrue(field('sourcerpm').endswith('.src.rpm'))
            self.assertGreater(field('buildtime'), 1500000000)
        self.assertEqual(self.available['rich'].returnSimple('repoid'), 'base')
        self.assertEqual(self.installed['rich'].returnSimple('repoid'), 'installed')
        self.assertEqual(self.available['rich'].returnSimple('relativepath'),
                         'rich-2.0-1.noarch.rpm')
        self.assertIsNone(self.installed['rich'].returnSimple('relativepath'))
        self.assertTrue(self.installed['rich'].returnSimple('buildhost'))
        self.assertIsNone(self.available['rich'].returnSimple('buildhost'))

    def test_anUnknownFieldIsAKeyError(self):
        with self.assertRaises(KeyError):
            self.available['rich'].returnSimple('nonsense')

    def test_sizes(self):
        path = os.path.join(self.served, 'base', 'rich-2.0-1.noarch.rpm')
        self.assertEqual(self.available['rich'].size, os.path.getsize(path))
        self.assertEqual(self.installed['rich'].size, 15)

    def test_onlyInstalledPackagesHaveAHeader(self):
        self.assertTrue(hasattr(self.installed['rich'], 'hdr'))
        self.assertFalse(hasattr(self.available['rich'], 'hdr'))
        self.assertEqual(self.installed['rich'].hdr[rpm.RPMTAG_NAME], 'rich')
        self.assertEqual(len(self.installed['rich'].hdr[rpm.RPMTAG_BASENAMES]), 3)

    def test_thePresenceOfAttributesTellsRepositoryPackages(self):
        for name in ('relativepath', 'prco', '_loadFiles', 'changelog'):
            self.assertTrue(hasattr(self.available['rich'], name), name)
        self.assertFalse(hasattr(self.installed['rich'], 'relativepath'))

    def test_relations(self):
        relations = self.available['rich'].returnPrco
        self.assertIn(('thing', 'EQ', ('3', '4', '5')), relations('provides'))
        self.assertIn(('rich', 'EQ', ('2', '2.0', '1')), relations('provides'))
        self.assertIn(('other', 'GE', (None, '1.5', None)), relations('requires'))
        self.assertIn(('plain', None, (None, None, None)), relations('requires'))
        self.assertEqual(relations('conflicts'), [('foe', 'LT', (None, '7', '1'))])
        self.assertEqual(relations('obsoletes'), [('ancestor', 'LE', (None, '1', None))])
        self.assertEqual(self.available['rich'].prco['obsoletes'], relations('obsoletes'))
        self.assertEqual(set(self.available['rich'].prco),
                         {'provides', 'requires', 'conflicts', 'obsoletes'})

    def test_theRowGivesWhatTheSingleCallsGive(self):
        for package in list(self.available.values()) + list(self.installed.values()):
            field = package.returnSimple
            self.assertEqual(package.collectRow(),
                             (package.name, package.printVer(), field('repoid'), package.arch,
                              package.size, field('summary'), field('buildtime'),
                              field('group')))

    def test_localPaths(self):
        made = self.available['rich']
        self.assertTrue(made.localPkg().startswith(self.path('var/cache/yum/base-')))
        self.assertTrue(made.localPkg().endswith('/packages/rich-2.0-1.noarch.rpm'))
        self.assertIsNone(made.localHdr())
        self.assertIsNone(self.installed['rich'].localPkg())

    def test_noPackageHasADictionary(self):
        for package in (self.available['rich'], self.installed['rich']):
            self.assertFalse(hasattr(package, '__dict__'))

    def test_aPackageErasedMeanwhileStillHasAnEmptyHeader(self):
        self.rpm_command('-e', '--justdb', '--nodeps', 'rich')
        package = self.installed['rich']
        self.assertTrue(hasattr(package, 'hdr'))
        self.assertEqual(package.returnFileText(), b'')
        self.assertEqual(package.name, 'rich')

    def test_filesOfAnInstalledPackageNeedNoLoad(self):
        self.assertEqual(self.installed['rich'].returnFileText(),
                         b'/usr/share/rich/a\n/usr/share/rich/b\n/usr/share/rich/with & sign')
        self.assertEqual(len(self.installed['rich'].returnChangelog()), 2)


class InvalidText(SystemTest):

    def test_textThatIsNotUtf8NeverRaises(self):
        odd = b'caf\xe9 noir'.decode('utf-8', 'surrogateescape')
        self.install(Rpm('odd', summary=odd, description=odd))
        self.repository('base', [Rpm('beta')])
        package, = self.collect().lists.installed
        # The library takes such bytes for Latin-1.
        self.assertEqual(package.returnSimple('summary'), 'caf\xe9 noir')
        self.assertEqual(package.collectRow()[5], 'caf\xe9 noir')
        self.assertEqual(package.collectRow()[0], 'odd')
        self.assertIn('noir', package.returnSimple('description'))


class Extra(SystemTest):

    def setUp(self):
        super().setUp()
        self.repository('base', [Rpm('rich', **RICH), Rpm('poor', files=())])

    def one(self, made, name='rich'):
        return next(p for p in made.lists.available if p.name == name)

    FILES = b'/usr/share/rich/a\n/usr/share/rich/b\n/usr/share/rich/with & sign'

    def test_fileLists(self):
        made = self.collect()
        self.assertEqual(self.one(made).returnFileText(), b'')
        self.server.forget()
        self.assertIsNotNone(made.collectFileLists())
        self.assertEqual(self.server.names(), ['filelists.xml.gz'])
        self.assertEqual(self.one(made).returnFileText(), self.FILES)
        self.assertEqual(self.one(made).returnFileEntries('file'),
                         self.FILES.decode().split('\n'))
        self.assertEqual(self.one(made, 'poor').returnFileText(), b'')
        self.assertEqual(self.one(made, 'poor').returnFileEntries('file'), [])
        self.assertEqual(self.one(made).returnFileEntries('dir'), [])

    def test_changeLogsAreNewestFirst(self):
        made = self.collect()
        self.assertEqual(self.one(made).returnChangelog(), [])
        self.server.forget()
        made.collectOtherData()
        self.assertEqual(self.server.names(), ['other.xml.gz'])
        second, first = self.one(made).returnChangelog()
        self.assertEqual(second, (1583236800, 'Second Author <two@example.org> - 1.0-2',
                                  '- second <change> & more'))
        self.assertEqual(first[2], '- first change')
        self.assertEqual(self.one(made).changelog, [second, first])
        self.assertEqual(self.one(made, 'poor').returnChangelog(), [])

    def test_aSecondRunCostsNoRequest(self):
        made = self.collect()
        made.collectFileLists()
        made.collectOtherData()
        self.server.forget()
        from steward import session
        session._Process.collected = False
        made = self.collect()
        made.collectFileLists()
        made.collectOtherData()
        self.assertEqual(self.server.names(), [])
        self.assertEqual(self.one(made).returnFileText(), self.FILES)

    def test_unchangedExtraFilesSurviveARefreshAndChangedOnesDoNot(self):
        made = self.collect()
        made.collectFileLists()
        made.collectOtherData()
        make_repository(os.path.join(self.served, 'base'), [Rpm('beta', files=('/srv/beta',))])
        made = self.again(made)
        made.collectFileLists()
        self.assertEqual(self.one(made, 'beta').returnFileText(), b'/srv/beta')

    def test_packagesOfTheLastCollectionKeepTheirExtraData(self):
        made = self.collect()
        made.collectFileLists()
        kept = self.one(made)
        self.again(made)
        self.assertEqual(kept.returnFileText(), self.FILES)

    def test_damagedExtraDataIsFetchedAnew(self):
        made = self.collect()
        made.collectFileLists()
        for top, _, names in os.walk(self.path('var/cache/yum')):
            if 'filelists.xml.gz' in names:
                with open(os.path.join(top, 'filelists.xml.gz'), 'wb') as stream:
                    stream.write(b'damaged')
        made.collectFileLists()
        self.assertEqual(self.one(made).returnFileText(), self.FILES)

    def test_aFailureIsAReadableErrorAndCanBeRetried(self):
        made = self.collect()
        self.server.behave('/base/repodata/filelists.xml.gz', 404)
        errors = self.names['yum'].Errors
        with self.assertRaises(errors.YumBaseError) as caught:
            made.collectFileLists()
        self.assertTrue(type(caught.exception) in (errors.YumBaseError,
                                                   errors.NoMoreMirrorsRepoError))
        self.assertIn("'base'", caught.exception.value)
        self.assertEqual(self.one(made).returnFileText(), b'')
        self.server.behave('/base/repodata/filelists.xml.gz', None)
        made.collectFileLists()
        self.assertEqual(self.one(made).returnFileText(), self.FILES)

    def test_theNextMirrorIsTried(self):
        self.repository('base', [Rpm('rich', **RICH)], baseurl=False,
                        text='baseurl=%s/dead %s/base\n' % (self.server.url, self.server.url))
        made = self.collect()
        made.collectFileLists()
        self.assertEqual(self.one(made).returnFileText(), self.FILES)
        self.assertIn(['/dead/repodata/filelists.xml.gz', 0], self.server.requests())

    def test_otherCompressions(self):
        made = self.collect()
        options = [('xz', '.xz'), ('bz2', '.bz2')]
        if 'zstd' in subprocess.run(['createrepo_c', '--help'], check=True, stdout=subprocess.PIPE,
                                    universal_newlines=True).stdout:
            options.append(('zstd', '.zst'))
        for option, suffix in options:
            self.repository('base', [Rpm('rich', **RICH)],
                            options=['--general-compress-type', option])
            made = self.again(made)
            self.assertIn('primary.xml' + suffix, self.server.names())
            made.collectFileLists()
            self.assertEqual(self.one(made).returnFileText(), self.FILES)
            made.collectOtherData()
            self.assertEqual(len(self.one(made).returnChangelog()), 2)
            self.server.forget()

    def rewrite(self, change):
        """Replaces the served file lists, with the checksum made right."""
        top = os.path.join(self.served, 'base/repodata')
        with gzip.open(os.path.join(top, 'filelists.xml.gz')) as stream:
            data = change(stream.read())
        data = gzip.compress(data)
        with open(os.path.join(top, 'filelists.xml.gz'), 'wb') as stream:
            stream.write(data)
        with open(os.path.join(top, 'repomd.xml')) as stream:
            text = stream.read()
        block = re.search(r'<data type="filelists">.*?</data>', text, re.S).group()
        changed = re.sub(r'(<checksum [^>]*>)[^<]*', r'\g<1>' + hashlib.sha256(data).hexdigest(),
                         block)
        changed = re.sub(r'<size>\d+', '<size>%d' % len(data), changed)
        with open(os.path.join(top, 'repomd.xml'), 'w') as stream:
            stream.write(text.replace(block, changed))

    def test_unusualMarkupIsUnderstood(self):
        self.rewrite(lambda data: data.replace(
            b'<file>/usr/share/rich/a</file>',
            b'<!-- <file>/no</file> -->'
            b'<file  type = "ghost" >/usr/share/rich/a</file><file><![CDATA[/x<y]]></file>'))
        made = self.collect()
        made.collectFileLists()
        self.assertEqual(self.one(made).returnFileText(), self.FILES + b'\n/x<y')

    def test_aPathListedTwiceAppearsOnce(self):
        self.rewrite(lambda data: data.replace(
            b'<file>/usr/share/rich/a</file>', b'<file>/usr/share/rich/a</file>' * 2))
        made = self.collect()
        made.collectFileLists()
        self.assertEqual(self.one(made).returnFileText(), self.FILES)

    def test_aFileThatIsCutShortIsAnError(self):
        from steward import compression
        path = os.path.join(self.top, 'cut')
        for data in (gzip.compress(b'x' * 9999), bz2.compress(b'x' * 9999),
                     lzma.compress(b'x' * 9999)):
            with open(path, 'wb') as stream:
                stream.write(data + data)
            self.assertEqual(b''.join(compression.pieces(path)), b'x' * 9999 * 2)
            with open(path, 'wb') as stream:
                stream.write(data[:-9])
            with self.assertRaises(self.names['yum'].Errors.YumBaseError):
                list(compression.pieces(path))

    @unittest.skipUnless(shutil.which('zstd'), 'zstd is not installed')
    def test_zstdIsReadThroughTheLibrary(self):
        from steward import compression
        path = os.path.join(self.top, 'filelists.xml.zst')
        subprocess.run(['zstd', '-q', '-o', path], input=b'x' * 99999, check=True)
        reported = []
        self.assertEqual(b''.join(compression.pieces(path, reported.append)), b'x' * 99999)
        self.assertEqual(reported[-1], os.path.getsize(path))
        self.assertEqual(os.listdir(self.top).count('filelists.xml.zst'), 1)
        with open(path, 'wb') as stream:
            stream.write(b'\0ZCK1 and nothing more')
        with self.assertRaises(self.names['yum'].Errors.YumBaseError):
            list(compression.pieces(path))

    def test_aRepositoryThatMayBeMissingIsLeftOut(self):
        self.repository('gone', [Rpm('beta')], text='skip_if_unavailable=1\n')
        self.server.behave('/gone/repodata/filelists.xml.gz', 404)
        made = self.collect()
        made.collectFileLists()
        self.assertEqual(self.one(made).returnFileText(), self.FILES)
        self.assertIn("'gone'", ''.join(yumIOC.lines('errorlog')))

    def test_changesOfOneDayKeepTheMakersOrder(self):
        from steward import extradata
        markup = (b'<package pkgid="0123456789abcdef"><changelog author="a" date="5">old</changelog>'
                  b'<changelog author="b" date="9">first</changelog>'
                  b'<changelog author="c" date="9">second</changelog>')
        self.assertEqual([text for _, _, text in extradata._parse_changes(markup)],
                         ['second', 'first', 'old'])

    def test_noTemporaryFileHasAName(self):
        made = self.collect()
        made.collectFileLists()
        names = os.listdir(self.path('var/cache/yum'))
        self.assertEqual([name for name in names if name.startswith(('tmp', 'vok-'))], [])

    def test_readingReportsProgressByRepository(self):
        made = self.collect()
        yumIOC.clear()
        made.collectFileLists()
        reads = yumIOC.named('collectProgress')
        self.assertEqual({call[3] for call in reads}, {'base'})
        self.assertEqual(reads[0][1], 0)
        self.assertEqual(reads[-1][1], reads[-1][2])


class Growth(SystemTest):

    def test_twentyRefreshesOpenNoMoreFilesAndKeepNoMemory(self):
        self.install(Rpm('rich', **RICH))
        self.repository('base', [Rpm('rich', '2.0', **RICH)], COMPS)

        def measure():
            gc.collect()
            with open('/proc/self/statm') as stream:
                return len(os.listdir('/proc/self/fd')), int(stream.read().split()[1]) * 4
        made = self.collect()
        for turn in range(23):
            made.collectFileLists()
            self.assertTrue(made.lists.installed[0].hdr)
            made = self.again(made)
            yumIOC.clear()
            if turn == 2:
                files, memory = measure()
        files_after, memory_after = measure()
        self.assertLessEqual(files_after, files)
        self.assertLess(memory_after - memory, 4096)


if __name__ == '__main__':
    unittest.main()
