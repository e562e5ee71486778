# SPDX-License-Identifier: GPL-2.0-or-later
"""What a collection asks of the servers, what it makes of their failures, and what it tells the
program's progress meanwhile."""

import base64
import hashlib
import os
import subprocess
import time
import unittest

from fixture import COMPS, Rpm, SystemTest, make_repository, nevras, yumIOC


def acts(repositories):
    """The act numbers that the program reaches, by its rule for parallel downloads."""
    reached, act, step = [], 0, None
    for call in yumIOC.named('collectGrabMeterStart', 'collectProgress'):
        if call[0] == 'collectProgress':
            if step == call[2:]:
                continue
            kind, step = 5, call[2:]
        else:
            step = None
            last = call[2].rsplit('/', 1)[-1]
            kind = 0 if last.startswith('metalink') else 1 if last.startswith('repomd') \
                else 2 if last.startswith('group_gz') else 3
        if kind < 2:
            act = 2 * (act // 2) + kind + 1
        else:
            base = (2 if kind < 4 else 4) * repositories
            act = max(act, base)
            act = base + 2 * ((act - base) // 2) + kind - (1 if kind < 4 else 3)
        reached.append(act)
    return reached


class Requests(SystemTest):

    def test_fileListsAndChangeLogsAreNeitherAskedForNorLoaded(self):
        self.repository('base', [Rpm('alpha')], COMPS)
        self.collect()
        self.assertEqual(self.server.names(), ['repomd.xml', 'comps.xml.gz', 'primary.xml.gz'])

    def test_theCacheCostsNoRequest(self):
        self.repository('base', [Rpm('alpha')])
        self.collect()
        self.server.forget()
        from steward import session
        session._Process.collected = False
        made = self.collect()
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual(self.server.names(), [])

    def test_aRefreshAsksForRepomdOnlyIfNothingChanged(self):
        self.repository('base', [Rpm('alpha')], COMPS)
        made = self.collect()
        self.server.forget()
        made = self.again(made)
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual(self.server.names(), ['repomd.xml'])

    def test_aRefreshShowsTheChange(self):
        self.repository('base', [Rpm('alpha')], COMPS)
        made = self.collect()
        make_repository(os.path.join(self.served, 'base'), [Rpm('alpha'), Rpm('beta')], COMPS)
        self.server.forget()
        made = self.again(made)
        self.assertEqual(nevras(made.lists.available),
                         ['alpha-1.0-1.noarch', 'beta-1.0-1.noarch'])
        self.assertEqual(self.server.names(), ['repomd.xml', 'primary.xml.gz'])

    def test_expiredMetadataIsFetchedAnew(self):
        self.repository('base', [Rpm('alpha')], text='metadata_expire=100\n')
        made = self.collect()
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        cache = self.path('var/cache/yum')
        for top, _, names in os.walk(cache):
            for name in names:
                if name == 'primary.xml.gz':
                    os.utime(os.path.join(top, name), (time.time() - 200,) * 2)
        make_repository(os.path.join(self.served, 'base'), [Rpm('beta')])
        from steward import session
        session._Process.collected = False
        self.assertEqual(nevras(self.collect().lists.available), ['beta-1.0-1.noarch'])

    def test_metadataCountsAsFreshWhenOnlyItsOtherPartsChanged(self):
        self.repository('base', [Rpm('alpha')], text='metadata_expire=100\n')
        self.collect()
        for top, _, names in os.walk(self.path('var/cache/yum')):
            for name in names:
                os.utime(os.path.join(top, name), (time.time() - 200,) * 2)
        make_repository(os.path.join(self.served, 'base'), [Rpm('alpha')], COMPS)
        from steward import session
        session._Process.collected = False
        self.server.forget()
        self.collect()
        self.assertEqual(self.server.names(), ['repomd.xml', 'comps.xml.gz'])
        session._Process.collected = False
        self.server.forget()
        self.collect()
        self.assertEqual(self.server.names(), [])

    def test_aChangedRepositoryFileExpiresTheCache(self):
        self.repository('base', [Rpm('alpha')])
        self.collect()
        self.server.forget()
        os.utime(self.path('etc/yum.repos.d/base.repo'), (time.time() + 5,) * 2)
        from steward import session
        session._Process.collected = False
        self.collect()
        self.assertEqual(self.server.names(), ['repomd.xml'])

    def test_theFlushAfterAnApplyDoesNotAskTheServersAgain(self):
        self.repository('base', [Rpm('alpha')])
        made = self.collect()
        made._applied = True
        self.server.forget()
        made.flush()
        self.again(made)
        self.assertEqual(self.server.names(), [])

    def test_anIncompleteCacheIsFetchedAnew(self):
        self.repository('base', [Rpm('alpha')])
        made = self.collect()
        made.cleanMetadata()
        from steward import session
        session._Process.collected = False
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_noStagingDirectoryIsLeftBehind(self):
        self.repository('base', [Rpm('alpha')], COMPS)
        made = self.collect()
        self.server.behave('/base/repodata/repomd.xml', 500)
        with self.assertRaises(self.names['yum'].Errors.RepoError):
            self.again(made)
        left = [name for _, folders, files in os.walk(self.path('var/cache/yum'))
                for name in folders + files if name.startswith('vok-')]
        self.assertEqual(left, [])

    def test_redirectsAreFollowed(self):
        self.repository('base', [Rpm('alpha')])
        for name in ('repomd.xml', 'primary.xml.gz'):
            os.rename(os.path.join(self.served, 'base/repodata', name),
                      os.path.join(self.served, name))
            self.server.behave('/base/repodata/' + name,
                               ['redirect', '%s/%s' % (self.server.url, name)])
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_credentialsAreSentAndNeverShown(self):
        self.repository('base', [Rpm('alpha')], text='username=carol\npassword=s3cret\n')
        self.server.demand('Basic ' + base64.b64encode(b'carol:s3cret').decode())
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])
        url = self.server.url.replace('://', '://carol:s3cret@')
        with open(self.path('etc/yum.repos.d/base.repo'), 'w') as stream:
            stream.write('[base]\nname=base\nbaseurl=%s/nowhere\n' % url)
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.collect()
        self.assertNotIn('s3cret', caught.exception.value)
        self.assertNotIn('s3cret', repr(yumIOC.calls))

    def test_aUrlThatEndsInAQueryGetsThePathAppended(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='baseurl=%s/none?user=carol&word=s3cret&path=/ '
                             '%s/vantry?user=carol&word=s3cret&path=/base\n'
                             % (self.server.url, self.server.url))
        made = self.collect()
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        made.collectFileLists()
        self.assertIn('/vantry?user=carol&word=s3cret&path=/base/repodata/repomd.xml',
                      [path for path, _ in self.server.requests()])
        self.server.behave('/vantry', 500)
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.again(made)
        self.assertNotIn('s3cret', caught.exception.value)
        self.assertNotIn('s3cret', repr(yumIOC.calls))

    def test_aFileRepositoryWorks(self):
        make_repository(os.path.join(self.served, 'local'), [Rpm('alpha')])
        with open(self.path('etc/yum.repos.d/local.repo'), 'w') as stream:
            stream.write('[local]\nname=l\nbaseurl=file://%s/local\n' % self.served)
        made = self.collect()
        self.assertEqual(made.lists.available[0].localPkg(),
                         os.path.join(self.served, 'local', 'alpha-1.0-1.noarch.rpm'))


class Failures(SystemTest):

    def refused(self, kind='RepoError'):
        with self.assertRaises(getattr(self.names['yum'].Errors, kind)) as caught:
            self.collect()
        return caught.exception.value

    def test_aRepositoryThatIsDownIsNamedWithTheCause(self):
        self.repository('base', [Rpm('alpha')])
        self.server.behave('/base/repodata/repomd.xml', 404)
        text = self.refused()
        self.assertIn("'base'", text)
        self.assertIn('404', text)
        self.assertIn('repomd.xml', text)

    def test_exhaustedMirrorsHaveTheirOwnException(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='baseurl=http://127.0.0.1:1/a http://127.0.0.1:1/b\n')
        text = self.refused('NoMoreMirrorsRepoError')
        self.assertIn("'base'", text)
        self.assertIn('http://127.0.0.1:1/b', text)

    def test_theNextBaseUrlIsTriedAfterADeadOne(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='baseurl=http://127.0.0.1:1/a %s/base\n' % self.server.url)
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_aRepositoryThatMayBeMissingIsLeftOutWithAWarning(self):
        self.repository('base', [Rpm('alpha')])
        self.repository('gone', [Rpm('beta')], text='skip_if_unavailable=1\n')
        self.server.behave('/gone/repodata/repomd.xml', 503)
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])
        warnings = '\n'.join(yumIOC.lines('errorlog'))
        self.assertIn("'gone'", warnings)

    def test_aRepositoryWhoseContentsFailMayBeMissingToo(self):
        self.repository('base', [Rpm('alpha')])
        self.repository('gone', [Rpm('beta')], text='skip_if_unavailable=1\n')
        self.server.behave('/gone/repodata/primary.xml.gz', 404)
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_aTruncatedFileIsNotUsed(self):
        self.repository('base', [Rpm('alpha')])
        self.server.behave('/base/repodata/primary.xml.gz', 'truncate')
        self.assertIn('primary.xml.gz', self.refused())

    def test_aFileWithTheWrongContentIsNotUsed(self):
        self.repository('base', [Rpm('alpha')])
        path = os.path.join(self.served, 'base/repodata/primary.xml.gz')
        with open(path, 'rb') as stream:
            data = stream.read()
        with open(path, 'wb') as stream:
            stream.write(data[:-20] + bytes(20))
        self.assertIn('primary.xml.gz', self.refused())

    def test_aBrokenRepomdIsARepoError(self):
        self.repository('base', [Rpm('alpha')])
        with open(os.path.join(self.served, 'base/repodata/repomd.xml'), 'w') as stream:
            stream.write('<repomd><data')
        self.assertIn("'base' cannot be read: repomd.xml: ", self.refused())

    def test_aRepomdInAnUnknownEncodingIsARepoError(self):
        self.repository('base', [Rpm('alpha')])
        with open(os.path.join(self.served, 'base/repodata/repomd.xml'), 'w') as stream:
            stream.write('<?xml version="1.0" encoding="utf-99"?><repomd/>')
        self.assertIn("'base' cannot be read: repomd.xml: ", self.refused())

    def test_aHangingServerEndsWithinTheTimeout(self):
        self.config('[main]\ntimeout=1\n')
        self.repository('base', [Rpm('alpha')])
        self.server.behave('/base/repodata/repomd.xml', 'hang')
        begin = time.monotonic()
        text = self.refused()
        self.assertLess(time.monotonic() - begin, 10)
        self.assertIn("'base'", text)
        self.assertIn('Timeout', text)
        self.assertEqual(self.server.names(), ['repomd.xml'])

    def test_aHangingMirrorListEndsWithinTheTimeout(self):
        self.config('[main]\ntimeout=1\n')
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='mirrorlist=%s/mirrors\n' % self.server.url)
        self.server.behave('/mirrors', 'hang')
        begin = time.monotonic()
        self.assertIn("'base'", self.refused())
        self.assertLess(time.monotonic() - begin, 10)
        self.assertEqual(self.server.names(), ['mirrors'])

    def test_afterASilentServerTheNextBaseUrlIsTried(self):
        self.config('[main]\ntimeout=1\n')
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='baseurl=%s/silent %s/base\n' % (self.server.url, self.server.url))
        self.server.behave('/silent/repodata/repomd.xml', 'hang')
        self.server.behave('/silent/repodata/primary.xml.gz', 'hang')
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_aFailedRefreshLeavesTheOldCacheUsable(self):
        self.repository('base', [Rpm('alpha')])
        made = self.collect()
        make_repository(os.path.join(self.served, 'base'), [Rpm('beta')])
        self.server.behave('/base/repodata/primary.xml.gz', 404)
        with self.assertRaises(self.names['yum'].Errors.RepoError):
            self.again(made)
        from steward import session
        session._Process.collected = session._Process.ask = False
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_anUnwritableCacheIsARepoError(self):
        self.repository('base', [Rpm('alpha')])
        with open(self.path('var/cache/yum'), 'w'):
            pass
        self.assertIn('/var/cache/yum', self.refused())


class FileDependencies(SystemTest):

    def test_aBaseWithFileListsKnowsEveryPathAndLeavesTheCacheGood(self):
        self.repository('base', [Rpm('alpha', files=('/srv/deep/path',))])
        made = self.collect()
        query = made.system.base.sack.query().filter(file='/srv/deep/path')
        self.assertEqual(len(query), 0)
        self.server.forget()
        from steward import meters, session, system
        full = system.System(meters.Collection(), file_lists=True)
        full.load(False)
        self.assertEqual(self.server.names(), ['repomd.xml', 'filelists.xml.gz'])
        self.assertEqual(len(full.base.sack.query().filter(file='/srv/deep/path')), 1)
        self.server.forget()
        session._Process.collected = False
        made = self.collect()
        self.assertEqual(self.server.names(), [])
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        again = system.System(meters.Collection(), file_lists=True)
        again.load(False)
        self.assertEqual(self.server.names(), [])
        self.assertEqual(len(again.base.sack.query().filter(file='/srv/deep/path')), 1)


class Mirrors(SystemTest):

    def test_aMirrorListWithADeadMirrorWorks(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='mirrorlist=%s/mirrors\n' % self.server.url)
        with open(os.path.join(self.served, 'mirrors'), 'w') as stream:
            stream.write('http://127.0.0.1:1/dead\n%s/base\n' % self.server.url)
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual([call[2] for call in yumIOC.named('collectGrabMeterStart')],
                         ['/base/metalink', '/base/repomd.xml', '/base/primary'])

    def test_aMirrorListThatIsDownIsARepoError(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='mirrorlist=%s/mirrors\n' % self.server.url)
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.collect()
        self.assertIn("'base'", caught.exception.value)

    def metalink(self, digest, older=None):
        alternates = '' if older is None else (
            '<mm0:alternates><mm0:alternate><mm0:timestamp>1</mm0:timestamp><size>1</size>'
            '<verification><hash type="sha256">%s</hash></verification></mm0:alternate>'
            '</mm0:alternates>' % older)
        with open(os.path.join(self.served, 'metalink'), 'w') as stream:
            stream.write(
                '<?xml version="1.0" encoding="utf-8"?><metalink version="3.0" '
                'xmlns="http://www.metalinker.org/" type="dynamic" '
                'xmlns:mm0="http://fedorahosted.org/mirrormanager"><files>'
                '<file name="repomd.xml"><mm0:timestamp>2</mm0:timestamp>'
                '<verification><hash type="sha256">%s</hash></verification>%s'
                '<resources><url protocol="http" type="http" preference="100">'
                '%s/base/repodata/repomd.xml</url></resources></file></files></metalink>'
                % (digest, alternates, self.server.url))

    def digest(self):
        with open(os.path.join(self.served, 'base/repodata/repomd.xml'), 'rb') as stream:
            return hashlib.sha256(stream.read()).hexdigest()

    def linked(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='metalink=%s/metalink\n' % self.server.url)

    def test_aMetalinkLeadsToTheMirrors(self):
        self.linked()
        self.metalink(self.digest())
        made = self.collect()
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        self.assertNotIn('filelists.xml.gz', self.server.names())
        self.server.forget()
        self.again(made)
        self.assertEqual(self.server.names(), ['metalink', 'repomd.xml'])

    def test_aRepomdThatTheMetalinkDoesNotVouchForIsRefused(self):
        self.linked()
        self.metalink('0' * 64)
        with self.assertRaises(self.names['yum'].Errors.RepoError):
            self.collect()

    def test_neitherTheNewestNorAnOlderRepomdFitsSoItIsRefused(self):
        self.linked()
        self.metalink('0' * 64, '1' * 64)
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.collect()
        self.assertIn("'base'", caught.exception.value)

    def test_mirrorsOfAListGetTheCredentials(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='mirrorlist=%s/mirrors\nusername=carol\npassword=s3cret\n'
                        % self.server.url)
        with open(os.path.join(self.served, 'mirrors'), 'w') as stream:
            stream.write('# mirrors\n%s/base\n' % self.server.url)
        self.server.demand('Basic ' + base64.b64encode(b'carol:s3cret').decode())
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual(self.server.names(), ['mirrors', 'repomd.xml', 'primary.xml.gz'])

    def test_aMirrorListThatNamesNoneIsARepoError(self):
        self.repository('base', [Rpm('alpha')], baseurl=False,
                        text='mirrorlist=%s/mirrors\n' % self.server.url)
        with open(os.path.join(self.served, 'mirrors'), 'w') as stream:
            stream.write('# nothing here\n')
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.collect()
        self.assertIn("'base'", caught.exception.value)

    def test_aMetalinkThatIsNoXmlIsARepoErrorThatNamesTheRepository(self):
        self.linked()
        with open(os.path.join(self.served, 'metalink'), 'w') as stream:
            stream.write('<html><p>Please log in.</html>')
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.collect()
        self.assertIn("repository 'base': metalink: ", caught.exception.value)

    def test_baseUrlsDoWithoutTheListOfMirrors(self):
        self.repository('base', [Rpm('alpha')],
                        text='mirrorlist=%s/mirrors\n' % self.server.url)
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])

    def test_anOlderRepomdThatTheMetalinkStillVouchesForIsUsed(self):
        self.linked()
        self.metalink('0' * 64, self.digest())
        self.assertEqual(nevras(self.collect().lists.available), ['alpha-1.0-1.noarch'])


class Signatures(SystemTest):

    def setUp(self):
        super().setUp()
        self.home = os.path.join(self.top, 'gnupg')
        os.mkdir(self.home, 0o700)
        self.addCleanup(self.gpgconf)
        self.gpg('--passphrase', '', '--quick-generate-key', 'Maker <maker@example.org>',
                 'rsa2048', 'sign', 'never')
        self.gpg('--armor', '--export', '--output', os.path.join(self.served, 'key'))

    def gpg(self, *arguments):
        subprocess.run(['gpg', '--homedir', self.home, '--batch', '--yes', '--quiet']
                       + list(arguments), check=True, stderr=subprocess.PIPE)

    def gpgconf(self):
        subprocess.run(['gpgconf', '--homedir', self.home, '--kill', 'all'], check=False)

    def signed(self):
        self.repository('base', [Rpm('alpha')],
                        text='repo_gpgcheck=1\ngpgkey=%s/key\n' % self.server.url)
        self.gpg('--detach-sign', '--armor',
                 os.path.join(self.served, 'base/repodata/repomd.xml'))

    def test_metadataSignedWithAKeyThatTheUserTrustsIsUsed(self):
        self.signed()
        made = self.collect()
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual(len(yumIOC.named('userconfirm')), 1)
        self.assertTrue(any('maker@example.org' in line for line in yumIOC.lines('log')))
        yumIOC.clear()
        made = self.again(made)
        self.assertEqual(nevras(made.lists.available), ['alpha-1.0-1.noarch'])
        self.assertEqual(yumIOC.named('userconfirm'), [])

    def test_aKeyThatTheUserRefusesIsNotTrusted(self):
        self.signed()
        yumIOC.answer = 0
        for times in (1, 2):
            with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
                self.collect()
            self.assertIn("'base'", caught.exception.value)
            self.assertEqual(len(yumIOC.named('userconfirm')), times)

    def test_aKeyIsNotTrustedWhereNobodyCanBeAsked(self):
        self.signed()
        question = yumIOC.userconfirm
        self.addCleanup(setattr, yumIOC, 'userconfirm', question)
        del yumIOC.userconfirm
        with self.assertRaises(self.names['yum'].Errors.RepoError) as caught:
            self.collect()
        self.assertIn("'base'", caught.exception.value)
        self.assertTrue(any('maker@example.org' in line for line in yumIOC.lines('errorlog')))

    def test_unsignedMetadataIsRefusedWhereASignatureIsAskedFor(self):
        self.signed()
        os.unlink(os.path.join(self.served, 'base/repodata/repomd.xml.asc'))
        with self.assertRaises(self.names['yum'].Errors.RepoError):
            self.collect()

    def test_metadataChangedAfterSigningIsRefused(self):
        self.signed()
        with open(os.path.join(self.served, 'base/repodata/repomd.xml'), 'a') as stream:
            stream.write('<!-- changed -->')
        with self.assertRaises(self.names['yum'].Errors.RepoError):
            self.collect()


class Progress(SystemTest):

    def test_aColdCollectionSendsOneMeterOfEachKindAndARead(self):
        self.repository('base', [Rpm('alpha')], COMPS)
        self.collect()
        starts = yumIOC.named('collectGrabMeterStart')
        self.assertEqual([call[2] for call in starts],
                         ['/base/repomd.xml', '/base/group_gz', '/base/primary'])
        size = os.path.getsize(os.path.join(self.served, 'base/repodata/primary.xml.gz'))
        self.assertEqual(starts[2][5], size)
        ends = yumIOC.named('collectGrabMeterEnd')
        self.assertEqual([id(call[1]) for call in ends], [id(call[1]) for call in starts])
        self.assertEqual(ends[2][2], size)
        self.assertEqual(yumIOC.named('collectProgress'), [('collectProgress', -1, -1, 'base')])
        self.assertEqual(max(call[2] for call in yumIOC.named('collectGrabMeterUpdate')
                             if call[1] is starts[2][1]), size)

    def test_theActsOfTwoRepositoriesRiseEvenlyToTheEnd(self):
        self.repository('one', [Rpm('alpha')], COMPS)
        self.repository('two', [Rpm('beta')], COMPS)
        self.collect()
        self.assertEqual(acts(2), [2, 4, 5, 6, 7, 8, 10, 12])

    def test_theActsOfTheExtraDataRiseEvenlyToTheEnd(self):
        self.repository('one', [Rpm('alpha')])
        self.repository('two', [Rpm('beta')])
        made = self.collect()
        yumIOC.clear()
        made.collectFileLists()
        self.assertEqual([call[2] for call in yumIOC.named('collectGrabMeterStart')],
                         ['/one/filelists.xml', '/two/filelists.xml'])
        self.assertEqual(acts(2), [6, 8, 10, 12])

    def test_noBatchCallsAreMade(self):
        self.repository('base', [Rpm('alpha')])
        self.collect().collectFileLists()
        self.assertEqual([call for call in yumIOC.calls if 'Multi' in call[0]], [])


if __name__ == '__main__':
    unittest.main()
