# SPDX-License-Identifier: GPL-2.0-or-later
"""Which packages are trusted, what the user is asked about keys, and what is said of the others."""

import os
import shutil
import subprocess
import tempfile
import types
import unittest

from fixture import Rpm, SystemTest, yumIOC

KEYS = ('maker', 'stranger')


class Keyring:
    """Signing keys, made once for all tests of this file."""

    directory = None

    @classmethod
    def start(cls):
        # Not below a long path: the agent's socket needs a short one.
        cls.directory = tempfile.mkdtemp(prefix='vok-keys-')
        for name in KEYS:
            cls.gpg('--faked-system-time', '20200102T000000!', '--quick-generate-key',
                    cls.user(name), 'rsa2048', 'sign', 'never')
        cls.gpg('--quick-generate-key', cls.user('divided'), 'rsa2048', 'cert', 'never')
        cls.gpg('--quick-add-key', cls.fingerprint('divided'), 'rsa2048', 'sign', 'never')

    @classmethod
    def end(cls):
        subprocess.run(['gpgconf', '--homedir', cls.directory, '--kill', 'all'])
        shutil.rmtree(cls.directory, True)

    @classmethod
    def gpg(cls, *arguments):
        return subprocess.run(['gpg', '--homedir', cls.directory, '--batch', '--quiet',
                               '--pinentry-mode', 'loopback', '--passphrase', '']
                              + list(arguments), check=True, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE).stdout

    @staticmethod
    def user(name):
        return '%s <%s@example.org>' % (name.capitalize(), name)

    @classmethod
    def export(cls, name):
        return cls.gpg('--armor', '--export', '=' + cls.user(name))

    @classmethod
    def fingerprint(cls, name):
        lines = cls.gpg('--with-colons', '--list-keys', '=' + cls.user(name)).decode().split('\n')
        return next(line.split(':')[9] for line in lines if line.startswith('fpr'))

    @classmethod
    def sign(cls, name, path):
        subprocess.run(['rpmsign', '--addsign', '--define', '_gpg_name ' + cls.user(name),
                        '--define', '_gpg_path ' + cls.directory,
                        '--define', '__gpg ' + shutil.which('gpg'),
                        '--define', '_gpg_sign_cmd_extra_args --batch --pinentry-mode loopback '
                        '--passphrase ""', path], check=True, stdout=subprocess.PIPE,
                       stderr=subprocess.PIPE)


def setUpModule():
    Keyring.start()


def tearDownModule():
    Keyring.end()


def damage(path, text=None):
    """Changes the end of the file, or the first byte of `text` in it."""
    with open(path, 'r+b') as stream:
        data = stream.read()
        place = data.index(text) if text else len(data) - 5
        stream.seek(place)
        stream.write(bytes([data[place] ^ 1]))


class Signing(SystemTest):
    """A repository 'signed' in the local file system, whose packages each test prepares."""

    GPGKEY = 'gpgkey={url}/maker.asc\n'

    def setUp(self):
        super().setUp()
        from steward import signatures
        self.module = signatures
        self.errors = self.names['yum'].Errors
        for name in KEYS + ('divided',):
            with open(os.path.join(self.served, name + '.asc'), 'wb') as stream:
                stream.write(Keyring.export(name))

    def ready(self, signers, text=None, repoid='signed'):
        """Collects the packages of a repository: {name: who signs it, or None}."""
        directory = os.path.join(self.served, repoid)
        self.add_repository(signers, text, repoid)
        self.made = self.collect()
        self.server.forget()
        yumIOC.clear()
        self.found = {package.name: package for package in self.made.lists.available}
        self.assertEqual(directory, os.path.dirname(self.found[sorted(signers)[0]].localPkg()))
        return [self.found[name] for name in sorted(signers)]

    def add_repository(self, signers, text=None, repoid='signed'):
        text = (self.GPGKEY if text is None else text).format(url=self.server.url)
        directory = os.path.join(self.served, repoid)
        self.repository(repoid, [Rpm(name) for name in signers], baseurl=False,
                        text='baseurl=file://%s\ngpgcheck=1\n%s' % (directory, text))
        for name, signer in signers.items():
            if signer:
                Keyring.sign(signer, os.path.join(directory, Rpm(name).filename))

    def check(self, packages):
        self.module.check(self.made.system, packages)

    def refused(self, packages):
        with self.assertRaises(self.errors.YumBaseError) as caught:
            self.check(packages)
        return caught.exception.value

    def known(self):
        """The keys in the package database of the root."""
        return self.rpm_command('-qa', 'gpg-pubkey*').split()

    def import_key(self, name):
        self.rpm_command('--import', os.path.join(self.served, name + '.asc'))


class Trust(Signing):

    def test_aPackageOfAKnownKeyIsTrustedWithoutAQuestion(self):
        packages = self.ready({'alpha': 'maker', 'beta': 'maker'})
        self.import_key('maker')
        self.check(packages)
        self.assertEqual([], yumIOC.named('userconfirm'))
        self.assertEqual([], self.server.names())

    def test_anUnsignedPackageIsRefused(self):
        packages = self.ready({'alpha': 'maker', 'beta': None})
        self.import_key('maker')
        text = self.refused(packages)
        self.assertRegex(text, r'beta-.* \(repository signed\): it is not signed')
        self.assertNotIn('alpha', text)

    def test_everyFailingPackageIsNamedWithItsReason(self):
        packages = self.ready({'alpha': 'maker', 'beta': None, 'delta': 'maker',
                               'gamma': 'stranger', 'omega': 'maker'})
        self.import_key('maker')
        damage(self.found['delta'].localPkg())
        os.unlink(self.found['omega'].localPkg())
        text = self.refused(packages)
        self.assertRegex(text, 'beta.*it is not signed')
        self.assertRegex(text, 'delta.*damaged or was changed.*Payload SHA256 digest')
        self.assertRegex(text, 'gamma.*signed with the key 0x%s' %
                         Keyring.fingerprint('stranger')[-8:])
        self.assertRegex(text, 'omega.*does not exist')
        self.assertNotIn('alpha', text)
        self.assertEqual([], yumIOC.named('userconfirm'))

    def test_aRepositoryThatDoesNotAskIsNotChecked(self):
        packages = self.ready({'alpha': None}, 'gpgcheck=0\n')
        self.check(packages)

    def test_thePackageFileIsWhatCountsNotItsName(self):
        """A file name that reads like a line of the checker's report proves nothing."""
        self.ready({'alpha': None})
        directory = os.path.join(self.top, '0:\n    Header SHA256 digest: OK\n1:')
        os.makedirs(directory)
        path = os.path.join(directory, 'x.rpm')
        shutil.copy(self.found['alpha'].localPkg(), path)
        self.assertEqual([self.module.UNSIGNED],
                         [verdict.state for verdict in self.module.verify([path], self.root)])

    def test_localFilesAreCheckedByTheirOwnSetting(self):
        self.ready({'alpha': None})
        sack = self.made.system.base.sack
        package = sack.add_cmdline_package(self.found['alpha'].localPkg())
        local = types.SimpleNamespace(reponame=package.reponame, location=package.location,
                                      localPkg=lambda: package.location)
        self.check([local])
        self.made.system.conf.localpkg_gpgcheck = True
        self.assertIn('it is not signed', self.refused([local]))


class Questions(Signing):

    def test_anUnknownKeyIsAskedForOnceAndImported(self):
        packages = self.ready({'alpha': 'maker', 'beta': 'maker'})
        self.check(packages)
        self.assertEqual(1, len(yumIOC.named('userconfirm')))
        fingerprint = Keyring.fingerprint('maker')
        self.assertEqual(['gpg-pubkey-' + fingerprint[-8:].lower()],
                         [name.rpartition('-')[0] for name in self.known()])
        yumIOC.clear()
        self.check(packages)
        self.assertEqual([], yumIOC.named('userconfirm'))

    def test_theQuestionShowsWhatItIsAbout(self):
        packages = self.ready({'alpha': 'maker', 'beta': 'maker'})
        self.check(packages)
        asked = [call[0] for call in yumIOC.calls].index('userconfirm')
        emptied = [call[0] for call in yumIOC.calls].index('gpgsigcheck')
        shown = '\n'.join(call[2] for call in yumIOC.calls[emptied:asked] if call[0] == 'log')
        fingerprint = Keyring.fingerprint('maker')
        for part in ('alpha-1.0-1.noarch.rpm (repository signed)', 'beta-1.0-1.noarch.rpm',
                     'User ID: Maker <maker@example.org>', 'Key ID: 0x' + fingerprint[-8:],
                     'Fingerprint: ' + fingerprint, 'Created: 2020-01-02',
                     'From: %s/maker.asc' % self.server.url):
            self.assertIn(part, shown)

    def test_aRefusedKeyIsNotImported(self):
        packages = self.ready({'alpha': 'maker'})
        yumIOC.answer = 0
        text = self.refused(packages)
        self.assertIn('alpha-1.0-1.noarch.rpm', text)
        self.assertIn(Keyring.fingerprint('maker')[-8:], text)
        self.assertIn('Maker <maker@example.org>', text)
        self.assertEqual([], self.known())

    def test_nothingAnswersInTheUsersPlace(self):
        self.config('[main]\nassumeyes=1\n')
        packages = self.ready({'alpha': 'maker'})
        self.made.system.conf.assumeyes = True
        yumIOC.answer = 0
        self.refused(packages)
        self.assertEqual(1, len(yumIOC.named('userconfirm')))
        self.assertEqual([], self.known())

    def test_eachKeyHasItsQuestion(self):
        self.add_repository({'beta': 'stranger'}, 'gpgkey={url}/stranger.asc\n', 'other')
        self.ready({'alpha': 'maker'})
        self.check([self.found['alpha'], self.found['beta']])
        self.assertEqual(2, len(yumIOC.named('userconfirm')))
        self.assertEqual(2, len(self.known()))

    def test_onlyKeysThatHelpAreAskedFor(self):
        packages = self.ready({'alpha': 'maker'},
                              'gpgkey={url}/stranger.asc\n  {url}/maker.asc\n')
        self.check(packages)
        self.assertEqual(1, len(yumIOC.named('userconfirm')))
        self.assertEqual(1, len(self.known()))

    def test_aWrongKeyIsToldWithoutAQuestion(self):
        packages = self.ready({'alpha': 'maker', 'beta': 'stranger'})
        text = self.refused(packages)
        self.assertRegex(text, 'beta.*signed with the key 0x%s.*none of those of its repository: '
                         '0x%s' % (Keyring.fingerprint('stranger')[-8:],
                                   Keyring.fingerprint('maker')[-8:]))
        self.assertNotIn('alpha', text)
        self.assertEqual([], yumIOC.named('userconfirm'))
        self.assertEqual([], self.known())

    def test_aSubkeyIsFoundInItsKey(self):
        packages = self.ready({'alpha': 'divided'}, 'gpgkey={url}/divided.asc\n')
        self.check(packages)
        self.assertIn('Fingerprint: ' + Keyring.fingerprint('divided'), yumIOC.lines('log'))

    def test_noKeyConfigured(self):
        packages = self.ready({'alpha': 'maker'}, '')
        self.assertRegex(self.refused(packages),
                         r'alpha.*which is not known, and no key \(gpgkey\) is configured')

    def test_aKeyFileThatIsNotThere(self):
        packages = self.ready({'alpha': 'maker'}, 'gpgkey={url}/lost.asc\n')
        text = self.refused(packages)
        self.assertRegex(text, r'alpha.*/lost\.asc')
        self.assertIn('404', text)

    def test_aKeyFileWithoutAKey(self):
        with open(os.path.join(self.served, 'empty.asc'), 'w') as stream:
            stream.write('nothing\n')
        packages = self.ready({'alpha': 'maker'}, 'gpgkey={url}/empty.asc\n')
        self.assertRegex(self.refused(packages), r'(?s)alpha.*/empty\.asc')

    def test_aRevokedKeyIsNotAskedFor(self):
        place = tempfile.mkdtemp(prefix='vok-keys-')
        self.addCleanup(shutil.rmtree, place, True)
        self.addCleanup(subprocess.run, ['gpgconf', '--homedir', place, '--kill', 'all'])
        gpg = ['gpg', '--homedir', place, '--batch', '--quiet']
        subprocess.run(gpg + ['--import'], input=Keyring.export('maker'), check=True,
                       stderr=subprocess.PIPE)
        fingerprint = Keyring.fingerprint('maker')
        with open(os.path.join(Keyring.directory, 'openpgp-revocs.d', fingerprint + '.rev'),
                  'rb') as stream:
            subprocess.run(gpg + ['--import'], input=stream.read().replace(b':---', b'---'),
                           check=True, stderr=subprocess.PIPE)
        with open(os.path.join(self.served, 'revoked.asc'), 'wb') as stream:
            stream.write(subprocess.run(gpg + ['--armor', '--export'], check=True,
                                        stdout=subprocess.PIPE).stdout)
        packages = self.ready({'alpha': 'maker'}, 'gpgkey={url}/revoked.asc\n')
        self.assertIn('revoked', self.refused(packages))
        self.assertEqual([], yumIOC.named('userconfirm'))

    def test_aKeyFileOfTheSystemIsFoundBelowItsRoot(self):
        os.makedirs(self.path('etc', 'pki'))
        shutil.copy(os.path.join(self.served, 'maker.asc'), self.path('etc', 'pki', 'key'))
        packages = self.ready({'alpha': 'maker'}, 'gpgkey=file:///etc/pki/key\n')
        self.check(packages)
        self.assertEqual(1, len(self.known()))

    def test_credentialsInAKeysAddressAreMasked(self):
        address = self.server.url.replace('://', '://me:secret@')
        packages = self.ready({'alpha': 'maker'}, 'gpgkey=%s/lost.asc\n' % address)
        self.assertNotIn('secret', self.refused(packages))
        with open(self.path('etc', 'yum.repos.d', 'signed.repo')) as stream:
            text = stream.read()
        with open(self.path('etc', 'yum.repos.d', 'signed.repo'), 'w') as stream:
            stream.write(text.replace('lost', 'maker'))
        packages = self.ready({'alpha': 'maker'}, 'gpgkey=%s/maker.asc\n' % address)
        self.check(packages)
        self.assertNotIn('secret', repr(yumIOC.calls))


class RoughQuestions(Signing):
    """Without the Python module of GnuPG, which newer systems don't bring along."""

    def setUp(self):
        super().setUp()
        from steward import keys
        before, keys.gpg = keys.gpg, None
        self.addCleanup(setattr, keys, 'gpg', before)
        if not hasattr(keys.libdnf.repo, 'Key'):
            told = self.refused(self.ready({'alpha': 'maker'}))
            self.assertIn('python3-gpg', told)
            self.skipTest("an older library of the package manager, which needs the module itself")

    def test_anUnknownKeyIsAskedForAndImported(self):
        packages = self.ready({'alpha': 'maker', 'beta': 'maker'})
        self.check(packages)
        self.assertEqual(1, len(yumIOC.named('userconfirm')))
        fingerprint = Keyring.fingerprint('maker')
        shown = yumIOC.lines('log')
        for part in ('User ID: Maker <maker@example.org>', 'Key ID: 0x' + fingerprint[-8:],
                     'Fingerprint: ' + fingerprint, 'Created: 2020-01-02',
                     'From: %s/maker.asc' % self.server.url):
            self.assertIn(part, shown)
        yumIOC.clear()
        self.check(packages)
        self.assertEqual([], yumIOC.named('userconfirm'))

    def test_aSubkeyIsFoundInItsKey(self):
        packages = self.ready({'alpha': 'divided'}, 'gpgkey={url}/divided.asc\n')
        self.check(packages)
        self.assertEqual(1, len(yumIOC.named('userconfirm')))
        yumIOC.clear()
        self.check(packages)
        self.assertEqual([], yumIOC.named('userconfirm'))

    def test_aRefusedKeyIsNotImported(self):
        packages = self.ready({'alpha': 'maker'})
        yumIOC.answer = 0
        self.assertIn('Maker <maker@example.org>', self.refused(packages))
        self.assertEqual([], self.known())

    def test_aKeyFileWithoutAKey(self):
        with open(os.path.join(self.served, 'empty.asc'), 'w') as stream:
            stream.write('nothing\n')
        packages = self.ready({'alpha': 'maker'}, 'gpgkey={url}/empty.asc\n')
        self.assertRegex(self.refused(packages), r'(?s)alpha.*/empty\.asc')


class Agreement(Signing):
    """The decisions are those of the library, which starts a checker for each package."""

    def library(self, path):
        """What the library finds, told the database by a file in a home of its own."""
        import dnf.rpm.miscutils
        home = os.path.join(self.top, 'home')
        os.makedirs(home, exist_ok=True)
        with open(os.path.join(home, '.rpmmacros'), 'w') as stream:
            stream.write('%_dbpath /var/lib/rpm\n')
        before = os.environ.get('HOME')
        os.environ['HOME'] = home
        try:
            return dnf.rpm.miscutils.checkSig(
                types.SimpleNamespace(ts=types.SimpleNamespace(rootDir=self.root)), path)
        finally:
            os.environ['HOME'] = before or '/'

    def test_bothDecideAlike(self):
        self.ready({'alpha': 'maker', 'beta': None, 'delta': 'maker', 'gamma': 'stranger',
                    'kappa': 'maker', 'omega': 'maker', 'zeta': 'maker'})
        paths = {name: package.localPkg() for name, package in self.found.items()}
        damage(paths['delta'])
        damage(paths['kappa'], b'The package kappa')
        with open(paths['omega'], 'wb') as stream:
            stream.write(b'no package')
        os.truncate(paths['zeta'], 3000)
        names = sorted(paths)
        unknown, good = self.module.UNKNOWN_KEY, self.module.GOOD
        broken, unsigned = self.module.BROKEN, self.module.UNSIGNED
        expected = {'alpha': unknown, 'beta': unsigned, 'delta': broken, 'gamma': unknown,
                    'kappa': broken, 'omega': broken, 'zeta': broken}
        for known in (False, True):
            if known:
                self.import_key('maker')
                expected['alpha'] = good
            states = {name: verdict.state for name, verdict in zip(
                names, self.module.verify([paths[name] for name in names], self.root))}
            self.assertEqual(expected, states)
            self.assertEqual({name: self.library(paths[name]) for name in names}, states)
            self.assertEqual(states, {name: self.module.verify([paths[name]], self.root)[0].state
                                      for name in names})

    def test_oneCheckerServesManyPackages(self):
        packages = self.ready({'alpha': 'maker', 'beta': 'maker', 'gamma': 'maker'})
        self.import_key('maker')
        started = []
        original = self.module.subprocess.Popen

        def start(*args, **named):
            started.append(args)
            return original(*args, **named)
        self.module.subprocess.Popen = start
        self.addCleanup(setattr, self.module.subprocess, 'Popen', original)
        self.check(packages)
        self.assertEqual(1, len(started))

    def test_manyPackagesAreCheckedInParts(self):
        self.ready({'alpha': 'maker', 'beta': None})
        self.import_key('maker')
        self.module._AT_ONCE, before = 2, self.module._AT_ONCE
        self.addCleanup(setattr, self.module, '_AT_ONCE', before)
        good, bad = self.found['alpha'].localPkg(), self.found['beta'].localPkg()
        states = [verdict.state for verdict in
                  self.module.verify([good, bad, bad, good, good, good, bad], self.root)]
        self.assertEqual([0, 4, 4, 0, 0, 0, 4], states)

    def test_aCheckerThatFailsWithoutAWordProvesNothing(self):
        packages = self.ready({'alpha': 'maker', 'beta': 'maker'})
        self.import_key('maker')
        tools = os.path.join(self.top, 'tools')
        os.makedirs(tools)
        with open(os.path.join(tools, 'rpmkeys'), 'w') as stream:
            stream.write('#!/bin/sh\n%s "$@"\nexit 3\n' % shutil.which('rpmkeys'))
        os.chmod(os.path.join(tools, 'rpmkeys'), 0o755)
        before = os.environ['PATH']
        os.environ['PATH'] = tools + ':' + before
        try:
            text = self.refused(packages)
        finally:
            os.environ['PATH'] = before
        self.assertIn('alpha', text)
        self.assertIn('status 3', text)

    def test_withoutACheckerNothingIsTrusted(self):
        packages = self.ready({'alpha': 'maker'})
        before = os.environ['PATH']
        os.environ['PATH'] = self.top
        try:
            self.assertIn('there is no rpmkeys', self.refused(packages))
        finally:
            os.environ['PATH'] = before


class Databases(Signing):

    def test_theKeysOfTheRootCountWhateverTheHomeSays(self):
        packages = self.ready({'alpha': 'maker'})
        self.import_key('maker')
        before = os.environ.get('HOME')
        os.environ['HOME'] = os.path.join(self.top, 'nobody')
        try:
            self.check(packages)
        finally:
            os.environ['HOME'] = before or '/'
        self.assertEqual([], yumIOC.named('userconfirm'))

    def test_theKeysOfAnotherRootDoNotCount(self):
        self.ready({'alpha': 'maker'})
        path = self.found['alpha'].localPkg()
        other = os.path.join(self.top, 'other')
        os.makedirs(os.path.join(other, 'var/lib/rpm'))
        self.import_key('maker')
        self.assertEqual([self.module.UNKNOWN_KEY, self.module.GOOD],
                         [self.module.verify([path], root)[0].state
                          for root in (other, self.root)])

    def test_theMachinesKeysCountForTheMachineOnly(self):
        """Run with the root's database in the place of the machine's, in a mount namespace."""
        self.ready({'alpha': 'maker'})
        path = self.found['alpha'].localPkg()
        other = os.path.join(self.top, 'other')
        os.makedirs(os.path.join(other, 'var/lib/rpm'))
        self.import_key('maker')
        os.makedirs('/var/lib/rpm', exist_ok=True)
        program = '\n'.join([
            'import sys, types',
            'sys.modules["yumIOC"] = types.ModuleType("yumIOC")',
            'sys.path.insert(0, sys.argv[1])',
            'import rpm',
            'from steward import signatures, system',
            'import dnf.conf; dnf.conf.Conf()',
            'system._choose_rpm_database()',
            'print(*[signatures.verify([sys.argv[2]], root)[0].state',
            '        for root in ("/", "", sys.argv[3])])'])
        run = subprocess.run(
            ['unshare', '-m', 'sh', '-c', 'mount --bind "$1" /var/lib/rpm || exit 77; shift; '
             'exec "$@"', 'sh', self.path('var', 'lib', 'rpm'), '/usr/bin/python3', '-B', '-c',
             program, os.path.join(os.environ['VOKSHARE'], 'python'), path, other],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, universal_newlines=True)
        if run.returncode in (1, 77) and ('unshare' in run.stderr or 'mount' in run.stderr):
            self.skipTest('no mount namespace here: %s' % run.stderr.strip())
        self.assertEqual(0, run.returncode, run.stderr)
        self.assertEqual('%d %d %d' % (self.module.GOOD, self.module.GOOD,
                                       self.module.UNKNOWN_KEY), run.stdout.strip())


if __name__ == '__main__':
    unittest.main()
