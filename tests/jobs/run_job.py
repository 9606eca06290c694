#!/usr/bin/env python3
"""Runs one whole job in a copy of its folder and compares what came out, byte by byte.

A job folder holds:
  job.qpr           the job, run with -config=job.qpr
  args              further arguments, one a line
  environment       variables for the run, NAME=VALUE, one a line
  setup.sql         makes data.db before the run
  stdin             standard input
  expected/         files that must be there afterwards, with exactly these bytes
  expected_missing  names that must not be there afterwards, one a line
  expected_scratch  names of other files that the run may make or change, one a line, with "*"
  expected_stdout   what standard output must be
  expected_stderr   what standard error must be, carriage returns left out; nothing without
                    the file
  expected_status   the exit status; 0 without the file
A job of edition 2 also writes its report, which must add up.
The run may make, change and remove nothing else. Where the two systems differ, NAME.windows stands
in for NAME under --windows.
"""
import fnmatch
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
import program  # noqa: E402

SCHEMA = pathlib.Path(__file__).resolve().parent.parent.parent / "docs/run-report.schema.json"


class Folder:
    """A job's folder, as this system sees it."""

    def __init__(self, path):
        self.path = path

    def find(self, name):
        """The file or folder that holds `name`, or None."""
        for candidate in ([name + ".windows"] if program.WINDOWS else []) + [name]:
            if (self.path / candidate).exists():
                return self.path / candidate
        return None

    def read(self, name, default=b""):
        path = self.find(name)
        return path.read_bytes() if path else default

    def lines(self, name):
        return self.read(name).decode().splitlines()


def content(folder):
    """The bytes of each file below a folder, and None for each folder."""
    return {str(path.relative_to(folder)): None if path.is_dir() else path.read_bytes()
            for path in folder.rglob("*")} if folder else {}


def difference(what, expected, actual):
    if expected is None or expected == actual:
        return []
    return [f"{what} differs\n  expected: {(expected or b'')[:2000]!r}\n"
            f"  actual:   {(actual or b'(not there)')[:2000]!r}"]


def file_faults(job, before, after):
    expected, missing = content(job.find("expected")), job.lines("expected_missing")
    scratch = job.lines("expected_scratch")
    faults = [f"{name} is still there" for name in missing if name in after]
    for name in sorted(before.keys() | after.keys() | expected.keys()):
        was, now = before.get(name), after.get(name)
        if name in expected:
            faults += difference(f"file {name}", expected[name], now)
        elif name in before and name not in after:
            if not any(pathlib.Path(name).is_relative_to(gone) for gone in missing):
                faults.append(f"{name} is gone")
        elif (name not in before or was != now) and not any(
                fnmatch.fnmatchcase(name, pattern) for pattern in scratch):
            faults.append(f"{name} was made or changed: {now!r:.200}")
    return faults


def report_faults(path, status):
    """A report has the members that its schema requires, and its counts add up."""
    report = json.loads(path.read_text())
    schema = json.loads(SCHEMA.read_text())
    faults = [] if report.keys() == schema["properties"].keys() else ["report: members"]
    if report["status"] != status:
        faults.append(f"report: status {report['status']} of {status}")
    for step in report["steps"]:
        counts = [step["rows_" + count] for count in ("read", "written", "skipped", "rejected")]
        if (step.keys() != schema["$defs"]["step"]["properties"].keys() or
                counts[0] != sum(counts[1:]) or (step["status"] == "failed") != bool(step["error"])):
            faults.append(f"report: step {step}")
    return faults


def run(job, work):
    shutil.copytree(job.path, work, ignore=shutil.ignore_patterns("expected*"))
    if (job.path / "setup.sql").exists():
        subprocess.run(["sqlite3", "data.db"], cwd=work, input=job.read("setup.sql"), check=True)
    before = content(work)
    environment = dict(line.split("=", 1) for line in job.lines("environment"))
    report = work.parent / "report.json"
    edition2 = any(b"Edition=2" in data for data in before.values() if data)  # includes, too
    arguments = job.lines("args") + ([f"-report={report}"] if edition2 else [])
    ended = program.run(work, "-config=job.qpr", *arguments, environment=environment,
                        input=job.read("stdin"))
    faults = difference("exit status", job.read("expected_status", b"0").strip(),
                        str(ended.status).encode())
    faults += difference("standard output", job.read("expected_stdout", None), ended.output)
    faults += difference("standard error", job.read("expected_stderr").replace(b"\r", b""),
                         ended.errors.replace(b"\r", b""))
    faults += report_faults(report, ended.status) if edition2 else []
    return faults + file_faults(job, before, content(work))


def main():
    job = Folder(program.parse(__doc__, "job").job.resolve())
    with tempfile.TemporaryDirectory() as scratch:
        faults = run(job, pathlib.Path(scratch) / "job")
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
