#!/usr/bin/env python3
"""HttpCall against a web server of its own: what goes out, what comes back, what goes wrong."""
import os
import pathlib
import resource
import socket
import sys
import unittest
import unittest.mock

TESTS = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TESTS / "servers"), str(TESTS / "support")]
from program import WINDOWS, Scene, run_tests  # noqa: E402
from web_server import CERTIFICATE, LARGE_BYTES, WebServer  # noqa: E402


class HttpCall(Scene):
    def setUp(self):
        super().setUp()
        self.server = self.enterContext(WebServer())
        proxies = {name: "" for name in os.environ if name.lower().endswith("_proxy")}
        self.enterContext(unittest.mock.patch.dict(os.environ, proxies))

    def call(self, *arguments, environment=None, **keys):
        """Runs a job with one HttpCall; a key of None is left out. Returns exit status and standard
        output."""
        keys = {"URL": "127.0.0.1", "Port": self.server.port} | keys
        lines = ["Step 1", "System", "Command=httpcall"]
        lines += [f'{key}="{value}"' for key, value in keys.items() if value is not None]
        # A sanitized program shall give memory back at once.
        ended = self.run_job("\n".join(lines) + "\n", *arguments, environment={
            "ASAN_OPTIONS": "quarantine_size_mb=1"} | (environment or {}))
        return ended.status, ended.output.decode().replace("\r\n", "\n")

    def assert_succeeds(self, *arguments, **keys):
        """Makes the call and returns the last request that came: first line, headers, body."""
        self.assertEqual(self.call(*arguments, **keys), (0, ""))
        return self.server.requests[-1]

    def assert_fails(self, message, **keys):
        self.assertEqual(self.call(**keys), (2, message + "\n"))

    def assert_not_sent(self, linux, windows, **keys):
        """linux, windows: the code of libcurl, the codes of WinInet that may come."""
        codes = windows if WINDOWS else (linux,)
        status, said = self.call(**keys)
        self.assertEqual(status, 2)
        self.assertIn(said, [f"dInternet::Send Request error ({code})\n" for code in codes])

    def test_methods_have_no_body_and_no_headers_of_their_own(self):
        for method, length in ((None, None), ("GET", None), ("HEAD", None), ("POST", b"0"),
                               ("PUT", b"0"), ("DELETE", b"0"), ("Purge", b"0")):
            with self.subTest(method):
                line, headers, body = self.assert_succeeds(Parameters="/x", Method=method)
                self.assertEqual(line, b"%s /x HTTP/1.1" % (method or "GET").encode())
                self.assertEqual(body, b"")
                if not (WINDOWS and method == "HEAD"):
                    self.assertEqual(headers.get(b"content-length"), length)
                self.assertEqual(headers[b"user-agent"], b"Korvex Quillon")
                self.assertEqual(headers[b"host"], b"127.0.0.1:%d" % self.server.port)
                for name in (b"accept", b"content-type", b"referer", b"authorization"):
                    self.assertNotIn(name, headers)

    def test_targets(self):
        cases = {
            None: b"/",
            "": b"/",
            "hook": b"/hook",
            "?day=1": b"/?day=1",
            "/a/b?c=d&e=%2F%c3%BC&f=g+h": b"/a/b?c=d&e=%2F%c3%BC&f=g+h",
            "//host/path": b"//host/path",
            "http://host/path": b"/http://host/path",
            '/a b?text="x" {y} <z>|^`': b'/a%20b?text="x"%20{y}%20<z>|^`',
            "/Zürich?to=€\U0001F600#5": b"/Z%C3%BCrich?to=%E2%82%AC%F0%9F%98%80%235",
            "/" + "x" * 60_000: b"/" + b"x" * 60_000,
        }
        if not WINDOWS:  # where the system tidies a path up
            cases["/a//b/./c/../d\\e?"] = b"/a//b/./c/../d\\e?"
        for parameters, target in cases.items():
            with self.subTest((parameters or "")[:40]):
                line = self.assert_succeeds(Parameters=parameters)[0]
                self.assertEqual(line, b"GET %s HTTP/1.1" % target)

    def test_macros_resolve_in_every_key(self):
        line = self.assert_succeeds(
            "$HOST$=127.0.0.1", "$WHAT$=a b\r\nX: y", "$HOW$=POST", f"$WHERE$={self.server.port}",
            URL="$HOST$", Parameters="/$WHAT$", Method="$HOW$", Port="$WHERE$")[0]
        self.assertEqual(line, b"POST /a%20b%0D%0AX:%20y HTTP/1.1")

    def test_ports(self):
        # Asked through a proxy, which is told the whole address, as nobody may listen on port 80.
        proxy = {"http_proxy": f"http://127.0.0.1:{self.server.port}"}
        for port, address in ((None, "server.test"), ("0", "server.test"), ("", "server.test"),
                              ("web", "server.test"), ("65536", "server.test"),
                              ("8080", "server.test:8080"), ("8080x", "server.test:8080"),
                              ("65617", "server.test:81"), ("-1", "server.test:65535")):
            with self.subTest(port):
                line = self.assert_succeeds(URL="server.test", Port=port, Parameters="/x?y",
                                            environment=proxy)[0]
                self.assertIn(line, [b"GET http://%s%s/x?y HTTP/1.1" % (address.encode(), default)
                                     for default in ((b"",) if ":" in address else (b"", b":80"))])

    @unittest.skipIf(WINDOWS, "Windows has proxy settings of its own")
    def test_exceptions_from_the_proxy(self):
        nobody = {"http_proxy": "http://127.0.0.1:9", "no_proxy": "127.0.0.1"}
        line = self.assert_succeeds(Parameters="/x", environment=nobody)[0]
        self.assertEqual(line, b"GET /x HTTP/1.1")

    def test_every_status_is_success(self):
        for status in (200, 204, 301, 304, 400, 401, 404, 407, 500, 503):
            with self.subTest(status):
                self.assert_succeeds(Parameters=f"/status/{status}")

    def test_responses_that_come_in_parts_or_break_off(self):
        for path in ("slow", "chunked", "short-body", "bad-chunk", "reset-body"):
            with self.subTest(path):
                self.assert_succeeds(Parameters=path)

    def test_large_response_is_read_with_bounded_memory(self):
        self.assert_succeeds(Parameters="/large")
        self.assertTrue(self.server.large_was_read.wait(timeout=60))
        # Two bytes a character, and twice as much while the text grows.
        most = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss * 1024
        self.assertLess(most, 4.5 * LARGE_BYTES)

    def test_redirects(self):
        self.assert_succeeds(Parameters="/redirect/10")
        self.assertEqual([line for line, _, _ in self.server.requests],
                         [b"GET /redirect/%d HTTP/1.1" % left for left in range(10, -1, -1)])
        line = self.assert_succeeds(Parameters="/redirect/1", Method="POST")[0]
        self.assertEqual(line, b"GET /redirect/0 HTTP/1.1")

    @unittest.skipIf(WINDOWS, "Windows has a limit of its own")
    def test_redirects_end(self):
        self.assert_not_sent(47, (), Parameters="/loop")
        self.assertEqual(len(self.server.requests), 11)
        self.assert_not_sent(1, (), Parameters="/elsewhere")

    @unittest.skipIf("--windows" in sys.argv, "Windows has certificates of its own")
    def test_redirects_to_https(self):
        secure = self.enterContext(WebServer(secure=True))
        path = f"/secure/{secure.port}"
        trusted = {"SSL_CERT_FILE": str(CERTIFICATE)}
        self.assert_not_sent(60, (), Parameters=path)
        self.assertEqual(secure.requests, [])
        self.assert_succeeds(Parameters=path, Method="POST", environment=trusted)
        self.assertEqual([line for line, _, _ in secure.requests], [b"GET /arrived HTTP/1.1"])
        proxy = {"https_proxy": f"http://127.0.0.1:{self.server.port}"}
        self.assert_not_sent(35, (), Parameters=path, environment=trusted | proxy)

    def test_no_response(self):
        self.assert_not_sent(56, (12030, 12031, 12152), Parameters="/reset")
        if not WINDOWS:  # Wine takes these for responses without a body
            self.assert_not_sent(52, (), Parameters="/close")
            self.assert_not_sent(1, (), Parameters="/garbage")

    def test_no_server(self):
        with socket.create_server(("127.0.0.1", 0)) as closed_at_once:
            port = closed_at_once.getsockname()[1]
        self.assert_not_sent(7, (12029,), Port=port)
        for name in ("no-such-host.invalid", "http://127.0.0.1", "127.0.0.1/path", "127.0.0.1:80",
                     "user@127.0.0.1", "127.0.0.1?x", "127.0.0.1#x", "two words"):
            with self.subTest(name):
                self.assert_not_sent(6, (12007,), URL=name)
        self.assertEqual(self.server.requests, [])

    def test_no_url(self):
        for url in (None, ""):
            self.assert_fails("Http call: URL is empty.", URL=url)
        self.assertEqual(self.server.requests, [])


if __name__ == "__main__":
    run_tests(__doc__)
