# SPDX-License-Identifier: GPL-2.0-or-later
"""Double of the script: the same contract, no package manager behind it.

Each instance reads the JSON file named by VOK_DOUBLE and plays what that says:

version       text of __version__; it decides which forms of the data exist
versionAt     "yum" (default), "cli" or "nowhere": the module that has __version__
multi, presto, sqlite   answers of hasMultiProgress, usesPresto and usesSqlite
repos         repository id -> {"enabled": number}; a list makes repos.repos a list, null leaves it out
yumvar        variables; {"basearch": "x86_64"} by default
updates, installed, available   packages, see Package; null leaves the attribute out
groups        groups, see makeGroups
better        [best, other] versions of which the best stays better; otherwise the second is
betterAnswer  what isBetterThan returns in place of that
biArch        architecture -> family word; any other is its own word
raise         method -> {"type", "text", "on": id, "keep": true}: raised once, or always with "keep"
returns       method -> value given in place of the method's own
meters        method -> list of [yumIOC function, argument ...]; "meter:x" stands for one meter object
missing       methods that do not exist
rows          packages have collectRow
fileTexts     packages have returnFileText, "bytes" or "str"
apply         Python text that `apply` runs, a string or a list of lines, with `installs`, `updates`,
              `removes`, `yumIOC` and all of this module in its scope. `member` and `base` make
              transactions, meter("x") a meter object; `lists` keeps the last three lists

`calls` holds what the program called, in order: (method, arguments as text, thread). A global `probe` is
called with each method's name before anything else happens.
"""

import bdb
import json
import os
import sys
import threading
import types

sys.path.insert(0, os.path.join(os.environ["VOKSHARE"], "python"))

import rpm  # noqa: E402
import yum  # noqa: E402
import yum.Errors  # noqa: E402
import yumIOC  # noqa: E402


cli = types.ModuleType("cli")
sys.modules["cli"] = cli

calls = []
meters = {}
lists = []  # installs, updates and removes of the last Apply
current = None  # the newest instance
probe = None


class Stream:
    def __init__(self, write):
        self.write = write

    def flush(self):
        pass


sys.stdout = Stream(yumIOC.stdoutWrite)
sys.stderr = Stream(yumIOC.stderrWrite)


def number(version):
    parts = [int(part) for part in version.split(".") if part.isdigit()][:3]
    return sum(part * weight for part, weight in zip(parts, (10000, 100, 1)))


def exception(kind, text):
    if kind == "BdbQuit":
        return bdb.BdbQuit(text)
    if kind == "OperationalError":
        import sqlite3
        return sqlite3.OperationalError(text)
    if hasattr(yum.Errors, kind):
        return getattr(yum.Errors, kind)(text)
    return getattr(__import__("builtins"), kind)(text)


def record(method, *arguments):
    calls.append((method, ",".join(str(argument) for argument in arguments),
                  threading.get_ident()))
    if probe is not None:
        probe(method)


def played(method, argument=None):
    """Plays meters and raises what is told for a method; what it returns by order, as a one-tuple."""
    told = current.told
    for function, *arguments in told.get("meters", {}).get(method, []):
        getattr(yumIOC, function)(*[
            meters.setdefault(value, object())
            if isinstance(value, str) and value.startswith("meter:") else value
            for value in arguments])
    trouble = told.get("raise", {}).get(method)
    if trouble and trouble.get("on") in (None, argument):
        if not trouble.get("keep"):
            del told["raise"][method]
        raise exception(trouble["type"], trouble.get("text", ""))
    if method in told.get("returns", {}):
        return (told["returns"][method],)
    return None


def usesSqlite():
    record("usesSqlite")
    ordered = played("usesSqlite")
    return ordered[0] if ordered else current.told.get("sqlite", False)


class Header:
    """An rpm header: `data` maps a tag's name without RPMTAG_ to its value."""

    def __init__(self, data):
        self.data = {getattr(rpm, "RPMTAG_" + name): value for name, value in data.items()}

    def __getitem__(self, tag):
        return self.data[tag]


class Package:
    """`fields` answers returnSimple; the rest of the keys are attributes of the contract.

    `size` may be {"method": value}. `hdr` makes an installed package. `without` names attributes that
    are to be absent.
    """

    def __init__(self, told, version):
        self.told = told
        self.version = version
        self.answers = dict(told.get("fields", {}))
        for name in ("repoid", "summary", "group", "buildtime", "relativepath"):
            if name in told:
                self.answers[name] = told[name]
        self.answers.setdefault("buildtime", 0)
        self.name = told["name"]
        self.arch = told.get("arch", "x86_64")
        size = told.get("size", 0)
        self.size = (lambda: size["method"]) if isinstance(size, dict) else size
        if "hdr" in told:
            self.hdr = Header(told["hdr"])
        else:
            if "relativepath" in told:
                self.relativepath = told["relativepath"]
            self._loadFiles = None
            self.changelog = self.changes()
            self.prco = {word: self.relations(word)
                         for word in ("provides", "requires", "conflicts", "obsoletes")
                         if told.get("prco", {}).get(word, []) is not None}
        for name in told.get("without", []):
            delattr(self, name)

    def changes(self):
        changes = self.told.get("changelog", [])
        return None if changes is None else [tuple(change) for change in changes]

    def relations(self, word):
        return [(name, flag, None if evr is None else tuple(evr))
                for name, flag, evr in self.told.get("prco", {}).get(word, [])]

    def printVer(self):
        return self.told.get("ver", "1.0-1")

    def returnSimple(self, field):
        return self.answers[field]

    def localPkg(self):
        record("localPkg", self.name)
        played("localPkg", self.name)
        return self.told.get("localPkg")

    def localHdr(self):
        record("localHdr", self.name)
        played("localHdr", self.name)
        return self.told.get("localHdr")

    def returnFileEntries(self, kind):
        record("returnFileEntries", self.name, kind)
        played("returnFileEntries", self.name)
        return list(self.told.get("files", []))


class Prco:
    """Mixin of versions that have the method."""

    def returnPrco(self, word):
        record("returnPrco", self.name, word)
        if word not in self.prco:
            raise ValueError("no such relation: " + word)
        return self.relations(word)


class Changelog:
    """Mixin of versions that have the method."""

    def returnChangelog(self):
        record("returnChangelog", self.name)
        played("returnChangelog", self.name)
        return self.changes()


class Row:
    """Mixin: the whole row in one call."""

    def collectRow(self):
        answer = self.answers.get
        row = (self.name, self.printVer(), answer("repoid"), self.arch, self.told.get("size", 0),
               answer("summary"), answer("buildtime"), answer("group"))
        return row if "row" not in self.told else self.told["row"]


class FileText:
    """Mixin: the files as one text."""

    def returnFileText(self):
        record("returnFileText", self.name)
        text = "\n".join(sorted(set(self.told.get("files", []))))
        return text if current.told["fileTexts"] == "str" else text.encode()


class Holder:
    def __init__(self, **fields):
        self.__dict__.update(fields)


class GroupInfo(Holder):
    """All groups of a version below 2.5.0."""

    def requiredPkgs(self, name):
        return list(self.mandatory_pkgs[name])

    def pkgTree(self, name):
        return self.requiredPkgs(name) + list(self.default_pkgs[name])


def makeGroups(told, version):
    """`groups`: {"name", "visible", "installed", "without": [attribute], and lists of names by the words
    mandatory, default, optional, conditional, groups, metapkgs, optionalmetapkgs}."""
    groups = told.get("groups", [])
    if version >= 20500:
        made = []
        for group in groups:
            holder = Holder(name=group["name"], user_visible=group.get("visible", True),
                            installed=group.get("installed", False))
            for kind in ("mandatory", "default", "optional", "conditional"):
                setattr(holder, kind + "_packages", {name: 1 for name in group.get(kind, [])})
            for name in group.get("without", []):
                delattr(holder, name)
            made.append(holder)
        return made

    def table(word):
        return {group["name"]: group.get(word, []) for group in groups}

    info = GroupInfo(
        visible_groups=[group["name"] for group in groups if group.get("visible", True)],
        group_installed={group["name"]: group.get("installed", False) for group in groups
                         if group.get("installed", False) is not None},
        sub_groups=table("groups"), default_metapkgs=table("metapkgs"),
        optional_metapkgs=table("optionalmetapkgs"), mandatory_pkgs=table("mandatory"),
        default_pkgs=table("default"), optional_pkgs=table("optional"))
    for name in told.get("groupInfoWithout", []):
        delattr(info, name)
    return info


class Repos:
    def __init__(self, told):
        repos = told.get("repos", {"base": {"enabled": 1}})
        if repos is None:
            return
        if isinstance(repos, list):
            self.repos = repos
        else:
            self.repos = {name: Holder(**fields) for name, fields in repos.items()}

    def enableRepo(self, name):
        record("enableRepo", name)
        played("enableRepo", name)
        self.repos[name].enabled = 1

    def disableRepo(self, name):
        record("disableRepo", name)
        played("disableRepo", name)
        self.repos[name].enabled = 0


def broken(packages):
    """An iterable that breaks off."""
    for package in packages:
        yield package
    raise ValueError("the list broke off")


def meter(name):
    return meters.setdefault("meter:" + name, object())


def member(name, arch="x86_64", epoch="0", version="1.0", release="1", **more):
    """A member of a transaction; `more` are further attributes: repoid, po, relatedto, epoch..."""
    return Holder(pkgtup=(name, arch, epoch, version, release),
                  **{**dict(repoid="base", relatedto=[], po=None), **more})


WORDS = ("updated", "installed", "removed", "obsoleted", "depupdated", "depinstalled", "depremoved")


def base(**members):
    """What listTransaction takes: lists of members by the words above."""
    found = [members.get(word, []) for word in WORDS]
    made = tuple(found) if current.version <= 20301 else Holder(**dict(zip(WORDS, found)))
    return Holder(tsInfo=Holder(makelists=lambda: made))


class YumIO:
    def __init__(self):
        global current
        with open(os.environ["VOK_DOUBLE"]) as file:
            self.told = json.load(file)
        current = self
        meters.clear()
        text = self.told.get("version", "4.14.0")
        self.version = number(text)
        at = self.told.get("versionAt", "yum")
        for module in (yum, cli):
            if hasattr(module, "__version__"):
                del module.__version__
            if module.__name__ == at:
                module.__version__ = text
        self.repos = Repos(self.told)
        self.conf = Holder(yumvar=self.told.get("yumvar", {"basearch": "x86_64"}))
        record("YumIO")
        played("YumIO")

    def __getattribute__(self, name):
        if name in object.__getattribute__(self, "__dict__").get("told", {}).get("missing", []):
            raise AttributeError(name)
        return object.__getattribute__(self, name)

    def packages(self, word):
        mixins = [mixin for mixin, wanted in (
            (Row, self.told.get("rows")), (FileText, self.told.get("fileTexts")),
            (Prco, self.version >= 20900), (Changelog, self.version > 20300)) if wanted]
        kind = type("VersionedPackage", (*mixins, Package), {})
        made = [kind(package, self.version) for package in self.told.get(word, [])]
        return broken(made) if word in self.told.get("broken", []) else made

    def step(self, method, result=None):
        record(method)
        ordered = played(method)
        return ordered[0] if ordered else result

    def lock(self):
        return self.step("lock")

    def unlock(self):
        return self.step("unlock")

    def setupRepos(self):
        return self.step("setupRepos")

    def setupTs(self):
        return self.step("setupTs")

    def collectUpdates(self):
        return self.step("collectUpdates", self.packages("updates"))

    def collectAll(self):
        fields = {word: self.packages(word) for word in ("installed", "available")
                  if self.told.get(word, []) is not None}
        return self.step("collectAll", Holder(**fields))

    def setupTsGroup(self):
        return self.step("setupTsGroup")

    def collectGroupInfo(self):
        return self.step("collectGroupInfo", makeGroups(self.told, self.version))

    def collectDone(self):
        return self.step("collectDone")

    def isBetterThan(self, best, other):
        record("isBetterThan", best.printVer(), other.printVer())
        played("isBetterThan")
        answer = [best.printVer(), other.printVer()] in self.told.get("better", [])
        return self.told.get("betterAnswer", answer)

    def getBiArch(self, arch):
        record("getBiArch", arch)
        return self.told.get("biArch", {"i386": "i386", "i686": "i386", "athlon": "i386"}).get(
            arch, arch)

    def flush(self):
        return self.step("flush")

    def collectFileLists(self):
        return self.step("collectFileLists", True)

    def collectOtherData(self):
        return self.step("collectOtherData", True)

    def apply(self, installs, updates, removes):
        lists[:] = [installs, updates, removes]
        record("apply", [package.name for package in installs],
               [[package.name for package in pair] for pair in updates],
               [package.name for package in removes])
        ordered = played("apply")
        text = self.told.get("apply", "")
        exec(text if isinstance(text, str) else "\n".join(text),
             dict(globals(), installs=installs, updates=updates, removes=removes))
        return ordered[0] if ordered else None

    def applyFailCleanup(self):
        return self.step("applyFailCleanup")

    def hasMultiProgress(self):
        return self.step("hasMultiProgress", self.told.get("multi", False))

    def usesPresto(self):
        return self.step("usesPresto", self.told.get("presto", False))

    def clean(self, method):
        record(method)
        ordered = played(method)
        if not ordered:
            return 0, []
        return tuple(ordered[0]) if isinstance(ordered[0], list) else ordered[0]

    def cleanHeaders(self):
        return self.clean("cleanHeaders")

    def cleanPackages(self):
        return self.clean("cleanPackages")

    def cleanMetadata(self):
        return self.clean("cleanMetadata")

    def cleanPickles(self):
        return self.clean("cleanPickles")

    def cleanSqlite(self):
        return self.clean("cleanSqlite")
