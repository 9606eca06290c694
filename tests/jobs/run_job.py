#!/usr/bin/env python3
"""Runs one whole job in a copy of its folder and compares what came out, byte by byte.

A job folder holds:
  job.qpr           the job, run with -config=job.qpr
  args              further arguments, one a line
  setup.sql         makes data.db before the run
  stdin             standard input
  expected/         files that must be there afterwards, with exactly these bytes
  expected_missing  names that must not be there afterwards, one a line
  expected_stdout   what standard output must be
  expected_stderr   what standard error must be
  expected_status   the exit status; 0 without the file
Where the two systems differ, NAME.windows stands in for NAME under --windows.
"""
import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile


def find(folder, name, windows):
    """The file that holds `name` for this system, or None."""
    for candidate in ([name + ".windows"] if windows else []) + [name]:
        if (folder / candidate).exists():
            return folder / candidate
    return None


def read(folder, name, windows, default=None):
    path = find(folder, name, windows)
    return path.read_bytes() if path else default


def difference(what, expected, actual):
    if expected is None or expected == actual:
        return []
    return [f"{what} differs\n  expected: {expected[:2000]!r}\n  actual:   {actual[:2000]!r}"]


def run(command, job, scratch, windows):
    work = pathlib.Path(scratch) / "job"
    shutil.copytree(job, work, ignore=shutil.ignore_patterns("expected*"))
    if (job / "setup.sql").exists():
        script = (job / "setup.sql").read_bytes()
        subprocess.run(["sqlite3", "data.db"], cwd=work, input=script, check=True)
    arguments = (read(job, "args", windows, b"")).decode().splitlines()
    # Through files: a launcher's background process may hold on to a pipe for long.
    output, errors = pathlib.Path(scratch) / "stdout", pathlib.Path(scratch) / "stderr"
    with output.open("wb") as out, errors.open("wb") as err:
        # System messages in English.
        returned = subprocess.run(command + ["-config=job.qpr"] + arguments, cwd=work, stdout=out,
                                  stderr=err, input=read(job, "stdin", windows, b""),
                                  env=os.environ | {"LC_ALL": "C.UTF-8"}, timeout=120).returncode
    said, complained = output.read_bytes(), errors.read_bytes()
    faults = difference("standard output", read(job, "expected_stdout", windows), said)
    faults += difference("standard error", read(job, "expected_stderr", windows), complained)
    status = int(read(job, "expected_status", windows, b"0"))
    if returned != status:
        faults.append(f"exit status {returned} instead of {status}; it said\n"
                      f"  {said[-2000:]!r}\n  {complained[-2000:]!r}")
    expected = find(job, "expected", windows)
    for path in sorted(expected.rglob("*")) if expected else []:
        if path.is_file():
            name = path.relative_to(expected)
            made = work / name
            actual = made.read_bytes() if made.exists() else b"(no such file)"
            faults += difference(f"file {name}", path.read_bytes(), actual)
    for name in read(job, "expected_missing", windows, b"").decode().splitlines():
        if os.path.lexists(work / name):
            faults.append(f"{name} is still there")
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("job", type=pathlib.Path, help="the job's folder")
    parser.add_argument("command", nargs="+", help="the program, with its launcher if it needs one")
    parser.add_argument("--windows", action="store_true", help="the program is the Windows one")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as scratch:
        faults = run(options.command, options.job.resolve(), scratch, options.windows)
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
