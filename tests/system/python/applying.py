# SPDX-License-Identifier: GPL-2.0-or-later
"""An Apply as the program makes it: its table, its reading of what the script sends, its reports."""

import os
import re
import shutil

from fixture import Rpm, SystemTest, build, nevra, yumIOC

LISTS = ('updated', 'installed', 'removed', 'obsoleted', 'depupdated', 'depinstalled', 'depremoved')
INSTALL_EVENTS, REMOVAL_EVENTS = (10, 60, 20, 30), (40, 90, 50)


class Row:
    """An entry of the table: the versions behind `package` are the installed ones of an update."""

    def __init__(self, package, state):
        self.package = package
        self.state = state
        self.behind = []
        self.action = self.mark = None
        self.started = set()

    def versions(self):
        """Those that are installed."""
        return self.behind if self.state == 'updatable' else [self.package] + self.behind


class Program:
    """Plays the program during an Apply. `reports` holds what it would show as its own errors."""

    def __init__(self, made):
        self.made = made
        self.rows = {}
        self.reports = []
        self.review = []
        self.labels = []
        self.solve = []
        self.during = None
        self.raw = []
        self._last = 0
        for package in made.lists.updates:
            self.rows.setdefault(self._key(package.name, package.arch), Row(package, 'updatable'))
        for package in made.lists.installed:
            row = self.rows.get(self._key(package.name, package.arch))
            if row is None:
                self.rows[self._key(package.name, package.arch)] = Row(package, 'installed')
            else:
                row.behind.append(package)
        for package in made.lists.available:
            self.rows.setdefault(self._key(package.name, package.arch), Row(package, 'installable'))
        yumIOC.hooks.update(log=self._log, listTransaction=self._list, tsEvent=self._event)

    def _key(self, name, arch):
        return name, self.made.getBiArch(arch)

    def row(self, name, arch=None):
        found = [row for key, row in self.rows.items()
                 if key[0] == name and arch in (None, row.package.arch)]
        if len(found) != 1:
            raise LookupError('%d rows for %s' % (len(found), name))
        return found[0]

    def apply(self, *marks):
        """Marks are 'install x', 'update x', 'remove x' or 'install x.arch'."""
        installs, updates, removes = [], [], []
        for row in self.rows.values():
            row.mark = row.action = None
        for mark in marks:
            action, name = mark.split(' ')
            name, _, arch = name.partition('.')
            row = self.row(name, arch or None)
            row.mark = row.action = action
            if action == 'install':
                installs.append(row.package)
            elif action == 'update':
                updates.extend([row.package, old] for old in row.behind)
            else:
                removes.extend(row.versions())
        self.review, self.labels, self.solve, self._last = [], [], [], 0
        self.raw = []
        try:
            self.made.apply(installs, updates, removes)
        except Exception:
            self.made.applyFailCleanup()
            raise
        finally:
            self.made.flush()

    # What the script sends

    def _log(self, _level, text):
        if not text.startswith('TSINFO: '):
            return
        text = text[8:]
        self.solve.append(text)
        word, blank, rest = text.partition(' ')
        if word in ('Updating', 'Marking', 'Obsoleting'):
            name, blank, rest = rest.partition(' ')
            found = re.match(r'(?:(\d+):)?(.+)-([^-]+)-([^-]+)\.([^.]+)\Z', name)
            if not blank or not found or word == 'Obsoleting' and ' with ' not in ' ' + rest:
                self.reports.append('unexpected TSINFO: ' + text)
                return
            row = self.rows.get(self._key(found.group(2), found.group(5)))
            if row is None:
                self.reports.append('TSINFO mentions unknown package: ' + name)
            elif row.state == 'installed':
                self.reports.append('already up-to-date: ' + name)
        elif ' marked as erase' not in text:
            self.reports.append('unexpected TSINFO: ' + text)

    def _list(self, base):
        lists = base.tsInfo.makelists()
        self.review = []
        for name in LISTS:
            for member in getattr(lists, name):
                line = '%s %s' % (name, self._text(member.pkgtup))
                if name == 'obsoleted':
                    new = [other for other, word in member.relatedto if word == 'obsoletedby'][0]
                    line += ' with ' + self._text(new.pkgtup)
                elif not name.endswith('removed'):
                    line += ' [%s]' % member.repoid
                self.review.append(line)
                self._note(name, member)
        self.listed = list(self.review)
        self.review.sort()

    @staticmethod
    def _text(pkgtup):
        name, arch, epoch, version, release = pkgtup
        return '%s-%s%s-%s.%s' % (name, '' if epoch == '0' else epoch + ':', version, release, arch)

    def _note(self, name, member):
        row = self.rows.get(self._key(*member.pkgtup[:2]))
        if row is None:
            self.reports.append('Unable to find package for %s' % (member.pkgtup,))
            return
        action = {'installed': 'install', 'updated': 'update', 'removed': 'remove',
                  'obsoleted': 'remove'}[name.replace('dep', '')]
        if action == 'remove' and member.po.printVer() not in [version.printVer()
                                                               for version in row.versions()]:
            self.reports.append('no such version: %s' % nevra(member.po))
        row.action = row.action or action

    def _event(self, package, event, te_current, te_total, ts_current, ts_total):
        self.raw.append((package if isinstance(package, str) else package.name, event, te_current,
                         te_total, ts_current, ts_total))
        if self.during is not None:
            self.during()
        if ts_current == self._last:
            return
        self._last = ts_current
        if event in INSTALL_EVENTS:
            row = self.rows.get(self._key(package.name, package.arch))
            if row is None:
                self.reports.append('Unable to find package for event of ' + package.name)
                return
            row.started.add(nevra(row.package))
            self.labels.append('%s %s' % ('Updating' if event in (10, 60) else 'Installing',
                                          package.name))
        elif event in REMOVAL_EVENTS:
            self._removal(package, event)
        else:
            self.reports.append('action=%r not understood' % event)

    def _removal(self, name, event):
        """`name` is a text; which version it is about is found by what is to happen to its row."""
        def waiting(action):
            return [row for key, row in sorted(self.rows.items(), key=lambda item: (
                item[0][1] != self.made.conf.yumvar['basearch'], item[0]))
                    if key[0] == name and row.action == action
                    and {nevra(version) for version in [row.package] + row.behind} - row.started]
        found = waiting('update') if event in (90, 50) else []
        label = 'Completing update for: ' if found else 'Removing '
        found = found or waiting('remove')
        if not found:
            self.reports.append('REMOVE/COMPLETE of %s not expected' % name)
            return
        left = [version for version in found[0].versions() if nevra(version) not in found[0].started]
        if not left:
            self.reports.append('UNINST of %s too many times' % name)
        else:
            found[0].started.add(nevra(left[0]))
        self.labels.append(label + name)


class ApplyTest(SystemTest):
    """A system whose packages are really there, and one repository `base` without signatures."""

    def begin(self, installed, available, text='gpgcheck=0\n', shell=False):
        """Installs, serves and collects; returns the program."""
        if shell:
            # For scriptlets: busybox, in the database as a package that has the shell.
            os.makedirs(self.path('bin'), exist_ok=True)
            shutil.copy2(shutil.which('busybox'), self.path('bin', 'sh'))
            self.install(Rpm('shell', tags=['Provides: /bin/sh']))
        if installed:
            self.rpm_command('-i', '--nodeps', '--noscripts', '--ignorearch', '--nosignature',
                             '--replacefiles', *[build(rpm) for rpm in installed])
        self.repository('base', available, text=text)
        return self.open()

    def plugin(self, name, statement):
        """Makes a plugin of the library that runs `statement` after each transaction of this test.

        A plugin once imported stays in the process.
        """
        os.makedirs(self.path('plugins'))
        with open(self.path('plugins', name + '.py'), 'w') as stream:
            stream.write('import os\nimport dnf\n\n\nclass Plugin(dnf.Plugin):\n'
                         '    name = %r\n\n    def transaction(self):\n'
                         '        if os.path.exists(%r):\n            %s\n'
                         % (name, self.path('plugins'), statement))
        self.config('[main]\npluginpath=%s\n' % self.path('plugins'))

    def open(self, made=None):
        self.made = self.collect(made)
        yumIOC.clear()
        return Program(self.made)

    def database(self):
        """What rpm says is installed."""
        found = self.rpm_command('-qa', '--qf', '%{NAME}-%{EVR}.%{ARCH}\n').split()
        return sorted(text for text in found if not text.startswith('shell-'))

    def refused(self, program, *marks):
        """The text with which an Apply fails."""
        with self.assertRaises(self.names['yum'].Errors.YumBaseError) as caught:
            program.apply(*marks)
        text = caught.exception.value
        self.assertEqual(text, text.strip())
        return text

    def log(self):
        return '\n'.join(yumIOC.lines())

    def output(self):
        return ''.join(call[1] for call in yumIOC.named('stdoutWrite'))


def package_files(test):
    """The package files in the cache."""
    found = []
    for directory, _, names in os.walk(test.path('var', 'cache')):
        found += [name for name in names if name.endswith('.rpm')]
    return sorted(found)

