#!/usr/bin/env python3
"""What a disk that fills leaves of every target. Run by hand on Linux; usage: full_disk.py PROGRAM.
See README.md."""
import argparse
import itertools
import os
import pathlib
import resource
import subprocess
import tempfile

PAGE = 4096  # what a tmpfs gives at once
PAGES = 256
POSITIONS = 80  # of a limit for the size of files, in each file
OLD = b"old\n"
ROWS = 40
JOB = """Globals
Edition=2
OnFailure={mode}
WriteBuffer={buffer}
Step 1
Source
Type=TextFile
Name=in.csv
Target
Type={kind}
Name={name}
{more}
"""
# The target, its settings, and how its rows end.
TARGETS = (
    ("TextFile", "", b"\r\n"),
    ("TextFile", "FixedWidth=1", b"\r\n"),
    ("TextFile", "Encoding=UTF16", "\r\n".encode("utf-16-le")),
    ("SQLScript", "Table=t\nDelimiter=;", b";\r\n"),
    ("DDLScript", "Table=t\nDelimiter=;", b"\r\n"),
    ("XMLFile", "", b"</row>\n"),
    ("JSONFile", "", b"}"),
    ("JSONFile", "Form=Lines", b"}\n"),
    ("ExcelFile", "", b"</Row>\n"),
    ("HtmlFile", "", b"</tr>\n"),
    ("RTFFile", "", b"\\row}\n"),
)


def rows():
    """A table's columns, which DDLScript takes. Each takes a page at least, so the disk can be full at
    every one of them."""
    lines = ["table,column,type,size,digits,nullable,default"]
    lines += [f"t,c{i},varchar,{i + 1},,1,'{chr(97 + i % 26) * (PAGE + i * 7 % 60)}'" for i in range(ROWS)]
    return "\n".join(lines) + "\n"


class Trial:
    """A target in a folder that is filled, and what is wrong with what it leaves there."""

    def __init__(self, program, folder, disk, target, mode, buffer):
        self.program, self.folder, self.path, self.mode = program, folder, disk / "out", mode
        kind, more, self.row_end = target
        job = JOB.format(mode=mode, buffer=buffer, kind=kind, more=more, name=self.path)
        (folder / "job.qpr").write_text(job)
        self.path.unlink(missing_ok=True)
        self.check(self.run() == (0, b""), "a run on an empty disk")
        self.new = self.path.read_bytes()
        self.job = job

    def check(self, condition, what):
        if not condition:
            raise SystemExit(f"{what}\n{(self.folder / 'job.qpr').read_text()}")

    def run(self, limit=None):
        def set_limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
        done = subprocess.run([self.program, "-config=job.qpr", "-silent"], cwd=self.folder, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60,
                              preexec_fn=set_limit if limit else None)
        return done.returncode, done.stdout + done.stderr

    def fill(self, where, message, limit=None):
        """A run that finds no room."""
        self.path.write_bytes(OLD)
        status, said = self.run(limit)
        left = self.path.read_bytes()
        self.check(status == 2 and message in said, f"{where}: status {status}, {said!r}")
        self.check(os.listdir(self.path.parent).count("out.quillon-part") == 0, f"{where}: a part file")
        if self.mode == "Restore":
            self.check(left == OLD, f"{where}: the old file became {left[:200]!r}")
        else:
            whole = left.endswith(self.row_end) or self.row_end not in left
            self.check(self.new.startswith(left) and whole, f"{where}: it holds {left[-200:]!r}")


def mounted(folder):
    disk = folder / "disk"
    disk.mkdir()
    subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={PAGES * PAGE}", "tmpfs", disk], check=True)
    return disk


def on_full_disk(trial, disk):
    """Of the pages that the file takes, the disk has one, two and so on; one page has the old file."""
    needed = -(-len(trial.new) // PAGE)
    for free in range(needed if trial.mode == "Restore" else needed - 1):
        trial.path.write_bytes(OLD)
        (disk / "filler").write_bytes(b"x" * ((PAGES - 1 - free) * PAGE))
        trial.fill(f"{free} pages free", b"No space left on device")
        (disk / "filler").unlink()
    return needed if trial.mode == "Restore" else needed - 1


def under_limit(trial):
    """The limit is in every write of a row."""
    limits = range(len(OLD), len(trial.new), max(len(trial.new) // POSITIONS, 1))
    for limit in limits:
        trial.fill(f"a limit of {limit} bytes", b"File too large", limit)
    return len(limits)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    options = parser.parse_args()
    program = options.program.resolve()
    os.environ["LC_ALL"] = "C.UTF-8"
    print("| Target | Runs on a full disk | Runs under a limit of size |\n|---|---|---|")
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        (folder / "in.csv").write_text(rows())
        (folder / "free").mkdir()
        disk = mounted(folder) if os.geteuid() == 0 else None
        try:
            for target in TARGETS:
                full = limited = 0
                for mode, buffer in itertools.product(("Restore", "Keep"), ("0", "16K", "1M")):
                    if disk:
                        full += on_full_disk(Trial(program, folder, disk, target, mode, buffer), disk)
                    limited += under_limit(Trial(program, folder, folder / "free", target, mode, buffer))
                name = " ".join((target[0], target[1].partition("\n")[0])).strip()
                print(f"| {name} | {full} | {limited} |", flush=True)
        finally:
            if disk:
                subprocess.run(["umount", disk], check=True)


if __name__ == "__main__":
    main()
