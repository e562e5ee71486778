# SPDX-License-Identifier: GPL-2.0-or-later
"""Turns a recipe into a sandbox system below a directory.

    DIRECTORY/root          the system to administer (VOKROOT), its packages really installed
    DIRECTORY/repos/ID      one repository each
    DIRECTORY/keys/NAME.asc the public keys
    DIRECTORY/cache         what was built, under the digest of what it was built from

Needs rpmbuild, rpmsign, gpg, createrepo_c and tar; no network, and no rights but those of a user
namespace. What it makes is the same each time, down to the bytes, as long as the cache, which
holds the keys, is the same.
"""

import hashlib
import json
import os
import shutil
import subprocess
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Dict, Iterable, List, Optional, Sequence
from xml.sax.saxutils import escape

from demo.recipe import DAY, EPOCH, Group, Package, Recipe, Repository

#: Part of every digest: raise it when the maker makes something else of the same recipe.
GENERATION = "1"
#: Where the rpm database lies in the root, whatever this machine's rpm would choose.
DBPATH = "/var/lib/rpm"
BUILD_HOST = "build.example.org"


class SandboxError(RuntimeError):
    """A tool failed; the text has its output."""


class Sandbox:
    """A sandbox system that was made. `configure` writes its yum configuration."""

    def __init__(self, recipe: Recipe, directory: Path):
        self.recipe = recipe
        self.directory = directory
        self.root = directory / "root"
        self.repos = directory / "repos"
        self.keys = directory / "keys"

    def rpm(self, package: Package, repository: str) -> Path:
        """The file of a package in one of the repositories."""
        return self.repos / repository / (package.nevra + ".rpm")

    def configure(self, url: str) -> None:
        """Writes the main file and the repository files for a server at `url`."""
        texts: Dict[str, List[str]] = {"": ["[main]\n" + "".join(line + "\n" for line in self.recipe.main)]}
        for repository in self.recipe.repositories:
            texts.setdefault(repository.file, []).append(section(repository, url))
        folder = self.root / "etc" / "yum.repos.d"
        folder.mkdir(parents=True, exist_ok=True)
        for name, sections in texts.items():
            path = folder / name if name else self.root / "etc" / "yum.conf"
            path.write_text("\n".join(sections), encoding="utf-8")
        (self.directory / "url").write_text(url, encoding="utf-8")

    def readdress(self, url: str) -> None:
        """Turns the URLs of the last server into those of the one at `url`; leaves all else as it is."""
        old = (self.directory / "url").read_text(encoding="utf-8")
        for path in [self.root / "etc" / "yum.conf", *sorted((self.root / "etc" / "yum.repos.d").glob("*.repo"))]:
            # Bytes: users may have written what they liked.
            path.write_bytes(path.read_bytes().replace(old.encode(), url.encode()))
        (self.directory / "url").write_text(url, encoding="utf-8")

    def query(self, *arguments: str) -> str:
        """Asks the rpm database of the root."""
        return run(["rpm", *rpm_root(self.root), "-q", *arguments])


def make(recipe: Recipe, directory, cache=None, jobs: int = 0) -> Sandbox:
    """Makes the sandbox system anew, from the cache as far as that holds it.

    The cache is `cache`, else what VOK_DEMO_CACHE names, else a folder of `directory`; several
    sandboxes may share one, at the same time too.
    """
    directory = Path(directory).resolve()
    store = Path(cache or os.environ.get("VOK_DEMO_CACHE") or directory / "cache").resolve()
    sandbox = Sandbox(recipe, directory)
    for path in (sandbox.root, sandbox.repos, sandbox.keys):
        remove_tree(path)
    directory.mkdir(parents=True, exist_ok=True)
    with _Builder(store, jobs or os.cpu_count() or 1) as builder:
        builder.make_keys(recipe, sandbox.keys)
        builder.make_packages(every_package(recipe))
        builder.make_repositories(recipe.repositories, sandbox.repos)
        builder.make_root(recipe.installed, sandbox.root)
    return sandbox


def every_package(recipe: Recipe) -> List[Package]:
    """All packages of a recipe, each once."""
    found = dict.fromkeys(recipe.installed)
    for repository in recipe.repositories:
        found.update(dict.fromkeys(repository.packages))
    return list(found)


def run(command: Sequence[str], **options) -> str:
    """Runs a tool, gives its standard output."""
    done = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", errors="replace", check=False, **options)
    if done.returncode:
        raise SandboxError("%s failed (%d):\n%s" % (command[0], done.returncode, done.stdout))
    return done.stdout


def rpm_root(root: Path) -> List[str]:
    return ["--root", str(root), "--dbpath", DBPATH]


def privileges() -> List[str]:
    """What to put before a command that changes its root: nothing for root, else a user namespace."""
    return [] if os.geteuid() == 0 else ["unshare", "--map-root-user"]


def remove_tree(path: Path) -> None:
    """Removes a folder even if packages left subfolders without the right to write."""
    if path.exists():
        for parent, folders, _ in os.walk(path):
            for folder in folders:
                full = os.path.join(parent, folder)
                if not os.path.islink(full):
                    os.chmod(full, 0o700)
        shutil.rmtree(path)


def section(repository: Repository, url: str) -> str:
    """The section of a repository in a configuration file."""
    lines = ["[%s]" % repository.id, "name=%s" % (repository.name or repository.id)]
    place = "%s/repos/%s" % (url, repository.id)
    user, password = (repository.user, repository.password) if repository.authorized else ("", "")
    if repository.auth == "query":
        place = "%s/vantry?user=%s&pass=%s&path=/repos/%s" % (url, user, password, repository.id)
    elif repository.auth == "path":
        place = "%s/rhel/user=%s/pass=%s/repos/%s" % (url, user, password, repository.id)
    if repository.by == "mirrorlist":
        lines.append("mirrorlist=%s/mirrorlist/%s" % (url, repository.id))
    elif repository.by == "several":
        lines.append("baseurl=%s" % place)
        lines.append("        %s/mirror/1/%s" % (url, repository.id))
        lines.append("        %s/mirror/2/%s" % (url, repository.id))
    else:
        lines.append("baseurl=%s" % place)
    if repository.auth == "basic" and repository.authorized:
        lines += ["username=%s" % user, "password=%s" % password]
    if repository.enabled is not None:
        lines.append("enabled=%d" % repository.enabled)
    if repository.gpgcheck is not None:
        lines.append("gpgcheck=%d" % repository.gpgcheck)
    if repository.key:
        lines.append("gpgkey=%s/keys/%s.asc" % (url, repository.key))
    return "".join(line + "\n" for line in lines + list(repository.options))


def comps(groups: Iterable[Group]) -> str:
    """The groups as a comps file."""
    out = ['<?xml version="1.0" encoding="UTF-8"?>', "<comps>"]
    for group in groups:
        out += ["  <group>", "    <id>%s</id>" % escape(group.id), "    <name>%s</name>" % escape(group.name)]
        out += ['    <name xml:lang="%s">%s</name>' % (language, escape(name)) for language, name in group.names]
        out += ["    <description>%s</description>" % escape(group.description),
                "    <default>false</default>",
                "    <uservisible>%s</uservisible>" % str(group.visible).lower(),
                "    <packagelist>"]
        for kind in ("mandatory", "default", "optional"):
            out += ['      <packagereq type="%s">%s</packagereq>' % (kind, escape(name))
                    for name in getattr(group, kind)]
        out += ['      <packagereq type="conditional" requires="%s">%s</packagereq>' % (escape(needed), escape(name))
                for name, needed in group.conditional]
        out += ["    </packagelist>", "  </group>"]
    return "\n".join(out + ["</comps>", ""])


def spec(package: Package) -> str:
    """The spec file of a package; its files lie ready in the folder that the macro `stage` names."""
    tags = [("Name", package.name), ("Version", package.version), ("Release", package.release),
            ("Epoch", package.epoch), ("Summary", package.summary or package.name), ("Group", package.group),
            ("License", package.license), ("URL", package.url), ("Vendor", package.vendor),
            ("Packager", package.packager), ("BuildArch", "noarch" if package.arch == "noarch" else ""),
            ("AutoReqProv", "no")]
    out = ["%s: %s" % (tag, quoted(str(value))) for tag, value in tags if value]
    for tag in ("provides", "requires", "conflicts", "obsoletes"):
        out += ["%s: %s" % (tag.capitalize(), quoted(value)) for value in getattr(package, tag)]
    out += ["", "%description", quoted(package.description or package.summary or package.name), "",
            "%install", "mkdir -p %{buildroot}", "cp -a %{stage}/. %{buildroot}/", "", "%files"]
    for entry in package.files:
        marks = "%dir " if entry.directory else "%config(noreplace) " if entry.config else "%doc " if entry.doc else ""
        rights = "" if entry.link else "%%attr(%o,root,root) " % (0o755 if entry.directory else entry.mode)
        out.append('%s%s"%s"' % (rights, marks, quoted(entry.path)))
    for name, text in package.scripts:
        out += ["", "%" + name, quoted(text)]
    out += ["", "%changelog"]
    for change in sorted(package.changes, key=lambda change: -change.time):
        out += ["* %s %s" % (spec_date(change.time), quoted(change.author)), quoted(change.text), ""]
    return "\n".join(out) + "\n"


def quoted(text: str) -> str:
    """Text for a spec file. No line of it may begin with the name of a section."""
    return text.replace("%", "%%")


def spec_date(seconds: int) -> str:
    """A date as rpmbuild wants it, in English whatever the locale."""
    moment = time.gmtime(seconds)
    days = ("Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun")
    months = ("Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec")
    return "%s %s %02d %d" % (days[moment.tm_wday], months[moment.tm_mon - 1], moment.tm_mday, moment.tm_year)


class _Builder:
    """The steps of the making; holds the cache and a scratch folder for the time of a `with`."""

    def __init__(self, store: Path, jobs: int):
        self.store = store
        self.jobs = jobs
        self.keyring: Optional[Path] = None
        self.scratch = Path()
        self.key_prints: Dict[str, str] = {}
        self.rpms: Dict[Package, Path] = {}
        self.digests: Dict[Package, str] = {}
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC")

    def __enter__(self) -> "_Builder":
        for name in ("keys", "rpms", "roots", "tmp"):
            (self.store / name).mkdir(parents=True, exist_ok=True)
        self.scratch = Path(tempfile.mkdtemp(dir=self.store / "tmp"))
        # Macros of the user's home would find their way into the packages.
        self.environment["HOME"] = str(self.scratch)
        self.tools = run(["rpm", "--version"]) + run(["createrepo_c", "--version"])
        return self

    def __exit__(self, *_) -> None:
        if self.keyring:
            subprocess.run(["gpgconf", "--homedir", str(self.keyring), "--kill", "all"], check=False,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            shutil.rmtree(self.keyring, ignore_errors=True)
        remove_tree(self.scratch)

    def digest(self, *parts: str) -> str:
        return hashlib.sha256("\0".join((GENERATION, self.tools) + parts).encode()).hexdigest()[:32]

    def settle(self, made: Path, place: Path) -> None:
        """Moves what was made into the cache; another maker may have been quicker, with the same result."""
        try:
            os.replace(made, place)
        except OSError:
            if not place.exists():
                raise

    # Keys

    def gpg(self, *arguments: str) -> str:
        if not self.keyring:
            # Not below the scratch folder: the agent's socket needs a short path.
            self.keyring = Path(tempfile.mkdtemp(prefix="vok-keys-"))
        return run(["gpg", "--homedir", str(self.keyring), "--batch", "--quiet", "--pinentry-mode", "loopback",
                    "--passphrase", "", *arguments], env=self.environment)

    def make_keys(self, recipe: Recipe, place: Path) -> None:
        names = {package.signer for package in every_package(recipe)} | {repo.key for repo in recipe.repositories}
        place.mkdir()
        for name in sorted(names - {""}):
            folder = self.key_folder(name)
            if not folder.exists():
                made = self.scratch / ("key-" + name)
                made.mkdir(mode=0o700)
                user = self.key_user(name)
                self.gpg("--faked-system-time", "%d!" % (EPOCH - 14 * DAY), "--quick-generate-key", user, "rsa2048", "sign", "never")
                self.gpg("--armor", "--output", str(made / "public.asc"), "--export", "=" + user)
                self.gpg("--armor", "--output", str(made / "secret.asc"), "--export-secret-keys", "=" + user)
                self.settle(made, folder)
            shutil.copyfile(folder / "public.asc", place / (name + ".asc"))
            self.key_prints[name] = hashlib.sha256((folder / "public.asc").read_bytes()).hexdigest()

    def key_folder(self, name: str) -> Path:
        return self.store / "keys" / ("%s-%s" % (name, GENERATION))

    @staticmethod
    def key_user(name: str) -> str:
        return "%s packages <%s@example.org>" % (name.capitalize(), name)

    # Packages

    def make_packages(self, packages: Sequence[Package]) -> None:
        with ThreadPoolExecutor(self.jobs) as pool:
            for package, path in zip(packages, pool.map(self.build, packages)):
                self.rpms[package] = path
        self.sign([package for package in packages if package.signer])

    def build(self, package: Package) -> Path:
        parts = [repr(package)]
        for entry in package.files:
            if entry.source:
                parts.append(hashlib.sha256(Path(entry.source).read_bytes()).hexdigest())
        self.digests[package] = self.digest(*parts)
        place = self.store / "rpms" / (self.digests[package] + ".rpm")
        if place.exists():
            return place
        top = Path(tempfile.mkdtemp(dir=self.scratch, prefix="build-"))
        stage = top / "stage"
        stage.mkdir()
        for entry in package.files:
            path = stage / entry.path.lstrip("/")
            path.parent.mkdir(parents=True, exist_ok=True)
            if entry.directory:
                path.mkdir(exist_ok=True)
            elif entry.link:
                path.symlink_to(entry.link)
            else:
                path.write_bytes(entry.bytes())
                path.chmod(entry.mode)
        spec_file = top / (package.name + ".spec")
        # Packages of old have texts in whatever encoding: lone surrogates stand for such bytes.
        spec_file.write_text(spec(package), encoding="utf-8", errors="surrogateescape")
        macros = {
            "_topdir": top, "_tmppath": top, "stage": stage, "_buildhost": BUILD_HOST,
            "use_source_date_epoch_as_buildtime": 1, "clamp_mtime_to_source_date_epoch": 1,
            "source_date_epoch_from_changelog": 0, "_binary_payload": "w.ufdio", "debug_package": "%{nil}",
            "__spec_install_post": "%{nil}", "__check_files": "%{nil}", "_build_id_links": "none",
            "_invalid_encoding_terminates_build": 0, "_rpmfilename": "package.rpm", "_build_name_fmt": "package.rpm",
        }
        command = ["rpmbuild", "-bb", "--target", package.arch + "-linux"]
        for name, value in macros.items():
            command += ["--define", "%s %s" % (name, value)]
        run(command + [str(spec_file)], env=dict(self.environment, SOURCE_DATE_EPOCH=str(package.build_time)))
        self.settle(top / "RPMS" / "package.rpm", place)
        remove_tree(top)
        return place

    def sign(self, packages: Sequence[Package]) -> None:
        for name in sorted({package.signer for package in packages}):
            todo = {}
            for package in packages:
                if package.signer != name:
                    continue
                place = self.store / "rpms" / (
                    self.digest("signed", self.digests[package], self.key_prints[name]) + ".rpm")
                if not place.exists():
                    copy = self.scratch / ("%s-%s" % (name, place.name))
                    shutil.copyfile(self.rpms[package], copy)
                    todo[copy] = place
                self.rpms[package] = place
            if not todo:
                continue
            self.gpg("--import", str(self.key_folder(name) / "secret.asc"))
            # The time of a signature is part of it.
            extra = "--batch --pinentry-mode loopback --passphrase '' --faked-system-time %d!" % EPOCH
            run(["rpmsign", "--addsign", "--define", "_gpg_name " + self.key_user(name),
                 "--define", "__gpg %s" % shutil.which("gpg"), "--define", "_gpg_path %s" % self.keyring, "--define", "_gpg_sign_cmd_extra_args " + extra, *todo],
                env=dict(self.environment, GNUPGHOME=str(self.keyring)))
            for copy, place in todo.items():
                self.settle(copy, place)

    # Repositories

    def make_repositories(self, repositories: Sequence[Repository], place: Path) -> None:
        place.mkdir()
        with ThreadPoolExecutor(self.jobs) as pool:
            list(pool.map(lambda repository: self.make_repository(repository, place / repository.id), repositories))

    def make_repository(self, repository: Repository, place: Path) -> None:
        place.mkdir()
        newest = 0
        for package in repository.packages:
            path = place / (package.nevra + ".rpm")
            shutil.copyfile(self.rpms[package], path)
            os.utime(path, (package.build_time, package.build_time))
            newest = max(newest, package.build_time)
        command = ["createrepo_c", "--quiet", "--no-database", "--workers", "1", "--checksum", "sha256",
                   "--general-compress-type", "gz", "--revision", str(newest), "--set-timestamp-to-revision"]
        groups = self.scratch / ("comps-%s" % repository.id) / "comps.xml"
        if repository.groups:
            groups.parent.mkdir()
            groups.write_text(comps(repository.groups), encoding="utf-8")
            os.utime(groups, (newest, newest))
            command += ["--groupfile", str(groups)]
        run(command + [str(place)], env=self.environment)

    # The root

    def make_root(self, packages: Sequence[Package], place: Path) -> None:
        """The root with its packages, as the last making left it in the cache, if it did."""
        digest = self.digest("root", *(self.digests[package] + package.signer for package in packages))
        kept = self.store / "roots" / (digest + ".tar")
        if not kept.exists():
            self.install(packages, place)
            made = self.scratch / "root.tar"
            run(["tar", "--create", "--numeric-owner", "--file", made, "--directory", place, "."])
            self.settle(made, kept)
            return
        place.mkdir()
        run(["tar", "--extract", "--preserve-permissions", "--numeric-owner", "--no-same-owner", "--file", kept,
             "--directory", place])

    def install(self, packages: Sequence[Package], place: Path) -> None:
        for folder in (DBPATH.lstrip("/"), "var/cache", "var/log", "var/tmp", "tmp", "etc/yum.repos.d", "dev", "proc"):
            (place / folder).mkdir(parents=True, exist_ok=True)
        (place / "tmp").chmod(0o1777)
        # Scriptlets redirect to it, and a device can't be made in a user namespace.
        (place / "dev" / "null").touch()
        (place / "dev" / "null").chmod(0o666)
        if not packages:
            run(["rpm", *rpm_root(place), "--initdb"])
            return
        manifest = self.scratch / "manifest"
        manifest.mkdir()
        files = []
        for package in packages:
            link = manifest / (package.nevra + ".rpm")
            link.symlink_to(self.rpms[package])
            files.append(str(link))
        out = run([*privileges(), "rpm", *rpm_root(place), "--install", "--nosignature", "--noplugins",
                   "--ignoresize", *files], env=self.environment)
        if "error:" in out:
            raise SandboxError("rpm said:\n" + out)


def describe(sandbox: Sandbox) -> str:
    """The sandbox in a few lines of JSON, for the command line."""
    return json.dumps({
        "root": str(sandbox.root),
        "installed": len(sandbox.recipe.installed),
        "repositories": {repo.id: len(repo.packages) for repo in sandbox.recipe.repositories},
    }, indent=2)
