#!/usr/bin/env python3
"""Writes and reads every character of some code pages and compares with Python's own tables.

    code_pages_test.py COMMAND...

COMMAND is the program, with its launcher if it needs one."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

PAGES = {437: "cp437", 866: "cp866", 874: "cp874", 932: "cp932", 936: "gbk", 949: "cp949",
         1250: "cp1250", 1251: "cp1251", 1253: "cp1253", 1257: "cp1257", 20866: "koi8-r",
         28605: "iso8859-15"}
NEC_AND_IBM = b"\xed"  # of 932: from here on characters have two places
COMMAND = []


def characters(page, codec):
    for point in range(0x20, 0x10000):
        if chr(point) in '"\x7f\x80' or 0xE000 <= point < 0xF900:  # of private use
            continue
        coded = chr(point).encode(codec, "ignore")
        stays = coded and coded.decode(codec) == chr(point)
        if stays and (page != 932 or coded < NEC_AND_IBM):
            yield chr(point)


class CodePages(unittest.TestCase):
    def test_every_character_both_ways(self):
        job = ["Globals", "Edition=2", "Header=0", "Delimiter=tab"]
        with tempfile.TemporaryDirectory() as scratch:
            folder = pathlib.Path(scratch)
            texts = {page: "".join(f"<{c}>\r\n" for c in characters(page, codec))
                     for page, codec in PAGES.items()}
            for page, codec in PAGES.items():
                (folder / f"{page}.utf8").write_bytes(texts[page].encode())
                (folder / f"{page}.bytes").write_bytes(texts[page].encode(codec))
                for source, target in ((f"{page}.utf8", f"written\nEncoding=CP{page}"),
                                       (f"{page}.bytes\nInputEncoding=CP{page}", "read")):
                    job += ["Step", f"Source\nType=TextFile\nName={source}",
                            f"Target\nType=TextFile\nName={page}.{target}"]
            (folder / "job.qpr").write_text("\n".join(job))
            subprocess.run([*COMMAND, "-config=job.qpr", "-silent"], cwd=folder, check=True,
                           stdin=subprocess.DEVNULL, timeout=120)
            for page in PAGES:
                with self.subTest(page=page):
                    for made, expected in (("written", "bytes"), ("read", "utf8")):
                        self.assertEqual((folder / f"{page}.{made}").read_bytes(),
                                         (folder / f"{page}.{expected}").read_bytes())


if __name__ == "__main__":
    COMMAND = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
