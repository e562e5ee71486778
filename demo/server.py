# SPDX-License-Identifier: GPL-2.0-or-later
"""Serves a sandbox's repositories on loopback HTTP, as well or as badly as it is told.

    /repos/ID/...                     a repository; with `auth` "basic" only with name and password
    /vantry?user=U&pass=P&path=/repos/ID/...   the same with the credentials in the query
    /rhel/user=U/pass=P/repos/ID/...           and in the path
    /mirror/N/ID/...                  a copy of a repository that wants no credentials
    /mirrorlist/ID                    a mirror list: a dead mirror first, then two that live
    /keys/NAME.asc                    the public keys
    /control                          rules and counts, for other processes (see `Control`)
"""

import base64
import fnmatch
import json
import os
import re
import socket
import struct
import threading
import time
import urllib.parse
import urllib.request
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path
from typing import Dict, List, Optional, Tuple

from demo.build import Sandbox
from demo.recipe import Repository

#: A port where nobody listens.
DEAD_MIRROR = "http://127.0.0.1:1/dead"
#: "refuse" resets the connection, "hang" never answers, "stall" stops in mid-file, "truncate" ends
#: there, "corrupt" turns bytes around, a number is answered as a status.
ACTIONS = ("refuse", "hang", "stall", "truncate", "corrupt")
CHUNK = 16384


class Rule:
    """What to do with the requests whose path matches a pattern, and how often (0: always)."""

    def __init__(self, pattern: str, action: str, times: int = 0):
        if action not in ACTIONS and not re.fullmatch("[1-5][0-9][0-9]", action):
            raise ValueError("unknown action: %s" % action)
        self.pattern = pattern
        self.action = action
        self.left = times or -1


class Server:
    """The server of one sandbox; a context manager. Its members may be used from any thread."""

    def __init__(self, sandbox: Sandbox, port: int = 0, rate: int = 0, configure: bool = True):
        #: Bytes a second of each connection; 0: as fast as it goes.
        self.rate = rate
        self.sandbox = sandbox
        self.repositories: Dict[str, Repository] = {repo.id: repo for repo in sandbox.recipe.repositories}
        self.lock = threading.Lock()
        self.rules: List[Rule] = []
        self.counts: Dict[str, int] = {}
        #: Set when those who hang are to be let go.
        self.released = threading.Event()
        self.http = _Http(("127.0.0.1", port), _Handler)
        self.http.owner = self
        self.url = "http://127.0.0.1:%d" % self.http.server_address[1]
        self.thread: Optional[threading.Thread] = None
        if configure:
            sandbox.configure(self.url)

    def __enter__(self) -> "Server":
        self.thread = threading.Thread(target=self.http.serve_forever, args=(0.05,), name="sandbox server", daemon=True)
        self.thread.start()
        return self

    def __exit__(self, *_) -> None:
        self.http.stopping.set()
        self.released.set()
        self.http.shutdown()
        self.http.server_close()
        self.http.hang_up()
        if self.thread:
            self.thread.join()

    def fail(self, pattern: str, action: str, times: int = 0) -> None:
        """Makes requests for paths that match the shell pattern fail; the latest rule that matches wins."""
        with self.lock:
            self.rules.insert(0, Rule(pattern, str(action), times))

    def recover(self) -> None:
        """Forgets all rules and lets go those who hang."""
        with self.lock:
            self.rules.clear()
            released, self.released = self.released, threading.Event()
        released.set()

    def count(self, pattern: str = "*") -> int:
        """How many requests there were for paths that match."""
        with self.lock:
            return sum(number for path, number in self.counts.items() if fnmatch.fnmatchcase(path, pattern))

    def reset_counts(self) -> None:
        with self.lock:
            self.counts.clear()

    def take(self, path: str) -> Tuple[str, threading.Event]:
        """Counts a request, gives the action that a rule has for it ("" none)."""
        with self.lock:
            self.counts[path] = self.counts.get(path, 0) + 1
            for rule in self.rules:
                if rule.left and fnmatch.fnmatchcase(path, rule.pattern):
                    rule.left -= 1
                    return rule.action, self.released
            return "", self.released

    def control(self, request: Dict) -> Dict:
        """One request to /control: the keys `recover`, `reset`, `rate`, `fail` (with `action`, `times`)."""
        if request.get("recover"):
            self.recover()
        if request.get("reset"):
            self.reset_counts()
        if "rate" in request:
            self.rate = int(request["rate"])
        if "fail" in request:
            self.fail(request["fail"], request["action"], int(request.get("times", 0)))
        with self.lock:
            return {"rate": self.rate, "counts": dict(self.counts),
                    "rules": [[rule.pattern, rule.action, max(rule.left, 0)] for rule in self.rules if rule.left]}


class Control:
    """Tells the server of another process what to do."""

    def __init__(self, url: str):
        self.url = url.rstrip("/") + "/control"

    def __call__(self, **request) -> Dict:
        with urllib.request.urlopen(self.url, json.dumps(request).encode(), timeout=10) as answer:
            return json.load(answer)


class _Http(ThreadingHTTPServer):
    daemon_threads = True
    # Those who are served when the server ends are not waited for: they may hang on purpose.
    block_on_close = False
    request_queue_size = 64
    owner: Server

    def __init__(self, *arguments):
        self.stopping = threading.Event()
        self.lock = threading.Lock()
        self.connections = set()
        super().__init__(*arguments)

    def process_request(self, request, client_address) -> None:
        with self.lock:
            self.connections.add(request)
        super().process_request(request, client_address)

    def shutdown_request(self, request) -> None:
        with self.lock:
            self.connections.discard(request)
        super().shutdown_request(request)

    def hang_up(self) -> None:
        """Ends the connections that clients keep, so that nobody is served by a server that has ended."""
        with self.lock:
            for request in self.connections:
                try:
                    request.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass

    def handle_error(self, request, client_address) -> None:
        """A client that hangs up is no error of the server."""


class _Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server: _Http
    # Small answers shouldn't wait for an acknowledgement.
    disable_nagle_algorithm = True

    def log_message(self, format, *args) -> None:  # pylint: disable=redefined-builtin
        """Silence: what was asked for is counted."""

    def do_POST(self) -> None:
        owner = self.server.owner
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        if self.path != "/control":
            self.answer(404, b"not found\n")
            return
        try:
            self.answer(200, json.dumps(owner.control(json.loads(body))).encode(), "application/json")
        except (ValueError, KeyError, TypeError) as error:
            self.answer(400, str(error).encode())

    def do_HEAD(self) -> None:
        self.do_GET()

    def do_GET(self) -> None:
        owner = self.server.owner
        path, credentials = self.resolve()
        if path == "/control":
            self.answer(200, json.dumps(owner.control({}), indent=1).encode(), "application/json")
            return
        action, released = owner.take(path)
        if action == "refuse":
            self.reset()
        elif action == "hang":
            released.wait()
            self.close_connection = True
        elif action.isdigit():
            self.answer(int(action), b"as told\n")
        elif path.startswith("/mirrorlist/") and path[12:] in owner.repositories:
            place = path[12:]
            lines = [DEAD_MIRROR] + ["%s/mirror/%d" % (owner.url, number) for number in (1, 2)]
            self.answer(200, "".join("%s/%s\n" % (line, place) for line in lines).encode())
        else:
            self.serve_file(path, credentials, action, released)

    def resolve(self) -> Tuple[str, Optional[Tuple[str, str]]]:
        """The path that is meant, decoded and with credentials taken out of it, and the credentials."""
        raw = self.path
        found = re.match(r"/vantry\?[^&=]*=([^&]*)&[^&=]*=([^&]*)&path=(.*)", raw)
        found = found or re.match(r"/rhel/[^/=]*=([^/]*)/[^/=]*=([^/]*)(/.*)", raw)
        if found:
            name, password, rest = (urllib.parse.unquote(part) for part in found.groups())
            return rest, (name, password)
        path = urllib.parse.unquote(raw.partition("?")[0])
        header = self.headers.get("Authorization", "")
        if header.startswith("Basic "):
            name, _, password = base64.b64decode(header[6:]).decode("utf-8", "replace").partition(":")
            return path, (name, password)
        return path, None

    def serve_file(self, path: str, credentials, action: str, released: threading.Event) -> None:
        owner = self.server.owner
        parts = [part for part in path.split("/") if part]
        if ".." in parts or len(parts) < 2:
            self.answer(404, b"not found\n")
            return
        if parts[0] == "mirror" and len(parts) > 2:
            # A copy asks for no credentials, so there is none of a repository that does.
            repository = owner.repositories.get(parts[2])
            file = Path() if repository and repository.auth else owner.sandbox.repos.joinpath(*parts[2:])
        elif parts[0] == "repos":
            repository = owner.repositories.get(parts[1])
            if repository and repository.auth and credentials != (repository.user, repository.password):
                # 401 only with the challenge of the one method that has one.
                basic = repository.auth == "basic"
                self.answer(401 if basic else 403, b"name and password, please\n",
                            challenge='Basic realm="%s"' % repository.id if basic else "")
                return
            file = owner.sandbox.repos.joinpath(*parts[1:])
        elif parts[0] == "keys":
            file = owner.sandbox.keys.joinpath(*parts[1:])
        else:
            file = Path()
        try:
            with open(file, "rb") as stream:
                self.send_stream(stream, os.fstat(stream.fileno()).st_size, action, released)
        except (FileNotFoundError, IsADirectoryError, NotADirectoryError):
            self.answer(404, b"not found\n")

    def send_stream(self, stream, size: int, action: str, released: threading.Event) -> None:
        start, wanted = 0, re.fullmatch(r"bytes=(\d+)-(\d*)", self.headers.get("Range", ""))
        end = size
        if wanted and int(wanted[1]) < size:
            start = int(wanted[1])
            end = min(size, int(wanted[2]) + 1) if wanted[2] else size
            self.send_response(206)
            self.send_header("Content-Range", "bytes %d-%d/%d" % (start, end - 1, size))
        else:
            self.send_response(200)
        self.send_header("Content-Type", "application/octet-stream")
        self.send_header("Content-Length", str(end - start))
        self.end_headers()
        if self.command == "HEAD":
            return
        stream.seek(start)
        stop = start + (end - start) // 2 if action in ("truncate", "stall") else end
        began, sent = time.monotonic(), 0
        while start < stop:
            rate = self.server.owner.rate
            # Slow downloads come in small pieces, so that they move evenly.
            data = stream.read(min(CHUNK if not rate else max(1, min(CHUNK, rate // 20)), stop - start))
            if action == "corrupt":
                data = data[::-1] if data != data[::-1] else bytes(255 - byte for byte in data)
            self.wfile.write(data)
            start += len(data)
            sent += len(data)
            if rate:
                ahead = sent / rate - (time.monotonic() - began)
                # A rate that was raised meanwhile leaves the time spent out of account.
                if ahead > 0:
                    self.server.stopping.wait(min(ahead, 1))
                else:
                    began, sent = time.monotonic(), 0
        if action == "stall":
            self.wfile.flush()
            released.wait()
        if stop < end:
            self.close_connection = True

    def answer(self, status: int, body: bytes, kind: str = "text/plain", challenge: str = "") -> None:
        self.send_response(status)
        if challenge:
            self.send_header("WWW-Authenticate", challenge)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def reset(self) -> None:
        """Ends the connection the hard way: the client sees a reset."""
        self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self.close_connection = True
        # The reader holds the socket open too.
        self.rfile.close()
        self.connection.close()
