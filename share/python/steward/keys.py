# SPDX-License-Identifier: GPL-2.0-or-later
"""Asks the user before a signing key is trusted."""

import os
import shutil
import tempfile
import time

import dnf.callback
import libdnf.repo
import yumIOC

from steward.errors import text_of
from steward.texts import masked
from yum.Errors import YumBaseError

try:
    import gpg
except ImportError:
    # The package manager gets on without it since it reads keys itself.
    gpg = None


def confirm(lines):
    """Shows `lines` in the program's question dialog; True only for the user's yes.

    A program that can't put questions to the user is told the lines as an error, and the answer is
    no.
    """
    if not hasattr(yumIOC, 'userconfirm'):
        for line in lines:
            yumIOC.errorlog(0, masked(line))
        yumIOC.errorlog(0, 'Nobody can be asked, so it is not trusted.')
        return False
    # The dialog shows what was logged since the text was last emptied.
    yumIOC.gpgsigcheck()
    for line in lines:
        yumIOC.log(0, masked(line))
    return yumIOC.userconfirm() == 1


class Key:
    """A signing key as it is shown to the user, and its data."""

    __slots__ = ('id', 'userid', 'fingerprint', 'url', 'timestamp', 'ids', 'revoked', 'expired',
                 'data')

    def __init__(self, id, userid, fingerprint, url, timestamp):  # pylint: disable=redefined-builtin
        self.id = id
        self.userid = userid
        self.fingerprint = fingerprint
        self.url = url
        self.timestamp = timestamp
        # Ids and fingerprints of the key and all its subkeys, in lower case.
        self.ids = ()
        self.revoked = False
        self.expired = False
        self.data = b''

    @property
    def short_id(self):
        return '0x' + self.id[-8:].upper()

    def __str__(self):
        return '%s (%s)' % (self.short_id, self.userid)

    def made(self, name):
        """True if a signature that names its key by `name`, the end of an id, is of this one."""
        return any(known.endswith(name.lower()) for known in self.ids)


def trusts(head, key):
    """Asks the user whether `key` is to be trusted, after the lines `head`."""
    lines = head.split('\n') + [
        'User ID: %s' % key.userid,
        'Key ID: %s' % key.short_id,
        'Fingerprint: %s' % key.fingerprint,
        'Created: %s' % time.strftime('%Y-%m-%d', time.gmtime(key.timestamp)),
        'From: %s' % key.url,
    ]
    if key.expired:
        lines.append('This key has expired.')
    return confirm(lines + ['Is this key to be trusted?'])


def read(path, url):
    """The keys in the file at `path`, which came from `url`.

    Raises YumBaseError when it holds none or can't be read.
    """
    directory = tempfile.mkdtemp(prefix='vok-keys-')
    try:
        with open(path, 'rb') as stream:
            found = _read(stream, url, directory) if gpg else _read_roughly(stream, url)
    except Exception as exc:  # pylint: disable=broad-except
        # Each library has exceptions of its own.
        problem = YumBaseError('%s: the key cannot be read: %s' % (masked(url), text_of(exc)))
    else:
        problem = None if found else YumBaseError('%s: there is no key in it' % masked(url))
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    if problem is not None:
        raise problem
    return found


def _read(stream, url, directory):
    """All about the keys in `stream`; `directory` is empty and for this only."""
    with gpg.Context(home_dir=directory) as context:
        context.op_import(stream.read())
        # A list that is not read to its end is in the way of the export.
        return [_key(context, entry, url) for entry in list(context.keylist())]


def _key(context, entry, url):
    main = entry.subkeys[0]
    key = Key(main.keyid, entry.uids[0].uid if entry.uids else '', main.fpr, url, main.timestamp)
    key.ids = tuple(text.lower() for part in entry.subkeys for text in (part.keyid, part.fpr))
    key.revoked = bool(entry.revoked)
    key.expired = bool(entry.expired)
    with gpg.Data() as sink:
        context.op_export(main.fpr, 0, sink)
        sink.seek(0, os.SEEK_SET)
        key.data = sink.read()
    return key


def _read_roughly(stream, url):
    """What the package manager's library tells of the keys: not whether they are good still.

    A key that signs with subkeys has an entry for each.
    """
    if not hasattr(libdnf.repo, 'Key'):
        raise YumBaseError('the Python module gpg (package python3-gpg) is missing')
    found = []
    for entry in libdnf.repo.Key.keysFromFd(stream.fileno()):
        key = Key(entry.getId(), entry.getUserId(), entry.getFingerprint(), url, entry.getTimestamp())
        key.ids = (key.id.lower(), key.fingerprint.lower())
        key.data = entry.getAsciiArmoredKey().encode('utf-8')
        found.append(key)
    return found


class KeyQuestion(dnf.callback.KeyImport):
    """Decides on a key that a repository's metadata is signed with."""

    def __init__(self, repo):
        super().__init__()
        self._repo = repo
        self.refused = False

    def _confirm(self, id, userid, fingerprint, url, timestamp):  # pylint: disable=redefined-builtin
        trusted = trusts(
            "The metadata of the repository '%s' is signed with a key that is not known yet:"
            % self._repo, Key(id, userid, fingerprint, url, timestamp))
        self.refused = not trusted
        return trusted
