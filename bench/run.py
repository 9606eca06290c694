#!/usr/bin/env python3
"""Measures the program beside the machine's limits and prints markdown tables.

Each kind of work is done by the program and by bench_limits in turns, so that both meet the same
state of the machine. What they write must be the same bytes.
"""

import argparse
import contextlib
import filecmp
import os
import pwd
import re
import shutil
import signal
import socket
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass, field
from pathlib import Path

import generate

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parent
FEW_ROWS = generate.FEWEST_ROWS
TEXT_AIM = 2.0
QUERY_AIM = 1.25
ALLOCATION_AIM = 100  # more for many rows than for few, beside those of the driver
SERVER_ACCOUNTS = ("postgres", "nobody")  # a server refuses to run as root
SERVER_START_SECONDS = 60


def say(text):
    print(text, file=sys.stderr, flush=True)


@dataclass
class Outcome:
    seconds: float
    processor_seconds: float
    peak_kib: int


@dataclass
class Command:
    """What to run; standard output goes to `output` when the program writes there itself."""
    arguments: list
    output: Path
    stdin: Path = Path(os.devnull)
    writes_stdout: bool = False
    outcomes: list = field(default_factory=list)

    def execute(self, prefix=(), environment=None):
        """Runs the command behind `prefix` and returns what it said on standard error."""
        self.output.unlink(missing_ok=True)
        with contextlib.ExitStack() as stack:
            stdin = stack.enter_context(open(self.stdin, "rb"))
            stdout = None
            if self.writes_stdout:
                stdout = stack.enter_context(open(self.output, "wb"))
            done = subprocess.run([str(part) for part in (*prefix, *self.arguments)], stdin=stdin,
                                  stdout=stdout or sys.stderr, stderr=subprocess.PIPE, text=True,
                                  env={**os.environ, **(environment or {})}, check=False)
        if done.returncode != 0:
            sys.exit(f"'{self.arguments[0]}' ended with {done.returncode}: {done.stderr}")
        return done.stderr

    def seconds(self):
        return statistics.median(outcome.seconds for outcome in self.outcomes)

    def processor_seconds(self):
        return statistics.median(outcome.processor_seconds for outcome in self.outcomes)

    def peak_mib(self):
        return statistics.median(outcome.peak_kib for outcome in self.outcomes) / 1024


class Bench:
    """The built programs and the scratch folder that they work in."""

    def __init__(self, build, scratch):
        self.program = build / "quillon"
        self.limits = build / "bench" / "bench_limits"
        self.measure = build / "bench" / "bench_measure"
        self.counter = build / "bench" / "libbench_count_allocations.so"
        self.scratch = scratch
        for path in (self.program, self.limits, self.measure, self.counter):
            if not path.exists():
                sys.exit(f"{path} is missing: configure with -DQUILLON_BENCHMARKS=ON and build")

    def time(self, command):
        result = self.scratch / "measured"
        command.execute(prefix=(self.measure, result))
        status, wall, user, system, peak_kib = result.read_text().split()
        if status != "0":
            sys.exit(f"'{command.arguments[0]}' ended with {status}")
        return Outcome(float(wall), float(user) + float(system), int(peak_kib))

    def system_calls(self, command):
        summary = self.scratch / "strace.txt"
        command.execute(prefix=("strace", "-f", "-c", "-o", summary))
        total = re.search(r"^\s*100\.00\s.*?(\d+)\s+(?:\d+\s+)?total$", summary.read_text(), re.M)
        return int(total.group(1))

    def allocations(self, command):
        said = command.execute(environment={"LD_PRELOAD": str(self.counter)})
        counts = re.search(r"^allocations: (\d+) new, (\d+) malloc$", said, re.M)
        return int(counts.group(1)), int(counts.group(2))

    def job(self, name, source, target):
        """Writes a job file of one step and returns the command that runs it."""
        path = self.scratch / f"{name}.qpr"
        lines = ["Step 1", "Source", *source, "Target", *target]
        path.write_text("\n".join(lines) + "\n", encoding="utf-8")
        return [self.program, "-silent", f"-config={path}"]


class TextWork:
    aim = TEXT_AIM
    limit_name = "one write call a line"

    def __init__(self, bench, line_end, name, console=False, encoding=None):
        self.name = name
        self.same_bytes = encoding is None  # else there is no limit to compare with
        self._bench = bench
        self._line_end = line_end
        self._console = console
        self._encoding = [f"Encoding={encoding}"] if encoding else []

    def prepare(self, row_counts):
        for rows in row_counts:
            path = self._input(rows)
            if not path.exists():
                subprocess.run([FOLDER / "generate.py", f"--rows={rows}", f"--text={path}",
                                f"--line-end={self._line_end}"], check=True)

    def _input(self, rows):
        return self._bench.scratch / f"rows-{rows}.txt"

    def commands(self, rows):
        source = self._input(rows)
        written = self._bench.scratch / "program.txt"
        limit_written = self._bench.scratch / "limit.txt"
        job = self._bench.job(
            f"text-{rows}",
            ["Type=TextFile", 'Name=CONSOLE' if self._console else f'Name="{source}"'],
            ["Type=TextFile", 'Name=CONSOLE' if self._console else f'Name="{written}"',
             "Header=true", "Overwrite=true", f"EndOfLine={self._line_end.upper()}",
             *self._encoding])
        if self._console:
            return (Command(job, written, source, True),
                    Command([self._bench.limits, "lines", "-", "-"], limit_written, source, True))
        return (Command(job, written),
                Command([self._bench.limits, "lines", source, limit_written], limit_written))


class QueryWork:
    aim = QUERY_AIM
    limit_name = "bare SQLFetch and SQLGetData"
    same_bytes = True

    def __init__(self, bench, name, connect_string, load):
        self._bench = bench
        self.name = f"{name} query to text"
        self._connect_string = connect_string
        self._load = load

    def prepare(self, row_counts):
        self._load(max(row_counts))

    def commands(self, rows):
        written = self._bench.scratch / "program.txt"
        limit_written = self._bench.scratch / "limit.txt"
        query = f"select * from {generate.DEFAULT_TABLE} where id <= {rows}"
        job = self._bench.job(
            f"query-{rows}",
            ["Type=DatabaseQuery", f'ConnectString="{self._connect_string}"', f'Query="{query}"'],
            ["Type=TextFile", f'Name="{written}"', "Overwrite=true"])
        return (Command(job, written),
                Command([self._bench.limits, "odbc", self._connect_string, query, limit_written],
                        limit_written))


# ---- Databases ----


def sqlite_work(bench):
    database = bench.scratch / "rows.db"

    def load(rows):
        subprocess.run([FOLDER / "generate.py", f"--rows={rows}", f"--sqlite={database}"],
                       check=True)

    # Without StepAPI the driver would read the whole result into memory.
    return QueryWork(bench, "SQLite", f"Driver=SQLite3;Database={database};StepAPI=1", load)


def server_tools():
    """The folder of initdb and postgres, or None."""
    found = shutil.which("initdb")
    if found:
        return Path(found).resolve().parent
    versions = sorted(Path("/usr/lib/postgresql").glob("*/bin/initdb"),
                      key=lambda path: float(path.parent.parent.name))
    return versions[-1].parent if versions else None


def server_account():
    """Whom to run a server as: nobody else than the user, unless that is root."""
    if os.geteuid() != 0:
        return {}
    for name in SERVER_ACCOUNTS:
        with contextlib.suppress(KeyError):
            account = pwd.getpwnam(name)
            return {"user": account.pw_uid, "group": account.pw_gid, "extra_groups": []}
    return None


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


@contextlib.contextmanager
def private_server(scratch):
    """Runs a PostgreSQL server on a loopback port; yields an ODBC connect string, or None."""
    tools = server_tools()
    account = server_account()
    if tools is None or account is None or shutil.which("psql") is None:
        yield None
        return
    data = scratch / "server"
    data.mkdir(mode=0o700)
    if account:
        os.chown(data, account["user"], account["group"])
    subprocess.run([tools / "initdb", "--no-sync", "--auth=trust", "--username=bench",
                    "--encoding=UTF8", "--locale=C.UTF-8", f"--pgdata={data}"],
                   check=True, stdout=subprocess.DEVNULL, cwd=data, **account)
    port = free_port()
    with open(scratch / "server.log", "wb") as log:
        server = subprocess.Popen(
            [tools / "postgres", "-D", data, "-p", str(port), "-k", data,
             "-c", "listen_addresses=127.0.0.1", "-c", "fsync=off"],
            stdout=log, stderr=log, cwd=data, **account)
    try:
        wait_for_server(tools, server, port, scratch / "server.log")
        yield (f"Driver=PostgreSQL Unicode;Server=127.0.0.1;Port={port};Database=postgres;"
               "Uid=bench")
    finally:
        server.send_signal(signal.SIGINT)  # ends sessions and stops
        server.wait()


def wait_for_server(tools, server, port, log):
    deadline = time.monotonic() + SERVER_START_SECONDS
    ready = [tools / "pg_isready", "--quiet", "--host=127.0.0.1", f"--port={port}"]
    while subprocess.run(ready, check=False).returncode != 0:
        if server.poll() is not None or time.monotonic() > deadline:
            sys.exit(f"the private server did not start:\n{log.read_text()}")
        time.sleep(0.1)


def psql_connection(connect_string):
    """The parts of an ODBC connect string that psql wants to know."""
    names = {"server": "host", "servername": "host", "port": "port", "database": "dbname",
             "uid": "user", "pwd": "password"}
    parts = (part.partition("=") for part in connect_string.split(";"))
    return " ".join(f"{names[key.strip().lower()]}='{value.strip()}'" for key, _, value in parts
                    if key.strip().lower() in names)


@contextlib.contextmanager
def any_server(scratch):
    """The server that QUILLON_TEST_POSTGRES names, left without our table, or a private one."""
    named = os.environ.get("QUILLON_TEST_POSTGRES")
    if not named:
        with private_server(scratch) as connect_string:
            yield connect_string
        return
    try:
        yield named
    finally:
        subprocess.run(["psql", "--no-psqlrc", "--quiet", f"--dbname={psql_connection(named)}",
                        f"--command=drop table if exists {generate.DEFAULT_TABLE}"], check=False)


def postgres_work(bench, connect_string):
    def load(rows):
        subprocess.run([FOLDER / "generate.py", f"--rows={rows}",
                        f"--psql={psql_connection(connect_string)}"], check=True)

    # Without a cursor the driver would read the whole result into memory.
    if "usedeclarefetch" not in connect_string.lower():
        connect_string = f"{connect_string.rstrip(';')};UseDeclareFetch=1;Fetch=1000"
    return QueryWork(bench, "PostgreSQL", connect_string, load)


# ---- Measuring ----


def check_bytes(work, rows):
    """Runs both once, which also warms the caches, and compares what they wrote."""
    program, limit = work.commands(rows)
    program.execute()
    limit.execute()
    if not filecmp.cmp(program.output, limit.output, shallow=False):
        sys.exit(f"{work.name}: {program.output} and {limit.output} differ")
    size = program.output.stat().st_size
    program.output.unlink()
    limit.output.unlink()
    return size


def time_pairs(bench, work, rows, repeat):
    program, limit = work.commands(rows)
    for turn in range(repeat):
        for command in (program, limit) if turn % 2 == 0 else (limit, program):
            command.outcomes.append(bench.time(command))
            command.output.unlink()
    return program, limit


def calls_per_row(bench, work):
    """System calls that a further row costs: those at the start of the programs cancel out."""
    totals = [[bench.system_calls(command) for command in work.commands(rows)]
              for rows in (FEW_ROWS, 2 * FEW_ROWS)]
    return [(more - few) / FEW_ROWS for few, more in zip(*totals)]


def speed_rows(work, rows, size, program, limit, calls):
    ratio = program.seconds() / limit.seconds()
    pairs = [ours.seconds / theirs.seconds
             for ours, theirs in zip(program.outcomes, limit.outcomes)]
    verdict = "met" if ratio <= work.aim else "MISSED"
    ratios = (f"**{ratio:.2f}** | {min(pairs):.2f} to {max(pairs):.2f} | "
              f"{work.aim:.2f}, {verdict}")
    for name, command, calls_a_row, tail in (
            (f"{work.name} | quillon", program, calls[0], ratios),
            (f" | {work.limit_name}", limit, calls[1], " | | ")):
        seconds = command.seconds()
        yield (f"| {name} | {seconds:.3f} | {command.processor_seconds():.3f} | "
               f"{rows / seconds:,.0f} | {size / seconds / 1e6:.1f} | {command.peak_mib():.1f} | "
               f"{calls_a_row:.2f} | {tail} |")


def steadiness_rows(bench, work, row_counts):
    """Memory and allocations must not grow with the rows, but for those that a driver makes."""
    ours, theirs = {}, {}
    for rows in row_counts:
        program, limit = work.commands(rows)
        peak_mib = bench.time(program).peak_kib / 1024
        ours[rows] = bench.allocations(program)
        theirs[rows] = bench.allocations(limit)
        yield (f"| {work.name} | {rows:,} | {peak_mib:.1f} | {ours[rows][0]:,} | "
               f"{ours[rows][1]:,} | {theirs[rows][1]:,} | |")
        program.output.unlink()
        limit.output.unlink()
    few, many = row_counts
    more_new = ours[many][0] - ours[few][0]
    more_c = ours[many][1] - ours[few][1]
    more_c_of_limit = theirs[many][1] - theirs[few][1]
    met = abs(more_new) + abs(more_c - more_c_of_limit) <= ALLOCATION_AIM
    yield (f"| | growth | | {more_new:,} | {more_c:,} | {more_c_of_limit:,} | "
           f"{'met' if met else 'MISSED'} |")


def machine():
    model = re.search(r"^model name\s*:\s*(.*)$", Path("/proc/cpuinfo").read_text(), re.M)
    return f"{os.cpu_count()} cores ({model.group(1) if model else 'unknown'})"


def measured_speed(bench, work, arguments):
    say(f"{work.name}: comparing what is written")
    size = check_bytes(work, arguments.rows)
    say(f"{work.name}: timing {arguments.repeat} pairs")
    program, limit = time_pairs(bench, work, arguments.rows, arguments.repeat)
    say(f"{work.name}: counting system calls")
    calls = calls_per_row(bench, work)
    return speed_rows(work, arguments.rows, size, program, limit, calls)


def print_report(bench, works, arguments):
    few_and_many = (FEW_ROWS, arguments.rows)
    speed, steadiness = [], []
    for work in works:
        say(f"{work.name}: making {arguments.rows:,} rows")
        work.prepare({FEW_ROWS, 2 * FEW_ROWS, arguments.rows})
        os.sync()
        if work.same_bytes:
            speed += measured_speed(bench, work, arguments)
        say(f"{work.name}: counting allocations")
        steadiness += steadiness_rows(bench, work, few_and_many)
    print(f"{arguments.rows:,} rows, lines of text end in {arguments.line_end.upper()}, medians of "
          f"{arguments.repeat}, {machine()}.\n")
    print("| Work | Done by | s | processor s | rows/s | MB/s | peak MiB | system calls a row | "
          "ratio | of single pairs | aim |")
    print("|---|---|--:|--:|--:|--:|--:|--:|--:|---|---|")
    print("\n".join(speed))
    print(f"\nAim: allocations grow by no more than {ALLOCATION_AIM}, beside those of the driver."
          "\n")
    print("| Work | rows | peak MiB | operator new | malloc | malloc of the limit | aim |")
    print("|---|--:|--:|--:|--:|--:|---|")
    print("\n".join(steadiness))


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, default=ROOT / "build" / "linux",
                        help="build folder (default build/linux)")
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--repeat", type=int, default=5, help="timed runs of each (default 5)")
    parser.add_argument("--line-end", choices=("lf", "crlf"), default="crlf",
                        help="of the text files (default crlf)")
    parser.add_argument("--only", choices=("text", "console", "sqlite", "postgres"), nargs="+",
                        help="leave the other kinds of work out")
    parser.add_argument("--scratch", type=Path, help="folder for the data (default: temporary)")
    arguments = parser.parse_args()
    if not 2 * FEW_ROWS <= arguments.rows <= generate.MOST_ROWS:
        parser.error(f"--rows must be from {2 * FEW_ROWS} to {generate.MOST_ROWS}")
    if arguments.repeat < 1:
        parser.error("--repeat must be at least 1")
    return arguments


def main():
    arguments = parse_arguments()
    if shutil.which("strace") is None:
        sys.exit("strace is missing")
    wanted = arguments.only or ("text", "console", "sqlite", "postgres")
    with contextlib.ExitStack() as stack:
        scratch = Path(stack.enter_context(
            tempfile.TemporaryDirectory(prefix="quillon-bench-", dir=arguments.scratch)))
        scratch.chmod(0o755)  # the server's account has to get through
        bench = Bench(arguments.build.resolve(), scratch)
        works = []
        if "text" in wanted:
            works.append(TextWork(bench, arguments.line_end, "text to text"))
            works.append(TextWork(bench, arguments.line_end, "text to UTF-8 text",
                                  encoding="UTF8"))
        if "console" in wanted:
            works.append(TextWork(bench, arguments.line_end, "standard input to standard output",
                                  console=True))
        if "sqlite" in wanted:
            works.append(sqlite_work(bench))
        if "postgres" in wanted:
            connect_string = stack.enter_context(any_server(scratch))
            if connect_string:
                works.append(postgres_work(bench, connect_string))
            else:
                say("SKIPPED: PostgreSQL query to text. There are no server programs (package "
                    "postgresql) and QUILLON_TEST_POSTGRES is not set.")
        print_report(bench, works, arguments)


if __name__ == "__main__":
    main()
