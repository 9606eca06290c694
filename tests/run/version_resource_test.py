#!/usr/bin/env python3
"""What Windows shows of quillon.exe agrees with the banner."""
import pathlib
import re
import struct
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from program import COMMAND, Scene, run, run_tests  # noqa: E402


class VersionResource(Scene):
    def setUp(self):
        super().setUp()
        self.data = pathlib.Path(COMMAND[-1]).read_bytes()
        banner = run(self.path, "-config=no such file").output.decode()
        self.product, self.version, self.maker = re.match(
            r"(\w+) ([\d.]+) \[.*\], 64 bit\. (\w+)\r\n", banner).groups()

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
    run_tests(__doc__)
