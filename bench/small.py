# SPDX-License-Identifier: GPL-2.0-or-later
"""Makes small packages that can really be installed, and serves them.

    small.py make DIRECTORY [--packages N]
    small.py serve DIRECTORY READY

DIRECTORY/root is an empty system, DIRECTORY/repos/small the repository: small-000, small-001 ..., two
files each and no dependencies. `serve` does so on loopback HTTP until it is killed; it writes the
configuration of the root, and then the file READY.
"""

import argparse
import os
import signal
import sys
import tempfile
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TREE)]

from demo import Sandbox, Server, make  # noqa: E402
from demo.build import BUILD_HOST, run  # noqa: E402
from demo.recipe import EPOCH, File, Recipe, Repository  # noqa: E402

REPOSITORY = Repository("small", "Small packages", gpgcheck=False, file="small.repo")
RECIPE = Recipe(repositories=(REPOSITORY,))

HEAD = """Name: small
Version: 1.0
Release: 1
Summary: Small packages
License: MIT
BuildArch: noarch
AutoReqProv: no
%description
Not a package itself.
%install
cp -a %{stage}/. %{buildroot}/
"""
PART = """%%package -n %(name)s
Summary: Small package number %(number)d
AutoReqProv: no
%%description -n %(name)s
A file of data and what is to be read about it.
%%files -n %(name)s
/usr/share/%(name)s
%%doc /usr/share/doc/%(name)s
"""


def build(count: int, place: Path) -> None:
    """All of them by one run of the builder, which otherwise takes longer than the packages."""
    with tempfile.TemporaryDirectory(dir=place.parent) as scratch:
        top = Path(scratch)
        names = ["small-%03d" % number for number in range(count)]
        for name in names:
            for file in (File("usr/share/%s/data" % name, noise=3000),
                         File("usr/share/doc/%s/README" % name, text="There is little to say of %s.\n" % name)):
                path = top / "stage" / file.path
                path.parent.mkdir(parents=True)
                path.write_bytes(file.bytes())
        spec = top / "small.spec"
        spec.write_text(HEAD + "".join(PART % {"name": name, "number": number}
                                       for number, name in enumerate(names)))
        macros = {
            "_topdir": top, "_tmppath": top, "_rpmdir": place, "stage": top / "stage", "_buildhost": BUILD_HOST,
            "__spec_install_post": "%{nil}", "_rpmfilename": "%%{NAME}-%%{VERSION}-%%{RELEASE}.%%{ARCH}.rpm",
            "_build_name_fmt": "%%{NAME}-%%{VERSION}-%%{RELEASE}.%%{ARCH}.rpm", "_binary_payload": "w2.gzdio",
            "use_source_date_epoch_as_buildtime": 1, "clamp_mtime_to_source_date_epoch": 1,
            "source_date_epoch_from_changelog": 0,
        }
        command = ["rpmbuild", "-bb"]
        for name, value in macros.items():
            command += ["--define", "%s %s" % (name, value)]
        run(command + [str(spec)], env=dict(os.environ, HOME=scratch, SOURCE_DATE_EPOCH=str(EPOCH)))
    run(["createrepo_c", "--quiet", "--no-database", "--general-compress-type", "gz", str(place)])


def serve(directory: Path, ready: Path) -> None:
    with Server(Sandbox(RECIPE, directory)) as server:
        # Whoever waits for the file shall find it whole.
        part = ready.with_suffix(".part")
        part.write_text(server.url + "\n", encoding="utf-8")
        os.replace(part, ready)
        while True:
            signal.pause()


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    commands = parser.add_subparsers(dest="command", required=True)
    one = commands.add_parser("make")
    one.add_argument("directory", type=Path)
    one.add_argument("--packages", type=int, default=500)
    one = commands.add_parser("serve")
    one.add_argument("directory", type=Path)
    one.add_argument("ready", type=Path)
    options = parser.parse_args()
    if options.command == "make":
        sandbox = make(RECIPE, options.directory)
        build(options.packages, sandbox.repos / REPOSITORY.id)
    else:
        serve(options.directory.resolve(), options.ready)
    return 0


if __name__ == "__main__":
    sys.exit(main())
