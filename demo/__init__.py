# SPDX-License-Identifier: GPL-2.0-or-later
"""A sandbox system: real packages, real repositories on loopback HTTP, a real root to administer.

    from demo import make, Server
    from demo.recipe import Package, Recipe, Repository

    sandbox = make(recipe, directory)
    with Server(sandbox) as server:
        ...  # VOKROOT=sandbox.root; server.fail("*/alpha-*.rpm", "404")
"""

from demo.build import Sandbox, SandboxError, make
from demo.server import Server

__all__ = ["Sandbox", "SandboxError", "Server", "make"]
