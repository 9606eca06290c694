#!/usr/bin/env python3
"""A web server for tests, on a free port of 127.0.0.1.

    web_server.py [--log FILE]   prints its port and serves until it is ended; FILE gets the first
                                 line of each request

What it does is settled by the path:

    /status/NUMBER   answers with this status
    /slow            takes its time, before the answer and between its bytes
    /chunked         a chunked body
    /large           a body of 100 MB
    /redirect/N      N redirects and then an answer; to /redirect/0
    /loop            a redirect to itself
    /elsewhere       a redirect to another scheme
    /secure/PORT     a redirect to https on that port
    /silent          never answers
    /garbage         bytes that are no response
    /close           closes the connection without an answer
    /reset           resets the connection without an answer
    /short-body      closes the connection before the body is whole
    /bad-chunk       breaks off in a chunked body with something that is no chunk
    /reset-body      resets the connection in the body

Everything else is answered with "fine". It takes requests to a proxy as well, and agrees to open a
tunnel only to close it.
"""
import argparse
import pathlib
import socket
import socketserver
import ssl
import struct
import sys
import threading
import time
import urllib.parse

# Key and certificate of a server at 127.0.0.1, its own authority; for tests alone.
CERTIFICATE = pathlib.Path(__file__).with_suffix(".pem")
LARGE_BYTES = 100_000_000


class Handler(socketserver.StreamRequestHandler):
    """Serves one connection, which carries one request."""

    def handle(self):
        head = b""
        while not head.endswith(b"\r\n\r\n"):
            line = self.rfile.readline()
            if not line:
                return
            head += line
        first, *lines = head[:-4].split(b"\r\n")
        headers = {name.lower(): value.strip()
                   for name, value in (line.split(b":", 1) for line in lines)}
        body = self.rfile.read(int(headers.get(b"content-length", 0)))
        self.server.owner.note(first, headers, body)
        self.is_head = first.startswith(b"HEAD ")
        path = urllib.parse.urlsplit(first.split(b" ")[1]).path.decode("latin-1")
        name, _, number = path[1:].partition("/")
        answer = getattr(self, "do_" + name.replace("-", "_"), None)
        try:
            if answer is None:
                self.respond(200, b"fine")
            elif number:
                answer(int(number))
            else:
                answer()
        except OSError:
            pass  # the client went away

    def send(self, data):
        self.wfile.write(data)

    def respond(self, status, body=b"", *headers, length=None):
        lines = [b"HTTP/1.1 %d Something" % status, b"Connection: close", *headers]
        if length is not False:
            lines.append(b"Content-Length: %d" % (len(body) if length is None else length))
        self.send(b"\r\n".join(lines) + b"\r\n\r\n" + (b"" if self.is_head else body))

    def reset(self):
        self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        # The streams share the socket: only closed with the last of them is it reset.
        self.rfile.close()
        self.wfile.close()
        self.connection.close()

    def do_status(self, status):
        self.respond(status, b"said %d" % status)

    def do_slow(self):
        for byte in b"HTTP/1.1 200 Something\r\nContent-Length: 4\r\n\r\nfine":
            time.sleep(0.02)
            self.send(bytes([byte]))

    def do_chunked(self):
        self.respond(200, b"", b"Transfer-Encoding: chunked", length=False)
        for chunk in (b"first", b"second" * 1000):
            self.send(b"%x\r\n%s\r\n" % (len(chunk), chunk))
        self.send(b"0\r\n\r\n")

    def do_large(self):
        self.respond(200, length=LARGE_BYTES)
        piece = b"x" * 1_000_000
        for _ in range(LARGE_BYTES // len(piece)):
            self.send(piece)
        self.connection.shutdown(socket.SHUT_WR)
        # A client that hangs up with bytes unread resets the connection.
        if self.rfile.read() == b"":
            self.server.owner.large_was_read.set()

    def do_redirect(self, left):
        if left == 0:
            self.respond(200, b"arrived")
        else:
            self.respond(302, b"moved", b"Location: /redirect/%d" % (left - 1))

    def do_loop(self):
        self.respond(302, b"moved", b"Location: /loop")

    def do_elsewhere(self):
        self.respond(302, b"moved", b"Location: ftp://127.0.0.1/file")

    def do_secure(self, port):
        self.respond(302, b"moved", b"Location: https://127.0.0.1:%d/arrived" % port)

    def do_silent(self):
        self.server.owner.ended.wait()

    def do_garbage(self):
        self.send(bytes(range(256)) * 20)

    def do_close(self):
        pass

    def do_reset(self):
        self.reset()

    def do_short_body(self):
        self.respond(200, b"some", length=1000)

    def do_bad_chunk(self):
        self.respond(200, b"", b"Transfer-Encoding: chunked", length=False)
        self.send(b"4\r\nsome\r\nno chunk\r\n")

    def do_reset_body(self):
        self.respond(200, b"some", length=1000)
        self.reset()


class WebServer:
    """The server, running as long as its block. `requests` holds what came: the first line, the
    headers by their names in small letters, the body."""

    def __init__(self, address=("127.0.0.1", 0), log=None, secure=False):
        self.requests = []
        self.large_was_read = threading.Event()
        self.ended = threading.Event()
        self.log = log
        socketserver.ThreadingTCPServer.allow_reuse_address = True
        self.server = socketserver.ThreadingTCPServer(address, Handler)
        if secure:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(CERTIFICATE)
            self.server.socket = context.wrap_socket(self.server.socket, server_side=True)
        self.server.daemon_threads = True
        self.server.owner = self
        self.port = self.server.server_address[1]

    def note(self, first, headers, body):
        self.requests.append((first, headers, body))
        if self.log:
            with open(self.log, "ab") as log:
                log.write(first + b"\n")

    def __enter__(self):
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *_):
        self.ended.set()
        self.server.shutdown()
        self.server.server_close()


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--log", help="gets the first line of each request")
    with WebServer(log=parser.parse_args().log) as server:
        print(server.port, flush=True)
        server.ended.wait()


if __name__ == "__main__":
    try:
        main()
    except KeyboardInterrupt:
        sys.exit(0)
