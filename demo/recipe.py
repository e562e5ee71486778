# SPDX-License-Identifier: GPL-2.0-or-later
"""What a sandbox system is made of, told without doing anything.

All records are frozen and their `repr` is stable, since the maker names what it built after it.
"""

import hashlib
from dataclasses import dataclass, field, replace
from typing import Optional, Tuple

#: The time at which packages say they were built, unless they say otherwise: 2024-01-15 12:00 UTC.
EPOCH = 1705320000
DAY = 86400


@dataclass(frozen=True)
class File:
    """One file of a package. Exactly one of `text`, `noise`, `source`, `link`, `directory` says what it holds."""

    path: str
    text: Optional[str] = None
    #: So many bytes of noise, always the same ones for the same path: they can't be compressed.
    noise: int = 0
    #: A file of this machine.
    source: str = ""
    #: The target of a symbolic link.
    link: str = ""
    directory: bool = False
    mode: int = 0o644
    config: bool = False
    doc: bool = False

    def bytes(self) -> bytes:
        if self.source:
            with open(self.source, "rb") as stream:
                return stream.read()
        if self.noise:
            return hashlib.shake_128(self.path.encode()).digest(self.noise)
        return (self.text or "").encode()


@dataclass(frozen=True)
class Change:
    """One entry of a change log."""

    time: int
    author: str
    text: str


@dataclass(frozen=True)
class Package:
    name: str
    version: str = "1.0"
    release: str = "1"
    epoch: int = 0
    arch: str = "noarch"
    summary: str = ""
    description: str = ""
    group: str = "Unspecified"
    license: str = "MIT"
    url: str = ""
    vendor: str = ""
    packager: str = ""
    provides: Tuple[str, ...] = ()
    requires: Tuple[str, ...] = ()
    conflicts: Tuple[str, ...] = ()
    obsoletes: Tuple[str, ...] = ()
    files: Tuple[File, ...] = ()
    #: Pairs of a scriptlet's name (pre, post, preun, postun) and its shell text.
    scripts: Tuple[Tuple[str, str], ...] = ()
    changes: Tuple[Change, ...] = ()
    build_time: int = EPOCH
    #: The name of the key that signs it; two names are two keys. Empty: unsigned.
    signer: str = ""

    @property
    def evr(self) -> str:
        return "%s%s-%s" % ("%d:" % self.epoch if self.epoch else "", self.version, self.release)

    @property
    def nevra(self) -> str:
        """Name, version, release and architecture as in the rpm's file name: without the epoch."""
        return "%s-%s-%s.%s" % (self.name, self.version, self.release, self.arch)

    def but(self, **changes) -> "Package":
        return replace(self, **changes)


@dataclass(frozen=True)
class Group:
    """A group of packages. A conditional member is a pair: the package, and the one it waits for."""

    id: str
    name: str
    description: str = ""
    visible: bool = True
    mandatory: Tuple[str, ...] = ()
    default: Tuple[str, ...] = ()
    optional: Tuple[str, ...] = ()
    conditional: Tuple[Tuple[str, str], ...] = ()
    #: Pairs of a language and the group's name in it.
    names: Tuple[Tuple[str, str], ...] = ()


@dataclass(frozen=True)
class Repository:
    id: str
    name: str = ""
    packages: Tuple[Package, ...] = ()
    groups: Tuple[Group, ...] = ()
    #: The repository file below /etc/yum.repos.d; empty: behind [main] in the main file.
    file: str = "demo.repo"
    #: How the configuration names it: "baseurl", "several" (URLs) or "mirrorlist" (a dead mirror first).
    by: str = "baseurl"
    #: None: the configuration doesn't say.
    enabled: Optional[bool] = True
    gpgcheck: Optional[bool] = None
    #: The name of the key that the configuration offers.
    key: str = ""
    #: How it wants its name and password: "" not at all, "basic" by HTTP, "query" or "path" in the URL.
    auth: str = ""
    user: str = "demo"
    password: str = "secret"
    #: Whether the configuration carries the credentials already.
    authorized: bool = False
    #: Further lines of its section, as they are.
    options: Tuple[str, ...] = ()


@dataclass(frozen=True)
class Recipe:
    repositories: Tuple[Repository, ...] = ()
    installed: Tuple[Package, ...] = ()
    #: The options of [main] in the main file.
    main: Tuple[str, ...] = field(default=(
        "cachedir=/var/cache/yum",
        "keepcache=0",
        "debuglevel=2",
        "logfile=/var/log/yum.log",
        "obsoletes=1",
        "gpgcheck=0",
        "plugins=0",
        "installonly_limit=3",
    ))
