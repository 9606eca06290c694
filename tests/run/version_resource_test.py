#!/usr/bin/env python3
"""What Windows shows of quillon.exe agrees with the banner.
usage: version_resource_test.py [LAUNCHER] PROGRAM"""
import re
import struct
import subprocess
import sys
import tempfile
import unittest

COMMAND = sys.argv[1:]


def banner():
    """The product's name, its version and its maker."""
    # Through a file: a launcher's background process may hold on to a pipe for long.
    with tempfile.TemporaryFile() as output:
        subprocess.run(COMMAND + ["-config=no such file"], stdout=output,
                       stderr=subprocess.DEVNULL, timeout=120)
        output.seek(0)
        line = output.readline().decode()
    return re.match(r"(\w+) ([\d.]+) \[.*\], 64 bit\. (\w+)\r\n", line).groups()


class VersionResource(unittest.TestCase):
    def setUp(self):
        with open(COMMAND[-1], "rb") as program:
            self.data = program.read()
        self.product, self.version, self.maker = banner()

    def test_texts(self):
        texts = {"CompanyName": self.maker, "ProductName": self.product,
                 "FileVersion": self.version + ".0", "ProductVersion": self.version + ".0"}
        for name, text in texts.items():
            # The name, zeros up to a multiple of four bytes, the text.
            pattern = (f"{name}\0".encode("utf-16-le") + rb"(?:\0\0)?" +
                       re.escape(f"{text}\0".encode("utf-16-le")))
            self.assertRegex(self.data, pattern, name)

    def test_numbers(self):
        fixed = self.data.index(struct.pack("<II", 0xFEEF04BD, 0x10000))
        minor, major, zero, build = struct.unpack_from("<4H", self.data, fixed + 8)
        self.assertEqual(f"{major}.{minor:02}.{build:02}.{zero}", self.version + ".0")
        self.assertEqual(self.data[fixed + 8:fixed + 16], self.data[fixed + 16:fixed + 24])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
