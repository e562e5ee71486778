# SPDX-License-Identifier: GPL-2.0-or-later
"""A web server in a process of its own: the library holds the interpreter while it downloads.

It serves a directory on loopback, counts requests and misbehaves as told over its standard input:
one JSON list a line, answered by one JSON value a line.
"""

import http.server
import json
import os
import socketserver
import subprocess
import sys
import threading
import time

_STATE = {'requests': [], 'behave': {}, 'credentials': None}
_RELEASED = threading.Event()


class Server:
    """The test's side. `behave(path, what)`: what is an HTTP status, 'hang', 'truncate',
    'corrupt' (wrong bytes), 'stall' (silence from the middle on), ['first', what] (once, then
    good), ['redirect', url], ['slow', seconds], ['rate', bytes per second] or None for good
    behaviour."""

    def __init__(self, directory):
        self._process = subprocess.Popen(
            [sys.executable, os.path.abspath(__file__), directory], stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, universal_newlines=True)
        self.url = 'http://127.0.0.1:%d' % json.loads(self._process.stdout.readline())

    def _ask(self, *words):
        self._process.stdin.write(json.dumps(words) + '\n')
        self._process.stdin.flush()
        return json.loads(self._process.stdout.readline())

    def behave(self, path, what):
        self._ask('behave', path, what)

    def demand(self, authorization):
        """Refuses requests without this header."""
        self._ask('demand', authorization)

    def requests(self):
        """The requests since the last `forget`: [path, bytes of content sent]."""
        return self._ask('requests')

    def names(self):
        """The last path component of each request, in order."""
        return [path.split('?')[0].rsplit('/', 1)[-1] for path, _ in self.requests()]

    def forget(self):
        self._ask('forget')

    def close(self):
        self._process.stdin.close()
        self._process.wait(10)
        self._process.stdout.close()


class _Handler(http.server.SimpleHTTPRequestHandler):
    directory_served = ''

    def translate_path(self, path):
        if '://' in path:
            # Asked as a proxy.
            path = '/' + path.split('/', 3)[3]
        if path.startswith('/vantry?'):
            path = path.partition('&path=')[2]
        return os.path.join(self.directory_served, path.split('?')[0].lstrip('/'))

    def log_message(self, *args):
        pass

    def do_GET(self):
        entry = [self.path, 0]
        _STATE['requests'].append(entry)
        wanted = _STATE['credentials']
        if wanted and self.headers.get('Authorization') != wanted:
            self.send_response(401)
            self.send_header('WWW-Authenticate', 'Basic realm="x"')
            self.end_headers()
            return
        what = _STATE['behave'].get(self.path) or _STATE['behave'].get(
            self.path.split('?')[0])
        if isinstance(what, list) and what[0] == 'first':
            _STATE['behave'][self.path] = None
            what = what[1]
        if isinstance(what, int):
            self.send_error(what)
        elif what == 'hang':
            _RELEASED.wait(60)
        elif isinstance(what, list) and what[0] == 'redirect':
            self.send_response(302)
            self.send_header('Location', what[1])
            self.end_headers()
        else:
            if isinstance(what, list) and what[0] == 'slow':
                time.sleep(what[1])
            try:
                self._send(entry, what)
            except (BrokenPipeError, ConnectionResetError):
                pass

    def _send(self, entry, what):
        try:
            with open(self.translate_path(self.path), 'rb') as stream:
                data = stream.read()
        except OSError:
            self.send_error(404)
            return
        self.send_response(200)
        self.send_header('Content-Length', str(len(data)))
        self.end_headers()
        if what == 'corrupt':
            data = bytes(byte ^ 0xff for byte in data)
        if what in ('truncate', 'stall'):
            data = data[:len(data) // 2]
        entry[1] = len(data)
        step = max(1, what[1] // 20) if isinstance(what, list) and what[0] == 'rate' \
            else len(data) or 1
        for start in range(0, len(data), step):
            self.wfile.write(data[start:start + step])
            if step < len(data):
                time.sleep(0.05)
        if what == 'stall':
            _RELEASED.wait(60)


class _Server(socketserver.ThreadingMixIn, socketserver.TCPServer):
    daemon_threads = True
    request_queue_size = 64


def _main():
    _Handler.directory_served = sys.argv[1]
    server = _Server(('127.0.0.1', 0), _Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    _answer(server.server_address[1])
    for line in sys.stdin:
        words = json.loads(line)
        if words[0] == 'behave':
            _STATE['behave'][words[1]] = words[2]
        elif words[0] == 'demand':
            _STATE['credentials'] = words[1]
        elif words[0] == 'forget':
            del _STATE['requests'][:]
        _answer(_STATE['requests'] if words[0] == 'requests' else True)
    _RELEASED.set()


def _answer(value):
    sys.stdout.write(json.dumps(value) + '\n')
    sys.stdout.flush()


if __name__ == '__main__':
    _main()
