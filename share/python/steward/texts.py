# SPDX-License-Identifier: GPL-2.0-or-later
"""Turns any text into one that may leave the script: valid Unicode without NUL, credentials masked."""

import re

MASK = '***'

_USERINFO = re.compile(r'([A-Za-z][A-Za-z0-9+.-]*://)[^/\s]*@')
# The two ways in which a name and a password are written into a repository's URL. The downloader
# may have moved the query behind the path.
_QUERY = re.compile(r'(\?[^&=\s]*=)[^&\s]*(&[^&=\s]*=)[^&\s]*(?=&path=)')
# One that lacks its end is as secret.
_BROKEN_QUERY = re.compile(r'(/vantry\?)((?:(?!&path=)\S)+)')
_VALUE = re.compile(r'=[^&\s]*')
_PATH = re.compile(r'(/rhel/[^/=\s]*=)[^/\s]*(/[^/=\s]*=)[^/\s]*(?=/)')


def plain(value):
    """`value` as a str that encodes to UTF-8 and holds no NUL; bytes are read as UTF-8."""
    if value is None:
        return ''
    if isinstance(value, bytes):
        value = value.decode('utf-8', 'replace')
    elif not isinstance(value, str):
        value = str(value)
    try:
        value.encode('utf-8')
    except UnicodeEncodeError:
        # Lone surrogates: bytes that rpm or the file system handed through.
        value = value.encode('utf-8', 'surrogateescape' if _escaped(value) else 'replace') \
                     .decode('utf-8', 'replace')
    return value.replace('\0', '')


def _escaped(value):
    return all(not 0xD800 <= ord(c) <= 0xDFFF or 0xDC80 <= ord(c) <= 0xDCFF for c in value)


def masked(value):
    """`plain(value)` with the credentials of every URL in it replaced by asterisks."""
    text = plain(value)
    if '://' in text:
        text = _USERINFO.sub(r'\1' + MASK + '@', text)
        if '&path=' in text:
            text = _QUERY.sub(r'\1' + MASK + r'\2' + MASK, text)
        if '/vantry?' in text:
            text = _BROKEN_QUERY.sub(
                lambda found: found.group(1) + _VALUE.sub('=' + MASK, found.group(2)), text)
        if '/rhel/' in text:
            text = _PATH.sub(r'\1' + MASK + r'\2' + MASK, text)
    return text
