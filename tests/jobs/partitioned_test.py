#!/usr/bin/env python3
"""The partitioned export: a part that failed or is damaged is found and run again alone, and the
joined file is the one that a single run writes."""
import os
import pathlib
import shutil
import subprocess
import sys

TESTS = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TESTS / "support"))
from program import COMMAND, Scene, run, run_tests  # noqa: E402

DATABASE = "Driver=SQLite3;Database=data.db;StepAPI=1"
WHOLE = f"""Globals
Edition=2
Step
Source
Type=DatabaseTable
ConnectString={DATABASE}
Table=sale
Target
Type=TextFile
Name=whole.csv
"""


class Partitioned(Scene):
    def setUp(self):
        super().setUp()
        self.folder = self.path / "export"
        shutil.copytree(TESTS.parent / "examples/partitioned-export", self.folder)
        subprocess.run(["sqlite3", "data.db"], cwd=self.folder, check=True,
                       input=(self.folder / "setup.sql").read_bytes())
        self.assertEqual(self.call("./plan.sh", "5").returncode, 0)

    def call(self, *command):
        return subprocess.run(command, cwd=self.folder, capture_output=True, text=True, check=False,
                              env=os.environ | {"QUILLON": COMMAND[-1], "SALES_DB": DATABASE})

    def parts(self, *numbers):
        return self.call("parallel", "--will-cite", "--jobs=2", "./part.sh", ":::", *numbers)

    def state(self):
        return {path.name: (path.stat().st_ino, path.stat().st_mtime_ns)
                for path in (self.folder / "parts").iterdir()}

    def assert_join_fails(self, message):
        ended = self.call("./join.sh")
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (2, "", message + "\n"))

    def test_failed_parts_run_again_alone(self):
        parts = self.folder / "parts"
        for blocked in ("2.csv", "4.csv"):
            (parts / blocked).mkdir()
        self.assertEqual(self.parts(*"12345").returncode, 2)  # so many failed
        self.assert_join_fails("Run again: 2 4")
        for blocked in ("2.csv", "4.csv"):
            (parts / blocked).rmdir()
        before = self.state()
        self.assertEqual(self.parts("2", "4").returncode, 0)
        after = self.state()
        self.assertEqual({name for name in after if after[name] != before.get(name)},
                         {"2.csv", "2.json", "4.csv", "4.json"})

        self.assertEqual(self.call("./join.sh").stdout, "sale.csv: 10000 rows\n")
        self.write("export/whole.qpr", WHOLE)
        self.assertEqual(run(self.folder, "-config=whole.qpr").status, 0)
        self.assertEqual((self.folder / "sale.csv").read_bytes(),
                         (self.folder / "whole.csv").read_bytes())

        # Rows that went after the plan was made, and rows that a part lost later.
        joined = (self.folder / "sale.csv").stat().st_ino
        self.call("sqlite3", "data.db", "delete from sale where id = 3")
        self.assertEqual(self.parts("1").returncode, 0)
        self.assert_join_fails("Run again: 1")
        self.call("./plan.sh", "5")
        self.parts(*"12345")
        lines = (parts / "5.csv").read_bytes().splitlines(keepends=True)
        (parts / "5.csv").write_bytes(b"".join(lines[:-1]))
        self.assert_join_fails("joined.csv does not hold the 9999 rows of the plan.")
        self.assertEqual((self.folder / "sale.csv").stat().st_ino, joined)


if __name__ == "__main__":
    run_tests(__doc__)
