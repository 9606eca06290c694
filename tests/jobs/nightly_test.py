#!/usr/bin/env python3
"""Runs the example of a night's work twice against a web server of the tests' own."""
import pathlib
import shutil
import subprocess
import sys

TESTS = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TESTS / "servers"), str(TESTS / "support")]
from program import Scene, run, run_tests  # noqa: E402
from web_server import WebServer  # noqa: E402

EXAMPLE = TESTS.parent / "examples" / "nightly-files"


class Nightly(Scene):
    def run_night(self, folder, port, day, old):
        ended = run(folder, "-config=nightly.qpr", "-silent", f"$DATE$={day}", f"$OLD$={old}",
                    "$HOST$=127.0.0.1", f"$PORT$={port}")
        return ended.status, ended.output + ended.errors

    def test_two_nights(self):
        with WebServer() as server:
            folder = self.path / "sales"
            shutil.copytree(EXAMPLE, folder)
            subprocess.run(["sqlite3", "data.db"], cwd=folder, check=True,
                           input=(EXAMPLE / "setup.sql").read_bytes())
            # In the first night there is nothing old to delete.
            for day, old in (("2024-03-30", "2024-03-29"), ("2024-03-31", "2024-03-30")):
                self.assertEqual(self.run_night(folder, server.port, day, old), (0, b""))
            self.assertEqual([line for line, _, _ in server.requests],
                             [b"POST /hooks/sales?day=2024-03-%d HTTP/1.1" % day for day in (30, 31)])
            exported = "id,article,amount\r\n1,Tea,12.5\r\n2,Crème brûlée,4.25\r\n3,Coffee,8\r\n"
            archive = folder / "archive"
            self.assertEqual({path.name for path in archive.iterdir()}, {"2024-03-31", "log.txt"})
            self.assertEqual({path.name for path in (archive / "2024-03-31").iterdir()},
                             {"sales.csv", "README.txt"})
            for copy in (folder / "out", archive / "2024-03-31"):
                self.assertEqual((copy / "sales.csv").read_bytes().decode(), exported)
            self.assertEqual((archive / "log.txt").read_bytes(),
                             b"2024-03-30 exported\r\n2024-03-31 exported\r\n")


if __name__ == "__main__":
    run_tests(__doc__)
