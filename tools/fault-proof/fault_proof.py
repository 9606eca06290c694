#!/usr/bin/env python3
"""Makes every call of the program fail, one after the other, and looks at what becomes of its jobs.

    fault_proof.py PROGRAM [--short] [--only PART] [--calls CALLS] [--seed N]

Beside PROGRAM stand the libraries of this folder, as the build makes them. README.md says what is
tried and what must hold. Prints a Markdown table; ends with 1 when there is a finding."""
import argparse
import collections
import concurrent.futures
import dataclasses
import itertools
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent.parent / "tests" / "servers"),
                str(HERE.parent.parent / "tests" / "support")]
from jobs import JOBS, OLD, fill  # noqa: E402
from kills import killed_at_random  # noqa: E402
from web_server import WebServer  # noqa: E402

KINDS = {"file": ("fail", "fail-on", "short", "interrupt", "kill"), "memory": ("fail", "fail-on"),
         "network": ("fail", "fail-on", "short", "interrupt"),
         "driver": ("fail", "fail-on", "refuse")}
# What a driver may refuse altogether.
DRIVER_CALLS = ("SQLGetInfoW", "SQLSetConnectAttrW", "SQLSetStmtAttrW", "SQLPrepareW", "SQLExecute",
                "SQLExecDirectW", "SQLBindParameter", "SQLNumParams", "SQLRowCount", "SQLFreeStmt",
                "SQLNumResultCols", "SQLColAttributeW", "SQLDescribeColW", "SQLBindCol", "SQLFetch",
                "SQLGetData", "SQLSetPos", "SQLMoreResults", "SQLEndTran", "SQLTablesW",
                "SQLColumnsW")
NONE_AT_ALL = 1_000_000_000
SANITIZED = 99  # the exit status that a sanitizer's finding has
TOLD = re.compile(rb"Step \d+ \(job\.qpr:\d+\)(, [a-z]+.*)?: .*\S|Out of memory\.")
# What goes wrong around the steps: the job file, the log, the report.
TOLD_OUTSIDE = re.compile(rb"(?m)^(job\.qpr:\d+: )?"
                          rb"(Error loading configuration file: |Could not |@include ).*\S")


@dataclasses.dataclass
class Fault:
    """A fault to be tried. number: of the call"""
    calls: str
    kind: str
    number: int

    def __str__(self):
        return f"{self.calls} {self.kind} {self.number}"


@dataclasses.dataclass
class Whole:
    """What a run without a fault finds in the targets, and what it leaves."""
    before: list
    after: list
    output: bytes  # data on standard output


@dataclasses.dataclass
class Ended:
    status: int  # None: it did not end by itself
    output: bytes
    errors: bytes
    hit: str     # the call that the fault happened to; empty without one
    counted: int


def rows_of(file, table):
    """The rows of a table of SQLite; None where there is no table."""
    if not file.exists():
        return None
    database = sqlite3.connect(file)
    try:
        return database.execute(f"select * from {table} order by rowid").fetchall()
    except sqlite3.OperationalError:
        return None
    finally:
        database.close()


class Proof:
    """What all runs share: the program, a folder with the sources, the figures."""

    def __init__(self, options, folder, port):
        self.program = options.program.resolve()
        libraries = self.program.parent / "tools" / "fault-proof"
        self.faults = libraries / "libquillon_faults.so"
        self.driver = libraries / "libquillon_test_driver.so"
        self.options, self.folder, self.port = options, folder, port
        self.sources = folder / "sources"
        self.sources.mkdir()
        fill(self.sources)
        self.numbers = itertools.count()
        self.seconds = {}  # that a job takes, by its title
        self.sanitized = b"__asan_init" in self.program.read_bytes()

    def prepare(self, job, words="", old=True):
        """A new folder for a run of the job; the words go to the driver of our own."""
        number = next(self.numbers)
        folder = self.folder / str(number)
        text = job.job_file(driver=self.driver, words=words, port=self.port, run=f"run-{number}")
        folder.mkdir()
        for source in self.sources.iterdir():
            if source.name in text or source.name in (job.stdin, "odbc.ini", "query.sql"):
                copy = shutil.copytree if source.is_dir() else shutil.copyfile
                copy(source, folder / source.name)
        (folder / "job.qpr").write_text(text, "utf-8")
        if old:
            for name in job.targets:
                if "/" not in name:
                    (folder / name).write_bytes(OLD)
        return folder

    def start(self, job, folder, environment=None, **options):
        stdin = open(folder / job.stdin, "rb") if job.stdin else subprocess.DEVNULL
        try:
            return subprocess.Popen(
                [self.program, "-config=job.qpr", "-silent"], cwd=folder, stdin=stdin,
                stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=self.environment(
                    folder, environment or {}), **options)
        finally:
            if job.stdin:
                stdin.close()

    @staticmethod
    def environment(folder, more):
        return {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "ODBCINI": str(folder / "odbc.ini"),
                "TMPDIR": str(folder), "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0:"
                f"exitcode={SANITIZED}:allocator_may_return_null=1", "UBSAN_OPTIONS":
                f"exitcode={SANITIZED}"} | more

    def wait(self, process):
        """Its end, or None for one that has to be ended."""
        try:
            output, errors = process.communicate(timeout=120 if self.sanitized else 30)
            return process.returncode, output, errors
        except subprocess.TimeoutExpired:
            process.kill()
            return None, *process.communicate()

    def run(self, job, fault, old=True):
        """Runs the job with a fault. Returns how it ended and the folder that it ran in."""
        environment, words = {}, ""
        report = self.folder / f"report-{next(self.numbers)}"
        if fault and fault.calls == "driver":
            call = f"any:{fault.number}"
            if fault.kind == "refuse":
                call = f"{DRIVER_CALLS[fault.number - 1]}:1"
            words = f";Report={report};Fail={call}" + ("" if fault.kind == "fail" else "+")
        elif fault:
            environment = {"LD_PRELOAD": str(self.faults), "FAULT_CALLS": fault.calls,
                           "FAULT_KIND": fault.kind, "FAULT_AT": str(fault.number),
                           "FAULT_REPORT": str(report)}
        folder = self.prepare(job, words, old)
        status, output, errors = self.wait(self.start(job, folder, environment))
        lines = report.read_text("utf-8", "replace").splitlines() if report.exists() else []
        report.unlink(missing_ok=True)
        counted = [line.split()[1] for line in lines if line.startswith("counted")]
        hits = [line.removeprefix("hit ") for line in lines if not line.startswith("counted")]
        return Ended(status, output, errors, hits[0] if hits else "",
                     int(counted[0]) if counted else 0), folder

    # ---- What must hold ----

    def content(self, job, folder):
        """What stands in the targets; None for a file that is not there."""
        found = [(folder / name).read_bytes() if (folder / name).is_file() else None
                 for name in job.targets]
        for file, table in job.tables:
            if file is None:
                store = folder / table
                found.append(store.read_bytes() if store.exists() else b"")
                continue
            found.append(rows_of(folder / file, table))
        return found

    def whole(self, job, old):
        """See Whole. old: whether there are files where those of the targets will be."""
        folder = self.prepare(job, old=old)
        before = self.content(job, folder)
        shutil.rmtree(folder)
        start = time.monotonic()
        ended, folder = self.run(job, None, old)
        self.seconds[job.title] = 1.2 * (time.monotonic() - start)
        if ended.status != 0:
            raise SystemExit(f"{job.title} fails without a fault: {ended}")
        found = self.content(job, folder)
        if not job.called and not all(found) or job.printed and b"row-60" not in ended.output:
            raise SystemExit(f"{job.title} leaves nothing")
        shutil.rmtree(folder)
        return Whole(before, found, ended.output if job.printed else b"")

    def wrong(self, job, fault, ended, folder, whole):
        """What is wrong with a run, or nothing."""
        said = ended.output + ended.errors
        if ended.status is None:
            return "does not end"
        if ended.status == SANITIZED or b"runtime error:" in said or b"Sanitizer" in said:
            return "sanitizer"
        if fault.kind == "kill" and ended.status == -signal.SIGKILL:
            return self.torn(job, folder, whole)
        if ended.status not in (0, 2):
            # The crash line is what edition 1 has for want of memory.
            known = job.edition == 1 and fault.calls == "memory" and b"0xE06D7363" in said
            return "" if known and ended.status == -signal.SIGABRT else f"crash {ended.status}"
        if job.edition == 1:
            return ""
        if ended.status == 0:
            found = self.content(job, folder)
            same = found == whole.after and (not job.printed or ended.output == whole.output)
            return "" if same or found[:1] in job.withheld else "success without all rows"
        if not self.is_told(job, fault, ended, folder):
            return "not told"
        return self.torn(job, folder, whole)

    @staticmethod
    def is_told(job, fault, ended, folder):
        log = folder / "log.txt"
        said = ended.errors + (log.read_bytes() if log.exists() else b"")
        # Where the job could not be read, nobody knows that it wants its messages there.
        if TOLD.search(said) or TOLD_OUTSIDE.search(said + ended.output):
            return True
        # Without a way to write, nothing can be said.
        mute = ended.hit.startswith(("write 2", "write 1")) or job.name.endswith("with a log")
        return fault.calls == "file" and (fault.kind == "fail-on" or mute)

    def torn(self, job, folder, whole):
        """What is wrong with targets that are to be the old ones or the whole new ones."""
        if job.edition == 1:
            return ""
        for name, found, before, after in zip(
                [*job.targets, *job.tables], self.content(job, folder), whole.before, whole.after):
            if name not in job.in_place and found not in (before, after):
                return f"'{name}' is neither old nor new"
        return ""

    def is_left(self, folder):
        return [path.name for path in folder.rglob("*") if path.name.endswith(("-part", ".part"))]


@dataclasses.dataclass
class Figures:
    tried: int = 0
    whole: int = 0
    told: int = 0
    ended: int = 0  # killed, or crashed as edition 1 does
    findings: list = dataclasses.field(default_factory=list)

    def count(self, status):
        self.tried += 1
        self.whole += status == 0
        self.told += status == 2
        self.ended += status not in (0, 2)


class Plan:
    """Which faults are tried for a job."""

    def __init__(self, proof, options):
        self.proof, self.options = proof, options
        self.random = random.Random(options.seed)

    def numbers(self, job, calls, kind):
        """The numbers of the calls to fail."""
        if kind == "refuse":
            return range(1, len(DRIVER_CALLS) + 1)
        if calls == "driver":
            count = self.driver_calls(job)
        else:
            ended, folder = self.proof.run(job, Fault(calls, kind, NONE_AT_ALL))
            shutil.rmtree(folder)
            count = ended.counted
        if not self.options.short or count <= 4:
            return range(1, count + 1)
        some = 4 if job.edition == 2 else 2
        return sorted({1, count, *self.random.sample(range(2, count), min(some, count - 2))})

    def driver_calls(self, job):
        """A call that is not reached is not told of."""
        least, most = 1, 1
        while self.reaches(job, most):
            least, most = most, most * 2
        while least + 1 < most:
            middle = (least + most) // 2
            least, most = (middle, most) if self.reaches(job, middle) else (least, middle)
        return least

    def reaches(self, job, number):
        ended, folder = self.proof.run(job, Fault("driver", "fail", number))
        shutil.rmtree(folder)
        return bool(ended.hit)

    def full_disks(self, size):
        """Rooms that do not hold a file of the size, and one that does: pages of a disk of its own,
        which only root can have, and sizes that no file may go beyond."""
        count = 4 if self.options.short else 40
        if os.geteuid() == 0:
            for pages in range(1, size // 4096 + 2):
                yield Fault("disk", "full", pages)
        for number in range(count):
            yield Fault("disk", "limit", size * number // count)

    def faults(self, job):
        for calls, kinds in KINDS.items():
            wanted = {"network": job.called, "driver": job.uses_driver}.get(calls, True)
            if not wanted or self.options.calls and calls not in self.options.calls:
                continue
            for kind in kinds:
                if job.edition == 1 and (kind == "kill" or (calls, kind) == ("memory", "fail-on")):
                    continue  # a crash in edition 1, as ever
                for number in self.numbers(job, calls, kind):
                    yield Fault(calls, kind, number)


def try_fault(proof, job, fault, whole):
    """Runs the job with a fault. Returns its status and what is wrong."""
    old = fault.number % 2 == 1
    ended, folder = proof.run(job, fault, old)
    wrong = proof.wrong(job, fault, ended, folder, whole[old])
    left = proof.is_left(folder)
    if not wrong and left and job.edition == 2 and fault.kind != "kill" and not (
            ended.hit.startswith(("unlink", "rename")) or fault.kind == "fail-on"):
        wrong = f"left {left}"
    if wrong:
        wrong = f"{job.title}: {fault} ({ended.hit}): {wrong}: {ended.status} {ended.errors[-300:]!r}"
    shutil.rmtree(folder)
    return ended.status, wrong


def try_kill(proof, job, number, whole):
    """Kills the job at some moment, and runs it once more. Returns the same."""
    old, rng = number % 2 == 1, random.Random(number)
    folder = proof.prepare(job, old=old)
    start = time.monotonic()
    status = killed_at_random(lambda: proof.start(job, folder), proof.seconds[job.title], rng)
    fault = Fault("program", "killed at random", number)
    wrong = proof.torn(job, folder, whole[old])
    if job.can_be_repeated and not wrong:
        again, output, errors = proof.wait(proof.start(job, folder))
        wrong = proof.wrong(job, fault, Ended(again, output, errors, "", 0), folder, whole[old])
        if again or proof.is_left(folder):
            wrong = wrong or f"then fails or leaves {proof.is_left(folder)}"
    if wrong:
        wrong = f"{job.title}: {fault} after {time.monotonic() - start:.3f} s: {wrong}"
    shutil.rmtree(folder)
    return status, wrong


def try_full_disk(proof, job, fault, whole):
    """Runs the job with its target on a disk that takes so many pages, or with a limit to the size
    of its files. Returns the same."""
    row_by_row = dataclasses.replace(job, globals=job.globals + "WriteBuffer=0\n")
    folder = proof.prepare(row_by_row if fault.number % 2 else job, old=False)
    disk, options = folder / "disk", {}
    if fault.kind == "full":
        disk.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={fault.number * 4}k", "full", disk],
                       check=True)
        (folder / "out").symlink_to("disk/out")
    else:
        limit = (fault.number, fault.number)
        options["preexec_fn"] = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, limit)
    try:
        status, output, errors = proof.wait(proof.start(job, folder, **options))
        ended = Ended(status, output, errors, "", 0)
        wrong = proof.wrong(job, fault, ended, folder, whole[False])
        left = proof.is_left(folder)
    finally:
        if fault.kind == "full":
            subprocess.run(["umount", disk], check=True)
    if wrong or left:
        wrong = f"{job.title}: {fault}: {wrong} {left} {status} {errors[-300:]!r}"
    shutil.rmtree(folder)
    return status, wrong


def tries(proof, plan, job, whole):
    """What is tried with a job: a fault, and the function that tries it."""
    for fault in plan.faults(job):
        yield fault, lambda fault: try_fault(proof, job, fault, whole)
    if job.edition == 1 or plan.options.calls:
        return
    for number in range(3 if plan.options.short else 100):
        yield (Fault("program", "killed at random", number),
               lambda fault: try_kill(proof, job, fault.number, whole))
    if job.targets == ("out",) and not job.tables:
        for fault in plan.full_disks(len(whole[False].after[0])):
            yield fault, lambda fault: try_full_disk(proof, job, fault, whole)


def prove(proof, plan, pool, job, by_kind):
    """Tries all that can happen to a job."""
    figures = Figures()
    whole = [proof.whole(job, old) for old in (False, True)]
    tried = list(tries(proof, plan, job, whole))
    for (fault, _), (status, wrong) in zip(tried, pool.map(
            lambda each: each[1](each[0]), tried)):
        for each in (figures, by_kind[f"{fault.calls}: {fault.kind}"]):
            each.count(status)
            if wrong:
                each.findings.append(wrong)
        if wrong:
            print(wrong, file=sys.stderr, flush=True)
    return figures


def print_table(head, rows):
    print(f"| {head} | tried | success, whole | failure, told | killed or crashed | findings |")
    print("|---|---:|---:|---:|---:|---:|")
    total = Figures()
    for name, figures in rows.items():
        print(f"| {name} | {figures.tried} | {figures.whole} | {figures.told} | {figures.ended} "
              f"| {len(figures.findings)} |", flush=True)
        for field in ("tried", "whole", "told", "ended", "findings"):
            setattr(total, field, getattr(total, field) + getattr(figures, field))
    print(f"| **all** | {total.tried} | {total.whole} | {total.told} | {total.ended} "
          f"| {len(total.findings)} |\n")
    return len(total.findings)


def parse():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("--short", action="store_true", help="some of the faults alone")
    parser.add_argument("--only", default="", help="jobs with this in their name")
    parser.add_argument("--calls", action="append", choices=KINDS, help="these calls alone")
    parser.add_argument("--seed", type=int, default=1, help="what --short chooses")
    return parser.parse_args()


def main():
    options = parse()
    start = time.monotonic()
    # In memory, where there is such a place: files are flushed all the time.
    memory = "/dev/shm" if os.path.isdir("/dev/shm") else None
    with tempfile.TemporaryDirectory(prefix="fault-proof-", dir=memory) as folder, WebServer() as server, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        proof = Proof(options, pathlib.Path(folder), server.port)
        plan = Plan(proof, options)
        by_job, by_kind = {}, collections.defaultdict(Figures)
        for job in JOBS:
            if options.only in job.title:
                figures = by_job[job.title] = prove(proof, plan, pool, job, by_kind)
                print(f"{time.monotonic() - start:.0f} s: {job.title}, {figures.tried} runs",
                      file=sys.stderr, flush=True)
        findings = print_table("Job", by_job)
        print_table("Fault", by_kind)
    print(f"{time.monotonic() - start:.0f} seconds")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
