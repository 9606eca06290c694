#!/usr/bin/env python3
"""How the time of an export falls with the number of parts that run at once on this machine, as a
table: examples/partitioned-export with more rows. Needs sqlite3, libsqliteodbc, parallel and jq."""
import argparse
import os
import pathlib
import shutil
import statistics
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent


def timed(*command, folder, environment):
    """Seconds that a command takes; it must succeed."""
    start = time.monotonic()
    subprocess.run(command, cwd=folder, env=environment, check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - start


def turn(folder, environment, parts, at_once):
    """Seconds of the plan, of all parts and of the join."""
    def step(*command):
        return timed(*command, folder=folder, environment=environment)
    return (step("./plan.sh", str(parts)),
            step("parallel", "--will-cite", f"--jobs={at_once}", "./part.sh", ":::",
                 *(str(part) for part in range(1, parts + 1))),
            step("./join.sh"))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/linux")
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--turns", type=int, default=3)
    options = parser.parse_args()
    environment = os.environ | {
        "QUILLON": str(options.build.resolve() / "quillon"),
        "SALES_DB": "Driver=SQLite3;Database=data.db;StepAPI=1"}
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch) / "export"
        shutil.copytree(ROOT / "examples/partitioned-export", folder)
        setup = (folder / "setup.sql").read_text().replace("i < 10000", f"i < {options.rows}")
        subprocess.run(["sqlite3", "data.db"], cwd=folder, input=setup, text=True, check=True)
        print(f"{options.rows:,} rows, medians of {options.turns} turns, {os.cpu_count()} cores.\n")
        print("| Parts | at once | plan, s | export, s | share of one part | join, s |")
        print("|--:|--:|--:|--:|--:|--:|")
        one = None
        for parts, at_once in ((1, 1), (2, 2), (4, 4), (1000, 4)):
            turns = [turn(folder, environment, parts, at_once) for _ in range(options.turns)]
            plan, export, join = (statistics.median(times) for times in zip(*turns))
            one = one or export
            print(f"| {parts:,} | {at_once} | {plan:.2f} | {export:.2f} | {export / one:.2f} | "
                  f"{join:.2f} |", flush=True)


if __name__ == "__main__":
    main()
