# SPDX-License-Identifier: GPL-2.0-or-later
"""The sandbox on the command line: make it, serve it, and tell its server to misbehave."""

import argparse
import json
import os
import shutil
import signal
import sys
from pathlib import Path

from demo import Sandbox, SandboxError, Server, make
from demo.build import describe
from demo.default import RECIPE
from demo.recipe import Recipe
from demo.server import ACTIONS, Control


def serve(options) -> None:
    sandbox = Sandbox(options.recipe, options.directory.resolve())
    if not sandbox.repos.is_dir():
        raise SandboxError("no sandbox system in %s: make one first" % options.directory)
    # The server's threads inherit the mask, so that the signals wait for the main thread.
    signals = {signal.SIGINT, signal.SIGTERM, signal.SIGHUP}
    signal.pthread_sigmask(signal.SIG_BLOCK, signals)
    with Server(sandbox, options.port, options.rate, configure=not options.keep) as server:
        if options.keep:
            sandbox.readdress(server.url)
        if options.ready_file:
            # Whoever waits for the file shall find it whole.
            part = options.ready_file.with_suffix(".part")
            part.write_text(server.url + "\n", encoding="utf-8")
            os.replace(part, options.ready_file)
        print(server.url, flush=True)
        signal.sigwait(signals)


def control(options) -> None:
    request = {}
    if options.recover:
        request["recover"] = True
    if options.rate is not None:
        request["rate"] = options.rate
    if options.fail:
        request.update(fail=options.fail[0], action=options.fail[1], times=options.times)
    print(json.dumps(Control(options.url)(**request), indent=1))


def main(recipe: Recipe = RECIPE) -> int:
    """The command line; another recipe than the demo's makes and serves another system."""
    parser = argparse.ArgumentParser(prog="demo", description=__doc__)
    commands = parser.add_subparsers(dest="command", required=True)

    one = commands.add_parser("make", help="make the sandbox system anew")
    one.add_argument("directory", type=Path)
    one.set_defaults(call=lambda options: print(describe(make(options.recipe, options.directory))))

    one = commands.add_parser("serve", help="serve its repositories until a signal comes")
    one.add_argument("directory", type=Path)
    one.add_argument("--port", type=int, default=0, help="default: a free one")
    one.add_argument("--rate", type=int, default=0, help="bytes a second of each connection")
    one.add_argument("--keep", action="store_true", help="leave the configuration as the last run left it")
    one.add_argument("--ready-file", type=Path, help="written, with the server's URL, when it serves")
    one.set_defaults(call=serve)

    one = commands.add_parser("control", help="tell a server what to do, and see what it counted")
    one.add_argument("url")
    one.add_argument("--rate", type=int)
    one.add_argument("--fail", nargs=2, metavar=("PATTERN", "ACTION"),
                     help="a status number, or one of: " + ", ".join(ACTIONS))
    one.add_argument("--times", type=int, default=0, help="so many times, then no more; default: always")
    one.add_argument("--recover", action="store_true", help="forget all failures")
    one.set_defaults(call=control)

    options = parser.parse_args()
    options.recipe = recipe
    missing = [tool for tool in ("rpmbuild", "rpmsign", "gpg", "createrepo_c", "tar") if not shutil.which(tool)]
    if options.command == "make" and missing:
        print("demo: missing: " + ", ".join(missing), file=sys.stderr)
        return 1
    try:
        options.call(options)
    except (SandboxError, OSError) as error:
        print("demo: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
