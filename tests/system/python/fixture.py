# SPDX-License-Identifier: GPL-2.0-or-later
"""What the tests of the script stand on: built packages, repositories, a server, a root, and a
recorder in the place of the program's module."""

import functools
import hashlib
import os
import shutil
import subprocess
import sys
import tempfile
import time
import types
import unittest

from server import Server

SHARE = os.environ.get('VOKSHARE') or os.path.join(
    os.path.dirname(os.path.abspath(__file__)), '..', '..', '..', 'share')

_SPEC = '''
Name: {name}
{epoch}
Version: {version}
Release: {release}
Summary: {summary}
License: GPLv2+
Group: {group}
URL: http://example.org/{name}
Vendor: Example Maker
Packager: Example Packager
{arch}
{tags}
%description
{description}
%install
{install}
%files
{files}{scripts}
%changelog
{changelog}
'''


class Rpm:
    """The recipe of one package."""

    def __init__(self, name, version='1.0', release='1', arch='noarch', epoch=None, files=None,
                 tags=(), group='Applications', summary=None, description=None, changelog=None,
                 scripts=()):
        self.name = name
        self.version = version
        self.release = release
        self.arch = arch
        self.epoch = epoch
        self.files = ('/usr/share/%s/readme' % name,) if files is None else tuple(files)
        self.tags = tuple(tags)
        self.group = group
        self.summary = summary or 'The package %s' % name
        self.description = description or 'What %s is for.' % name
        self.changelog = changelog or ''
        # (section such as '%post', its text) each.
        self.scripts = tuple(scripts)

    @property
    def filename(self):
        return '%s-%s-%s.%s.rpm' % (self.name, self.version, self.release, self.arch)

    def spec(self):
        install = ''.join('mkdir -p "%%{buildroot}%s"; echo %s > "%%{buildroot}%s"\n'
                          % (os.path.dirname(path), self.name, path) for path in self.files)
        return _SPEC.format(
            name=self.name, version=self.version, release=self.release, summary=self.summary,
            description=self.description, group=self.group,
            epoch='Epoch: %s' % self.epoch if self.epoch is not None else '',
            arch='BuildArch: noarch' if self.arch == 'noarch' else '',
            tags='\n'.join(self.tags), install=install or 'mkdir -p %{buildroot}',
            files='\n'.join('"%s"' % path for path in self.files), changelog=self.changelog,
            scripts=''.join('\n%s\n%s' % script for script in self.scripts))


@functools.lru_cache(None)
def _store():
    directory = os.environ.get('VOK_TEST_RPMS') or os.path.join(tempfile.gettempdir(),
                                                                'vok-test-rpms-%d' % os.getuid())
    os.makedirs(directory, exist_ok=True)
    return directory


def build(rpm):
    """The path of the built package. Built packages are kept and found by their recipe."""
    spec = rpm.spec()
    key = hashlib.sha256((spec + rpm.arch).encode('utf-8', 'surrogateescape')).hexdigest()[:20]
    kept = os.path.join(_store(), key, rpm.filename)
    if os.path.exists(kept):
        return kept
    with tempfile.TemporaryDirectory() as top:
        path = os.path.join(top, 'p.spec')
        with open(path, 'wb') as stream:
            stream.write(spec.encode('utf-8', 'surrogateescape'))
        subprocess.run(['rpmbuild', '-bb', '--quiet', '--nodeps', '--target', rpm.arch,
                        '--define', '_topdir ' + top, '--define', '_build_id_links none',
                        '--define', 'debug_package %{nil}', '--define', '_rpmdir ' + top,
                        '--define', '__os_install_post %{nil}',
                        '--define', '_invalid_encoding_terminates_build 0',
                        path], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        os.makedirs(os.path.dirname(kept), exist_ok=True)
        shutil.move(os.path.join(top, rpm.arch, rpm.filename), kept + '.new')
        os.rename(kept + '.new', kept)
    return kept


def make_repository(directory, rpms, comps=None, options=()):
    """Fills `directory` with the packages and makes (or makes again) its metadata."""
    os.makedirs(directory, exist_ok=True)
    for name in os.listdir(directory):
        if name.endswith('.rpm'):
            os.unlink(os.path.join(directory, name))
    for rpm in rpms:
        shutil.copy2(build(rpm), directory)
    # Releases differ in how they compress by themselves.
    arguments = ['createrepo_c', '--quiet', '--simple-md-filenames', '--no-database',
                 '--general-compress-type', 'gz', *options]
    if comps is not None:
        path = os.path.join(directory, 'comps.xml')
        with open(path, 'w') as stream:
            stream.write(comps)
        arguments += ['--groupfile', path]
    shutil.rmtree(os.path.join(directory, 'repodata'), ignore_errors=True)
    subprocess.run(arguments + [directory], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.PIPE)


COMPS = '''<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE comps PUBLIC "-//Red Hat, Inc.//DTD Comps info//EN" "comps.dtd">
<comps>
  <group>
    <id>tools</id><name>Tools</name><description>Some tools</description>
    <default>true</default><uservisible>true</uservisible>
    <packagelist>
      <packagereq type="mandatory">alpha</packagereq>
      <packagereq type="default">beta</packagereq>
      <packagereq type="optional">gamma</packagereq>
      <packagereq type="conditional" requires="alpha">delta</packagereq>
    </packagelist>
  </group>
  <group>
    <id>hidden</id><name>Hidden</name><default>false</default><uservisible>false</uservisible>
    <packagelist><packagereq type="mandatory">gamma</packagereq></packagelist>
  </group>
</comps>
'''


class Recorder(types.ModuleType):
    """Stands in for the program's module and writes down every call, checking argument types."""

    ANSWER = 1

    def __init__(self):
        super().__init__('yumIOC')
        self.calls = []
        self.answer = 1
        # Function name -> what is called with the arguments; its result is the function's.
        self.hooks = {}
        for name, form in _FORMS.items():
            setattr(self, name, functools.partial(self._call, name, form))

    def _call(self, name, form, *args):
        if len(args) != len(form):
            raise TypeError('%s takes %d arguments' % (name, len(form)))
        for kind, value in zip(form, args):
            if kind in 'lL' and not isinstance(value, int):
                raise TypeError('%s: %r is no integer' % (name, value))
            if kind == 's':
                if not isinstance(value, str) or '\0' in value:
                    raise TypeError('%s: %r is no text' % (name, value))
                value.encode('utf-8')
        self.calls.append((name,) + args)
        if name in self.hooks:
            return self.hooks[name](*args)
        if name == 'removeFiles':
            for path in args[0]:
                os.unlink(path)
        return self.answer if name == 'userconfirm' else None

    def clear(self):
        del self.calls[:]

    def named(self, *names):
        return [call for call in self.calls if call[0] in names]

    def lines(self, name=None):
        """All log lines, or those of one function."""
        return [call[2] for call in self.calls
                if call[0] in ((name,) if name else ('log', 'errorlog'))]


_FORMS = {
    'stdoutWrite': 's', 'stderrWrite': 's', 'log': 'ls', 'errorlog': 'ls',
    'collectProgress': 'llO', 'collectGrabMeterStart': 'OOOOOO', 'collectGrabMeterUpdate': 'OL',
    'collectGrabMeterEnd': 'OL', 'collectGrabMeterFailure': 'OO',
    'collectGrabMultiMeterStart': 'LL', 'collectGrabMultiMeterNew': 'O',
    'collectGrabMultiMeterRemove': 'O', 'collectGrabMultiMeterEnd': '',
    'applyGrabMeterStart': 'OOOOOO', 'applyGrabMeterUpdate': 'OL', 'applyGrabMeterEnd': 'OL',
    'applyGrabMeterFailure': 'OO', 'applyGrabMultiMeterStart': 'LL',
    'applyGrabMultiMeterNew': 'O', 'applyGrabMultiMeterRemove': 'O',
    'applyGrabMultiMeterEnd': '', 'dsTsCheck': '', 'dsRestartLoop': '', 'userconfirm': '',
    'reportDownloadSize': 'O', 'listTransaction': 'O', 'tsInitCallback': 'l',
    'tsCallback': 'lLLOO', 'tsEvent': 'OlLLll', 'postTransactionOutput': 'O', 'gpgsigcheck': '',
    'removeFiles': 'O',
}

yumIOC = sys.modules.setdefault('yumIOC', Recorder())


@functools.lru_cache(None)
def script():
    """The names that the script defines when the program runs it."""
    os.environ['VOKSHARE'] = SHARE
    path = os.path.join(SHARE, 'python', 'YumIO.py')
    names = {'__name__': '__main__', '__file__': 'YumIO.py'}
    streams = sys.stdout, sys.stderr
    with open(path) as stream:
        exec(compile(stream.read(), 'YumIO.py', 'exec'), names)
    # The tests' own report is not the program's.
    sys.stdout, sys.stderr = streams
    return names


@unittest.skipUnless(os.getuid() == 0, 'a package database in a root of its own needs root')
class SystemTest(unittest.TestCase):
    """A root with a package database, a server, and the script."""

    def setUp(self):
        self.top = tempfile.mkdtemp(prefix='vok-test-')
        self.addCleanup(shutil.rmtree, self.top, True)
        self.root = os.path.join(self.top, 'root')
        self.served = os.path.join(self.top, 'served')
        os.makedirs(self.served)
        for name in ('etc/yum.repos.d', 'var/lib/rpm', 'var/cache', 'var/log', 'var/tmp', 'tmp'):
            os.makedirs(os.path.join(self.root, name))
        self.config('[main]\n')
        self.rpm_command('--initdb')
        before = os.environ.get('VOKROOT')
        os.environ['VOKROOT'] = self.root
        self.addCleanup(self._restore, before)
        self.server = Server(self.served)
        self.addCleanup(self.server.close)
        yumIOC.clear()
        yumIOC.answer = 1
        yumIOC.hooks = {}
        self.names = script()
        from steward import lock, session, system
        self.addCleanup(lock.drop)
        session._Process.collected = session._Process.ask = False
        self.addCleanup(system.end_current)

    @staticmethod
    def _restore(before):
        if before is None:
            os.environ.pop('VOKROOT', None)
        else:
            os.environ['VOKROOT'] = before

    def path(self, *parts):
        return os.path.join(self.root, *parts)

    def config(self, text):
        with open(self.path('etc', 'yum.conf'), 'w') as stream:
            stream.write(text)

    def rpm_command(self, *arguments):
        return subprocess.run(['rpm', '--root', self.root, '--dbpath', '/var/lib/rpm',
                               '--define', '_dbpath /var/lib/rpm'] + list(arguments),
                              check=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True).stdout

    def install(self, *rpms):
        self.rpm_command('-i', '--justdb', '--nodeps', '--noscripts', '--ignorearch', '--force',
                         '--nosignature', *[build(rpm) for rpm in rpms])

    def repository(self, repoid, rpms, comps=None, text='', options=(), baseurl=True):
        """Makes a served repository and its configuration file."""
        make_repository(os.path.join(self.served, repoid), rpms, comps, options)
        lines = '[%s]\nname=%s repository\n' % (repoid, repoid)
        if baseurl:
            lines += 'baseurl=%s/%s\n' % (self.server.url, repoid)
        path = self.path('etc', 'yum.repos.d', repoid + '.repo')
        with open(path, 'w') as stream:
            stream.write(lines + text)
        # A file newer than the metadata makes the cache expire.
        os.utime(path, (time.time() - 3600,) * 2)

    def make(self):
        return self.names['YumIO']()

    def collect(self, made=None):
        """One collection as the program does it; returns the object with its lists in `lists`."""
        made = made or self.make()
        made.lock()
        made.setupRepos()
        made.setupTs()
        lists = types.SimpleNamespace()
        lists.updates = list(made.collectUpdates())
        both = made.collectAll()
        lists.installed, lists.available = list(both.installed), list(both.available)
        try:
            made.setupTsGroup()
        except self.names['yum'].Errors.GroupsError as exc:
            self.assertIn('No Groups Available', exc.value)
        lists.groups = list(made.collectGroupInfo())
        made.collectDone()
        made.lists = lists
        return made

    def again(self, made):
        """What the program's Refresh does."""
        made.flush()
        return self.collect()


def nevra(package):
    return '%s-%s.%s' % (package.name, package.printVer(), package.arch)


def nevras(found):
    return sorted(nevra(package) for package in found)
