# SPDX-License-Identifier: GPL-2.0-or-later
"""The server of a sandbox: what it serves, and that it fails as it is told."""

import base64
import http.client
import socket
import tempfile
import threading
import time
import unittest
import urllib.error
import urllib.request
from pathlib import Path

from demo import Server, make
from demo.recipe import File, Package, Recipe, Repository
from demo.server import Control

BIG = Package("big", files=(File("/usr/share/big", noise=300000),))
RECIPE = Recipe(repositories=(
    Repository("open", packages=(BIG,), key="demo"),
    Repository("list", packages=(BIG,), by="mirrorlist"),
    Repository("basic", packages=(BIG,), auth="basic", password="p:ä"),
    Repository("query", packages=(BIG,), auth="query", password="a&b"),
    Repository("path", packages=(BIG,), auth="path")))
FILE = "/repos/open/big-1.0-1.noarch.rpm"
META = "/repodata/repomd.xml"


class Serving(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.sandbox = make(RECIPE, Path(cls.folder.name))
        cls.content = cls.sandbox.rpm(BIG, "open").read_bytes()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def setUp(self):
        self.server = Server(self.sandbox)
        self.server.__enter__()
        self.addCleanup(self.server.__exit__)

    def get(self, path, timeout=10, **headers):
        request = urllib.request.Request(self.server.url + path, headers=headers)
        with urllib.request.urlopen(request, timeout=timeout) as answer:
            return answer.read()

    def status(self, path, **headers):
        try:
            self.get(path, **headers)
            return 200
        except urllib.error.HTTPError as error:
            error.close()
            return error.code

    def test_serves_files_keys_and_mirrors(self):
        self.assertEqual(self.get(FILE), self.content)
        self.assertEqual(self.get("/mirror/2/open/big-1.0-1.noarch.rpm"), self.content)
        self.assertIn(b"BEGIN PGP PUBLIC KEY BLOCK", self.get("/keys/demo.asc"))
        self.assertEqual(self.status("/repos/open/none.rpm"), 404)

    def test_serves_nothing_outside_of_its_folders(self):
        for path in ("/repos/../url", "/repos/%2e%2e/url", "/../../etc/passwd", "/etc/passwd", "/repos", "/"):
            self.assertEqual(self.status(path), 404, path)

    def test_listens_on_loopback_only(self):
        self.assertEqual(self.server.http.server_address[0], "127.0.0.1")

    def test_serves_the_rest_of_a_file(self):
        self.assertEqual(self.get(FILE, Range="bytes=299000-"), self.content[299000:])
        self.assertEqual(self.get(FILE, Range="bytes=10-19"), self.content[10:20])

    def test_keeps_the_connection_for_further_requests(self):
        connection = http.client.HTTPConnection(*self.server.http.server_address)
        for _ in range(3):
            connection.request("GET", FILE)
            self.assertEqual(connection.getresponse().read(), self.content)
            self.assertIsNotNone(connection.sock)
        connection.close()

    def test_a_mirror_list_begins_with_a_dead_mirror(self):
        first, second, third = self.get("/mirrorlist/list").decode().split()
        with self.assertRaises(urllib.error.URLError):
            urllib.request.urlopen(first + META, timeout=5)
        for live in (second, third):
            with urllib.request.urlopen(live + META, timeout=5) as answer:
                self.assertIn(b"<repomd", answer.read())

    def test_basic_authentication_refuses_all_but_the_right_name_and_password(self):
        def header(text):
            return "Basic " + base64.b64encode(text.encode()).decode()
        path = "/repos/basic" + META
        self.assertEqual(self.status(path), 401)
        self.assertEqual(self.status(path, Authorization=header("demo:wrong")), 401)
        self.assertEqual(self.status(path, Authorization=header("other:p:ä")), 401)
        self.assertEqual(self.status(path, Authorization=header("demo:p:ä")), 200)
        self.assertEqual(self.status("/mirror/1/basic" + META), 404)

    def test_credentials_in_the_url_are_asked_for(self):
        self.assertEqual(self.status("/repos/query" + META), 403)
        self.assertEqual(self.status("/vantry?u=&p=&path=/repos/query" + META), 403)
        self.assertEqual(self.status("/vantry?u=demo&p=a%26b&path=/repos/query" + META), 200)
        self.assertEqual(self.status("/rhel/u=demo/p=wrong/repos/path" + META), 403)
        self.assertEqual(self.status("/rhel/u=demo/p=secret/repos/path" + META), 200)

    def test_a_number_is_answered_as_a_status(self):
        self.server.fail("*.rpm", "404")
        self.server.fail("*/repomd.xml", 503)
        self.assertEqual((self.status(FILE), self.status("/repos/open" + META)), (404, 503))

    def test_fails_so_many_times_and_no_more(self):
        self.server.fail("*.rpm", "500", times=2)
        self.assertEqual([self.status(FILE) for _ in range(3)], [500, 500, 200])

    def test_refuse_resets_the_connection(self):
        self.server.fail("*.rpm", "refuse")
        with self.assertRaises((ConnectionResetError, urllib.error.URLError)) as caught:
            self.get(FILE)
        error = caught.exception
        self.assertIsInstance(getattr(error, "reason", error), ConnectionResetError)

    def test_truncate_ends_in_the_middle(self):
        self.server.fail("*.rpm", "truncate")
        with self.assertRaises(http.client.IncompleteRead) as caught:
            self.get(FILE)
        self.assertEqual(caught.exception.partial, self.content[:len(self.content) // 2])

    def test_corrupt_has_the_right_length_and_the_wrong_content(self):
        self.server.fail("*.rpm", "corrupt")
        got = self.get(FILE)
        self.assertEqual(len(got), len(self.content))
        self.assertNotEqual(got, self.content)

    def test_hang_answers_nothing_until_recovery(self):
        self.server.fail("*.rpm", "hang")
        with self.assertRaises((socket.timeout, urllib.error.URLError)):
            self.get(FILE, timeout=0.3)
        ended = []

        def client():
            try:
                self.get(FILE, timeout=30)
            except (OSError, http.client.HTTPException) as error:
                ended.append(error)
        thread = threading.Thread(target=client)
        thread.start()
        while self.server.count(FILE) < 2:
            thread.join(0.01)
        self.server.recover()
        thread.join(10)
        self.assertEqual(len(ended), 1)
        self.assertEqual(self.get(FILE), self.content)

    def test_stall_gives_the_first_half_and_then_nothing(self):
        self.server.fail("*.rpm", "stall")
        half = len(self.content) // 2
        with urllib.request.urlopen(self.server.url + FILE, timeout=0.5) as answer:
            self.assertEqual(answer.read(half), self.content[:half])
            with self.assertRaises(socket.timeout):
                answer.read(1)

    def test_a_rate_slows_the_download(self):
        self.server.rate = 600000
        start = time.monotonic()
        self.assertEqual(self.get(FILE), self.content)
        self.assertGreater(time.monotonic() - start, 0.4)

    def test_counts_requests_by_path(self):
        self.get(FILE)
        self.get(FILE)
        self.get("/repos/open" + META)
        self.assertEqual((self.server.count(FILE), self.server.count("*repomd.xml"), self.server.count()), (2, 1, 3))
        self.server.reset_counts()
        self.assertEqual(self.server.count(), 0)

    def test_another_process_can_tell_it_to_fail(self):
        control = Control(self.server.url)
        told = control(fail="*.rpm", action="404", rate=1000000)
        self.assertEqual((told["rules"], told["rate"]), ([["*.rpm", "404", 0]], 1000000))
        self.assertEqual(self.status(FILE), 404)
        self.assertEqual(control()["counts"], {FILE: 1})
        control(recover=True, reset=True)
        self.assertEqual((self.status(FILE), control()["counts"]), (200, {FILE: 1}))
        with self.assertRaises(urllib.error.HTTPError) as caught:
            control(fail="*", action="explode")
        caught.exception.close()

    def test_an_ended_server_hangs_up(self):
        connection = http.client.HTTPConnection(*self.server.http.server_address, timeout=5)
        connection.request("GET", FILE)
        connection.getresponse().read()
        self.server.__exit__()
        with self.assertRaises((OSError, http.client.HTTPException)):
            connection.sock.sendall(b"GET / HTTP/1.1\r\nHost: x\r\n\r\n")
            if not connection.sock.recv(1):
                raise ConnectionError("hung up")
        connection.close()
        with Server(self.sandbox) as self.server:
            pass


if __name__ == "__main__":
    unittest.main()
