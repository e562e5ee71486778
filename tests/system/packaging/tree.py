# SPDX-License-Identifier: GPL-2.0-or-later
"""The files that this project consists of, and what they say of it."""

import os
import re
import subprocess
from pathlib import Path
from typing import List

TOP = Path(__file__).resolve().parents[3]


def files() -> List[Path]:
    """All files that are packed up as source, relative to the top folder."""
    done = subprocess.run([str(TOP / "scripts" / "rpm"), "--list"], check=True, stdout=subprocess.PIPE, encoding="utf-8")
    return [Path(line) for line in done.stdout.splitlines()]


def read(path) -> str:
    return (TOP / path).read_text(encoding="utf-8")


def version() -> str:
    """The version as the build has it."""
    return re.search(r"^project\(vok VERSION ([0-9.]+) ", read("CMakeLists.txt"), re.MULTILINE).group(1)


def program() -> Path:
    return Path(os.environ["VOK_EXECUTABLE"])
