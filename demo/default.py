# SPDX-License-Identifier: GPL-2.0-or-later
"""The recipe of the demo: a small system that has one of everything."""

import os
import shutil
import zlib
from typing import Tuple

from demo.recipe import DAY, EPOCH, Change, File, Group, Package, Recipe, Repository

VENDOR = "Example Project"
#: The static one: there is no C library in the sandbox.
BUSYBOX = shutil.which("busybox", path=os.environ.get("PATH", "") + ":/usr/bin:/bin:/usr/sbin:/sbin") or "/bin/busybox"
PACKAGER = "Example Builders <builders@example.org>"
PEOPLE = ("Ada Ahlström <ada@example.org>", "Björn Ødegård <bjorn@example.org>", "Chloé Nguyễn <chloe@example.org>",
          "Дмитрий Иванов <dmitri@example.org>")
NEWS = ("- Fix a crash when the configuration file is empty", "- Follow the new release",
        "- Add translations\n- Don't read 100% of the file any more", "- Rebuild", "- First package")


def history(version: str, release: str, time: int, count: int) -> Tuple[Change, ...]:
    """A change log, its latest entry for the version."""
    entries = [Change(time, "%s - %s-%s" % (PEOPLE[0], version, release), NEWS[count % 2])]
    for number in range(1, count):
        entries.append(Change(time - 40 * DAY * number, "%s - 0.%d-1" % (PEOPLE[number % 4], 10 - number),
                              NEWS[min(number + 1, 4)]))
    return tuple(entries)


def package(name: str, version: str = "1.0", release: str = "1", **more) -> Package:
    """A package with the files and texts that any package has, unless told otherwise."""
    summary = more.setdefault("summary", name.replace("-", " ").capitalize())
    more.setdefault("description", "%s, version %s.\n\nPart of the demonstration system." % (summary, version))
    more.setdefault("url", "https://example.org/" + name)
    more.setdefault("vendor", VENDOR)
    more.setdefault("packager", PACKAGER)
    # Not all at once, but always the same.
    time = more.setdefault("build_time", EPOCH - 100 * DAY - zlib.crc32(name.encode()) % (60 * DAY))
    more.setdefault("changes", history(version, release, time, 2 + len(name) % 4))
    size = more.pop("size", 2000 + 700 * len(name))
    lib = "lib64" if more.get("arch") == "x86_64" else "lib"
    more.setdefault("files", (
        File("/usr/share/doc/%s" % name, directory=True),
        File("/usr/share/doc/%s/README" % name, text="%s\n%s\n" % (summary, more["description"]), doc=True),
        File("/usr/%s/%s" % (lib, name), directory=True),
        File("/usr/%s/%s/data" % (lib, name), noise=size),
    ))
    return Package(name=name, version=version, release=release, **more)


def newer(old: Package, version: str, release: str = "1", days: int = 60, **more) -> Package:
    """The same package, later."""
    time = old.build_time + days * DAY
    change = Change(time, "%s - %s-%s" % (PEOPLE[1], version, release), "- Update to " + version)
    return old.but(version=version, release=release, build_time=time, changes=(change,) + old.changes, **more)


# The system's ground

filesystem = package("filesystem", "3.1", summary="The folders that everything lies in", group="System", files=tuple(
    [File(path, directory=True) for path in (
        "/etc", "/etc/pki", "/usr", "/usr/bin", "/usr/lib", "/usr/lib64", "/usr/share", "/usr/share/doc", "/var/log")]
    + [File("/bin", link="usr/bin"), File("/sbin", link="usr/bin"), File("/usr/sbin", link="bin")]))
busybox = package(
    "busybox", "1.35.0", "4", arch="x86_64", summary="One small program that is many", group="System", license="GPLv2",
    description="A shell and the everyday tools in one static executable: what scriptlets run in.",
    requires=("filesystem",), provides=("/bin/sh", "/usr/bin/sh"), files=(
        File("/usr/bin/busybox", source=BUSYBOX, mode=0o755),) + tuple(
            File("/usr/bin/" + name, link="busybox")
            for name in ("sh", "cat", "cp", "echo", "false", "grep", "ls", "mkdir", "mv", "rm", "sed", "sleep", "true")))
release = package("demo-release", "9", summary="The name and number of this system", group="System",
                  provides=("system-release = 9", "system-release(releasever) = 9"), files=(
                      File("/etc/demo-release", text="Demonstration release 9\n", config=True),
                      File("/etc/os-release", text='NAME="Demonstration"\nID=demo\nVERSION_ID=9\n', config=True)))
setup = package("setup", "2.13", summary="First accounts and services", group="System", files=(
    File("/etc/passwd", text="root:x:0:0:root:/root:/bin/sh\n", config=True),
    File("/etc/group", text="root:x:0:\n", config=True)))
timezones = package("timezones", "2023c", summary="When it is where", group="System")
glib = package("libglow", "2.4.1", arch="x86_64", summary="Library of loops and lists", group="Libraries",
               license="LGPLv2+", provides=("libglow.so.2()(64bit)",))
glib32 = package("libglow", "2.4.1", arch="i686", summary="Library of loops and lists", group="Libraries",
                 license="LGPLv2+", provides=("libglow.so.2",))
crypt = package("libcipher", "1.1.1", "3", epoch=1, arch="x86_64", summary="Secrets kept well", group="Libraries",
                license="ASL 2.0", provides=("libcipher.so.1()(64bit)",))
kernels = tuple(package("kernel", "5.10.%d" % patch, "1", arch="x86_64", summary="The heart of it", group="System",
                        license="GPLv2", provides=("kernel-core = 5.10.%d" % patch, "installonlypkg(kernel)"),
                        build_time=EPOCH - (130 - 30 * at) * DAY, files=(
                            File("/boot", directory=True),
                            File("/boot/vmlinuz-5.10.%d" % patch, noise=400000 + 9000 * at)))
                for at, patch in enumerate((12, 14, 19)))

# Programs

edwin = package("edwin", "8.1", arch="x86_64", summary="Text editor with a long history", group="Editors",
                license="GPLv3+", requires=("libglow >= 2.4", "/bin/sh"),
                description="Edwin edits text.\n\n" + "\n\n".join(
                    "It does so in the %s manner, which is told here at some length so that there is a description "
                    "that wants to be scrolled. Lines are broken where the writer broke them, and nowhere else." % word
                    for word in ("plain", "modal", "structural", "patient", "remote", "collaborative", "quiet")),
                scripts=(("post", "echo edwin: registering with the system\necho edwin: no display found >&2"),
                         ("preun", "echo edwin: good bye")))
wordsmith = package("wordsmith", "4.2", arch="x86_64", summary="Word processor: Büro-Schriftsätze, café, 文書, тексты",
                    group="Editors", description="Schreibt Größeres.\nÉcrit tout.\n文章を書く。\nПишет всё.\n"
                    "Even “quotes”, em—dashes, €, 100 % and 🙂.", requires=("libglow",))
edwin_i18n = package("edwin-i18n", "8.1", summary="Translations of Edwin", group="Editors", requires=("edwin",))
edwin_gui = package("edwin-gui", "8.1", arch="x86_64", summary="Windows for Edwin", group="Editors",
                    requires=("edwin", "desktop-shell"))
pager = package("pager", "590", arch="x86_64", summary="One screen after the other", group="Editors")
desktop = package("desktop-shell", "42.1", arch="x86_64", summary="Panels and launchers", group="Desktop",
                  requires=("libglow", "desktop-icons"), size=900000)
desktop_icons = package("desktop-icons", "42", summary="Pictures for the desktop", group="Desktop", size=1600000)
desktop_sounds = package("desktop-sounds", "42", summary="Bells", group="Desktop", size=700000)
wallpapers = package("wallpapers", "9", summary="Mountains, mostly", group="Desktop", size=2500000)
browser = package("browser", "115.4", arch="x86_64", summary="Looks at the web", group="Desktop", license="MPLv2.0",
                  requires=("libcipher.so.1()(64bit)", "desktop-shell"), size=5000000)
mail_old = package("postbote", "2.0", arch="x86_64", summary="Mail, as it was", group="Network",
                   requires=("libcipher",))
mail_new = package("postbox", "3.0", arch="x86_64", summary="Mail, in place of Postbote", group="Network",
                   obsoletes=("postbote < 3",), provides=("postbote = 3.0",), requires=("libcipher",))
named = package("named-server", "9.18", epoch=32, arch="x86_64", summary="Answers with addresses", group="Network",
                requires=("named-libs = 32:9.18-1",))
named_libs = package("named-libs", "9.18", epoch=32, arch="x86_64", summary="What servers of names share",
                     group="Network")
fetcher = package("fetcher", "7.88", arch="x86_64", summary="Gets files by URL", group="Network", requires=("libcipher",))
rival = package("web-rival", "1.0", arch="x86_64", summary="Can't bear the browser", group="Network",
                conflicts=("fetcher",))
chess = package("chess", "6.2", arch="x86_64", summary="Sixty-four squares", group="Games")
solitaire = package("solitaire", "3.3", summary="Cards for one", group="Games", requires=("libglow",))
maze = package("maze", "0.9", summary="Find the way out", group="Games")
compiler = package("compiler", "12.2", arch="x86_64", summary="Turns words into deeds", group="Development",
                   requires=("linker", "compiler-headers"), size=1200000)
linker = package("linker", "2.40", arch="x86_64", summary="Brings objects together", group="Development")
headers = package("compiler-headers", "12.2", summary="What every source includes", group="Development")
debugger = package("debugger", "13.1", arch="x86_64", summary="Looks into running programs", group="Development",
                   requires=("libglow",))
versions = package("versions", "2.39", arch="x86_64", summary="Remembers every change", group="Development")
fonts_sans = package("fonts-plain", "2.37", summary="Letters with no serifs", group="Fonts")
fonts_serif = package("fonts-book", "2.37", summary="Letters with serifs", group="Fonts")
fonts_han = package("fonts-han", "2.004", summary="漢字", group="Fonts", size=3000000)
metapackage = package("empty-shell", "1.0", summary="Holds no files at all", group="System", files=())

# Suites: packages that bring others

office = package("office-suite", "7.4", summary="Everything for the office", group="Suite", files=(),
                 requires=("wordsmith", "tabular", "slideshow"))
tabular = package("tabular", "7.4", arch="x86_64", summary="Rows and columns", group="Office")
slideshow = package("slideshow", "7.4", arch="x86_64", summary="Next, please", group="Office")
network_suite = package("network-suite", "1.0", summary="Everything for the network", group="Suite", files=(),
                        requires=("fetcher", "postbote"))
fonts_suite = package("fonts-suite", "1.0", summary="Every font", group="Suite", files=(),
                      requires=("fonts-plain", "fonts-book"))

# A chain of dependencies, each asking for the next one
chain = tuple(package("chain-%s" % name, "1.0", arch="x86_64", summary="Link %d of a chain" % at, group="Examples",
                      requires=("chain-%s = 1.0" % follower,) if follower else ())
              for at, (name, follower) in enumerate((("one", "two"), ("two", "three"), ("three", "four"),
                                                     ("four", "five"), ("five", "")), 1))

# Packages that make trouble

noisy = package("trouble-noisy", summary="Scriptlets that talk on both streams", group="Trouble", requires=("/bin/sh",),
                scripts=(("pre", "echo noisy pre: on the output\necho noisy pre: on the error output >&2"),
                         ("post", "for n in 1 2 3; do echo noisy post: line $n of 3, 100%; done\n"
                                  "echo noisy post: grüße >&2"),
                         ("preun", "echo noisy preun"), ("postun", "echo noisy postun >&2")))
fails_pre = package("trouble-pre", summary="A %pre that fails: is not installed", group="Trouble",
                    requires=("/bin/sh",), scripts=(("pre", "echo this system is not good enough >&2\nexit 3"),))
fails_post = package("trouble-post", summary="A %post that fails: is installed all the same", group="Trouble",
                     requires=("/bin/sh",), scripts=(("post", "echo could not finish >&2\nexit 4"),))
clash_a = package("trouble-clash-a", summary="Owns a file that another one owns too", group="Trouble",
                  files=(File("/usr/share/clash", text="a\n"),))
clash_b = clash_a.but(name="trouble-clash-b", files=(File("/usr/share/clash", text="b\n"),))
broken = package("trouble-broken", summary="Needs what nobody has", group="Trouble", requires=("unobtainium >= 3",))
slow_script = package("trouble-slow", summary="A scriptlet that takes three seconds", group="Trouble",
                      requires=("/bin/sh",), scripts=(("post", "for n in 1 2 3; do echo second $n; sleep 1; done"),))
signed = package("signed-well", summary="Signed with the key that the repository names", group="Signed",
                 signer="demo")
signed_other = package("signed-wrongly", summary="Signed with a stranger's key", group="Signed", signer="stranger")
unsigned = package("signed-not", summary="Not signed, in a repository that asks for it", group="Signed")
private = package("members-handbook", "2.0", summary="Only for those who know the password", group="Members")
private_path = package("members-minutes", "1.1", summary="Only for those who know the password", group="Members")
private_basic = package("members-bulletin", "1.3", summary="Only for those who know the password", group="Members")
atlas = package("atlas", "2024.1", summary="Maps of the world: a long download", group="Large",
                files=(File("/usr/share/atlas", directory=True),)
                + tuple(File("/usr/share/atlas/sheet-%d" % sheet, noise=10 << 20) for sheet in (1, 2, 3)))
atlas_cities = package("atlas-cities", "2024.1", summary="Maps of the towns", group="Large", size=4 << 20,
                       requires=("atlas",))

INSTALLED = (
    filesystem, busybox, release, setup, timezones, glib, glib32, crypt, kernels[0], kernels[1], edwin, pager,
    mail_old, named, named_libs, fetcher, chess, solitaire, maze, linker, headers, debugger, fonts_sans, fonts_serif,
    metapackage, network_suite, fonts_suite,
    package("locally-built", "0.3", summary="In no repository", group="Examples"),
)

GROUPS = (
    Group("core", "Core", "What no system can be without", visible=False,
          mandatory=("filesystem", "busybox", "setup", "demo-release")),
    Group("editors", "Editors", "To write with. Installed; some of it is out of date.", mandatory=("edwin", "pager"),
          default=("wordsmith",), optional=("edwin-i18n",), conditional=(("edwin-gui", "desktop-shell"),),
          names=(("de", "Editoren"), ("fr", "Éditeurs"), ("ja", "エディタ"))),
    Group("desktop", "Desktop", "Windows, panels and pictures. Not installed.",
          mandatory=("desktop-shell", "desktop-icons"), default=("browser", "wallpapers"),
          optional=("desktop-sounds",), names=(("de", "Arbeitsoberfläche"),)),
    Group("games", "Games", "Installed and up to date.", mandatory=("chess", "solitaire"), default=("maze",)),
    Group("development", "Development Tools", "Partly installed.", mandatory=("compiler", "linker"),
          default=("debugger",), optional=("versions",)),
    Group("fonts", "Fonts & Scripts", "Hidden, and up to date.", visible=False, mandatory=("fonts-plain", "fonts-book"),
          optional=("fonts-han",)),
    Group("network", "Network", "Servers and clients. Installed, out of date.", mandatory=("fetcher", "named-server"),
          conditional=(("postbox", "desktop-shell"),)),
    Group("trouble", "Trouble", "Everything that goes wrong, at once.", mandatory=("trouble-noisy", "trouble-pre"),
          default=("trouble-post",), optional=("trouble-clash-a", "trouble-clash-b", "trouble-broken")),
)

RECIPE = Recipe(
    installed=INSTALLED,
    repositories=(
        Repository("base", "Demonstration 9 - $basearch", file="", gpgcheck=False, groups=GROUPS, packages=(
            filesystem, busybox, release, setup, timezones, glib, glib32, crypt, *kernels[:2], edwin, wordsmith,
            edwin_i18n, edwin_gui, pager, desktop, desktop_icons, desktop_sounds, wallpapers, browser, mail_old, named,
            named_libs, fetcher, rival, chess, solitaire, maze, compiler, linker, headers, debugger, versions,
            fonts_sans, fonts_serif, fonts_han, metapackage, office, tabular, slideshow, network_suite, fonts_suite)),
        Repository("updates", "Demonstration 9 - Updates", gpgcheck=False, options=("metadata_expire=1h",), packages=(
            kernels[2],
            newer(glib, "2.4.3"), newer(glib32, "2.4.3"),
            newer(crypt, "1.1.1", "5"),
            newer(edwin, "8.2"), newer(edwin, "9.0", days=90),
            newer(edwin_i18n, "9.0", days=90),
            newer(timezones, "2024a"),
            newer(named, "9.18", "2", requires=("named-libs = 32:9.18-2",)), newer(named_libs, "9.18", "2"),
            newer(debugger, "13.2"),
            newer(network_suite, "1.1", requires=("fetcher >= 7.88",)),
            mail_new)),
        Repository("extras", "Extras, from several places", by="several", gpgcheck=False, file="extras.repo",
                   packages=(*chain, atlas, atlas_cities)),
        Repository("mirrored", "Found by a mirror list", by="mirrorlist", gpgcheck=False, file="extras.repo", packages=(
            package("almanac", "2024", summary="Sun, moon and tides"),
            package("dictionary", "1.2", summary="Words and what they mean"),
            newer(fetcher, "8.0"))),
        Repository("trouble", "Packages that make trouble", gpgcheck=False, file="trouble.repo", packages=(
            noisy, fails_pre, fails_post, clash_a, clash_b, broken, slow_script)),
        Repository("signed", "Packages with signatures", gpgcheck=True, key="demo", file="trouble.repo",
                   packages=(signed, signed_other, unsigned)),
        Repository("bulletin", "With name and password", auth="basic", authorized=True, gpgcheck=False,
                   file="members.repo", packages=(private_basic,)),
        Repository("members", "Asks for name (demo) and password (secret)", auth="query", enabled=False,
                   gpgcheck=False, file="members.repo", packages=(private,)),
        Repository("minutes", "Asks for them in the path", auth="path", enabled=False, gpgcheck=False,
                   file="members.repo", packages=(private_path,)),
        Repository("testing", "Not ready yet", enabled=False, packages=(
            newer(edwin, "10.0", "0.beta1", days=120), newer(chess, "7.0", "0.rc2"),
            package("prototype", "0.1", summary="An idea"))),
    ),
)
