#!/usr/bin/env python3
"""HttpCall against a web server of its own: what goes out, what comes back, what goes wrong.

    http_test.py [--windows] [-k PATTERN] COMMAND...

COMMAND is the program, with its launcher if it needs one."""
import argparse
import os
import pathlib
import socket
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "servers"))
from web_server import LARGE_BYTES, WebServer  # noqa: E402

COMMAND = []
WINDOWS = False
# Codes of WinInet and of libcurl.
NO_SUCH_HOST = 12007 if WINDOWS else 6


class HttpCall(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name)
        self.server = self.enterContext(WebServer())
