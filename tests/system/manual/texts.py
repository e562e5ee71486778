# SPDX-License-Identifier: GPL-2.0-or-later
"""Texts of the program, as they stand in its sources."""

import ast
import os
import re
import subprocess
from pathlib import Path
from typing import FrozenSet, Iterator, List, NamedTuple, Set

TREE = Path(__file__).resolve().parents[3]
# What a user has no word for: mistakes of the program, whose texts all begin alike.
INTERNAL = ("Internal error", "getGroupItem_", "getRpmHdrValue")

_STRING = r'"(?:[^"\\]|\\.)*"'
_STRINGS = r"%s(?:\s*%s)*" % (_STRING, _STRING)
_COMMENT = re.compile(r'("(?:[^"\\\n]|\\.)*")|//[^\n]*|/\*.*?\*/', re.DOTALL)
_ESCAPES = {"n": "\n", "t": "\t"}


def sources(*folders: str) -> Iterator[str]:
    for folder in folders:
        for path in sorted((TREE / "src" / folder).glob("*.cpp")):
            yield _COMMENT.sub(lambda found: found.group(1) or "", path.read_text(encoding="utf-8"))


def joined(literals: str) -> str:
    """The text of string literals of C++ that follow one another."""
    parts = (literal[1:-1] for literal in re.findall(_STRING, literals))
    return "".join(re.sub(r"\\(.)", lambda found: _ESCAPES.get(found.group(1), found.group(1)), part)
                   for part in parts)


def found_in(pattern: str, *folders: str) -> Set[str]:
    """Texts that stand where the pattern has the place STRINGS."""
    expression = re.compile(pattern.replace("STRINGS", "(%s)" % _STRINGS))
    return {joined(text) for source in sources(*folders) for text in expression.findall(source)}


def menu_items() -> Set[str]:
    """Of the menu bar and of the menus of rows, without the sign of the letter for the keyboard."""
    items = found_in(r'addMenu\(tr\(STRINGS\)', "shell")
    items |= found_in(r'addAction\(\w+, tr\(STRINGS\)', "shell")
    items |= found_in(r'->addAction\(tr\(STRINGS\)', "shell")
    items |= found_in(r'addAction\((?:\w+, )?tr\(STRINGS\)', "table", "repo")
    return {item.replace("&", "") for item in items}


def labels() -> Set[str]:
    """Of buttons, boxes and columns, and titles of windows."""
    items = found_in(r'QPushButton\(tr\(STRINGS\)', "table", "repo", "log", "kit", "engine")
    items |= found_in(r'addButton\(\s*tr\(STRINGS\)', "repo")
    items |= found_in(r'addButton\(\s*"\w+", [\w()]+, tr\(STRINGS\)', "shell")
    items |= found_in(r'QCheckBox\(tr\(STRINGS\)', "shell")
    items |= found_in(r'addItem\(tr\(STRINGS\)', "shell", "repo")
    items |= found_in(r'addRow\(layout, tr\(STRINGS\)', "repo")
    items |= found_in(r'QGroupBox\(tr\(STRINGS\)', "repo")
    items |= found_in(r'addPair\(row, tr\("(\w+ Packages)"', "table")
    return {item.replace("&", "").rstrip(":") for item in items if "%" not in item}


def program_messages() -> Set[str]:
    """What windows tell of failures, but for the program's own mistakes."""
    call = r'(?:error|warning|fail|pythonExceptionV?|commExceptRaised\([^,]+|initializeFailed|collectList\("\w+")'
    texts = found_in(call + r'[(,]\s*(?:\w+, )?tr\(STRINGS\)', "engine", "repo", "table", "kit")
    texts |= found_in(r'message \+?= tr\(STRINGS\)', "repo")
    texts |= found_in(r'critical\([^;]*?tr\("Error"\),\s*tr\(STRINGS\)', "table")
    texts |= found_in(r'"Error"\),\s*QCoreApplication::translate\("RepoBrowse", STRINGS\)', "repo")
    texts |= found_in(r'statusLabel->setText\(\s*tr\(STRINGS\)', "repo")
    texts |= found_in(r'const QString text = tr\(STRINGS\)\.arg\(path\)', "repo")
    texts |= found_in(r'f?printf\(stderr, STRINGS', "shell")
    texts |= found_in(r'Unattended::tell\(STRINGS\)', "engine")
    return {text for text in texts if not text.startswith(INTERNAL)}


def shell_messages() -> Set[str]:
    """Of the scripts that start the program and show things for it."""
    texts: Set[str] = set()
    for name in ("packaging/programs/vok-launcher.in", "share/session.sh", "share/webbrowser", "share/mimeviewer"):
        source = (TREE / name).read_text(encoding="utf-8").replace("\\\n", "")
        for text in re.findall(r'^[^#\n]*(?:refuse|complain) "((?:\$\([^)]*\)|[^"\\]|\\.)*)"', source, re.MULTILINE):
            text = re.sub(r"\$\(named [^)]*\)", " %s", text)
            texts.add(re.sub(r"\$\{[^}]*\}|\$\w+", "%s", text.replace('\\"', '"')))
    return texts


def _literals(node: ast.AST) -> Iterator[str]:
    """Texts in an expression, without what only joins others."""
    for part in ast.walk(node):
        if isinstance(part, ast.Constant) and isinstance(part.value, str):
            yield part.value


def script_messages() -> Set[str]:
    """The same for the script: what it raises, and what it warns of."""
    texts: Set[str] = set()
    names = {"YumBaseError", "RepoError", "LockError", "GroupsError", "_problem", "_failed", "failed"}
    calls = {"warning", "error", "critical"}
    for path in sorted((TREE / "share/python/steward").glob("*.py")):
        for node in ast.walk(ast.parse(path.read_text(encoding="utf-8"))):
            if not isinstance(node, ast.Call):
                continue
            name = node.func.id if isinstance(node.func, ast.Name) else getattr(node.func, "attr", "")
            if name in names or name in calls and getattr(getattr(node.func, "value", None), "id", "") == "LOGGER":
                for argument in node.args:
                    texts.update(_literals(argument))
    return texts


def fragments(text: str) -> List[str]:
    """The parts of a text between its placeholders that are long enough to be found again."""
    parts = re.split(r"%%|%[0-9sdc]|\n|\t|\{\w*\}", text)
    parts = [" ".join(part.split()).lstrip(" ,.:;'\"") for part in parts]
    return [part for part in parts if len(re.findall(r"[A-Za-z]{2,}", part)) > 2]


class Option(NamedTuple):
    """An option of the command line, by all its names."""

    names: FrozenSet[str]
    argument: bool

    @classmethod
    def parse(cls, line: str) -> "Option":
        """Of a line that begins with its names."""
        names = re.findall(r"(?:^|(?<=[ ,]))--?[A-Za-z][\w-]*", line)
        return cls(frozenset(names), "=" in line)


def help_text() -> str:
    return subprocess.run([os.environ["VOK_EXECUTABLE"], "--help"], stdout=subprocess.PIPE, check=False).stdout.decode()


def options() -> Set[Option]:
    """As the program tells them."""
    return {Option.parse(re.split(r"\s{2,}(?=[^\s-])", line.strip())[0])
            for line in help_text().splitlines() if line.strip().startswith("-")}
