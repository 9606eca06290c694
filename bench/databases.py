#!/usr/bin/env python3
"""Measures how fast tables are loaded and read, beside the databases' own tools and other programs,
and prints a Markdown table. All take turns on the same rows; medians of whole processes.

    bench/databases.py [--build FOLDER] [--load N...] [--read N] [--repeat N] [--only NAME...]

Debian packages: sqlite3, libsqliteodbc, postgresql, odbc-postgresql, mariadb-server, odbc-mariadb,
unixodbc (isql), python3-psycopg2, python3-pymysql, pgloader. What is not installed is left out, and
the script says so. QUILLON_TEST_POSTGRES and QUILLON_TEST_MARIADB name servers; without them
private ones are started. What inserts row by row is measured with fewer rows."""
import argparse
import contextlib
import csv
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import generate
from generate import COLUMNS, DEFAULT_TABLE
from run import FOLDER, ROOT, Bench, Command, any_server, machine, psql_connection, say

FEW_ROWS = 2_000  # for those that send row by row
PYTHON = "/usr/bin/python3"  # the one that Debian's packages are for
READ = f"select * from {DEFAULT_TABLE}"
MEMORY = Path("/dev/shm")  # for what is written, so that the disk is not compared
NAMES = [name for name, _ in COLUMNS]


def keywords(connect_string):
    """The keywords of an ODBC connect string, in small letters."""
    return {key.lower(): value for key, value in
            re.findall(r"([^=;]+)=(\{[^}]*\}|[^;]*)", connect_string)}


def driver_connect(connect_string, **names):
    """What Python's driver wants to know, as JSON; `names` are its words for keywords."""
    given = keywords(connect_string)
    return json.dumps({word: int(given[key]) if key == "port" else given[key]
                       for key, word in names.items() if key in given})


class Sqlite:
    name = "SQLite"
    driver = "sqlite3"

    def __init__(self, scratch):
        path = scratch / "rows.db"
        self.connect = f"Driver=SQLite3;Database={path}"
        self.source = self.connect + ";StepAPI=1"
        self.driver_connect = str(path)
        self.client = ["sqlite3", "-bail", path]

    def load_tool(self, path):
        return "sqlite3 .import", [*self.client, f".import --csv --skip 1 {path} {DEFAULT_TABLE}"]

    def read_tool(self, _path):
        return "sqlite3 -csv", ["sqlite3", "-csv", "-header", self.client[-1], READ]


class Postgres:
    name = "PostgreSQL"
    driver = "psycopg2"

    def __init__(self, connect_string):
        self.connect = connect_string.rstrip(";\n")
        self.source = self.connect + ";UseDeclareFetch=1;Fetch=1000"
        self.driver_connect = driver_connect(connect_string, server="host", port="port", uid="user",
                                             database="dbname", pwd="password")
        self.client = ["psql", "--no-psqlrc", "--quiet", "--tuples-only", "--no-align",
                       "--set=ON_ERROR_STOP=1", f"--dbname={psql_connection(connect_string)}",
                       "--command"]

    def load_tool(self, path):
        return "psql \\copy", [*self.client, f"\\copy {DEFAULT_TABLE} from '{path}' csv header"]

    def read_tool(self, path):
        return "psql \\copy", [*self.client, f"\\copy {DEFAULT_TABLE} to '{path}' csv header"]


class MariaDb:
    name = "MariaDB"
    driver = "pymysql"

    def __init__(self, connect_string):
        self.connect = self.source = connect_string.rstrip(";\n")
        self.driver_connect = driver_connect(connect_string, server="host", port="port", uid="user",
                                             database="database", pwd="password")
        given = keywords(connect_string)
        words = {"server": "host", "port": "port", "uid": "user", "pwd": "password",
                 "database": "database"}
        self.client = ["mariadb", "--no-defaults", "--protocol=tcp", "--local-infile=1",
                       "--default-character-set=utf8mb4", "--skip-column-names", "--batch",
                       *(f"--{word}={given[key]}" for key, word in words.items() if key in given),
                       "--execute"]

    def load_tool(self, path):
        return "mariadb LOAD DATA LOCAL", [
            *self.client, f"load data local infile '{path}' into table {DEFAULT_TABLE} character "
            "set utf8mb4 fields terminated by ',' optionally enclosed by '\"' "
            "lines terminated by '\\n' ignore 1 lines"]

    def read_tool(self, _path):
        return "mariadb --batch", [*self.client[:-1], "--quick", "--execute", READ]


@contextlib.contextmanager
def mariadb_server(scratch):
    """A connect string of the server that QUILLON_TEST_MARIADB names, or of a private one."""
    if named := os.environ.get("QUILLON_TEST_MARIADB"):
        yield named
        return
    script = [ROOT / "tests/servers/mariadb.sh"]
    folder = scratch / "mariadb"
    started = subprocess.run([*script, "start", folder], stdout=subprocess.PIPE, text=True,
                             check=False)
    try:
        yield started.stdout.strip() if started.returncode == 0 else None
    finally:
        subprocess.run([*script, "stop", folder], check=False)


def command_line(engine, sql):
    """Runs a statement with the engine's client and returns what it says."""
    return subprocess.run([*map(str, engine.client), sql], stdout=subprocess.PIPE, text=True,
                          check=True).stdout.strip()


def empty_table(engine):
    command_line(engine, f"drop table if exists {DEFAULT_TABLE}")
    command_line(engine, generate.create_table(DEFAULT_TABLE))


class Files:
    """The rows in every form that a program wants."""

    def __init__(self, scratch, rows):
        self.rows = rows
        self.csv, self.copy, self.inserts = (scratch / f"rows-{rows}.{kind}"
                                             for kind in ("csv", "copy", "sql"))
        if self.csv.exists():
            return
        with open(self.csv, "w", encoding="utf-8", newline="") as file, \
                open(self.copy, "w", encoding="utf-8", newline="") as copied, \
                open(self.inserts, "w", encoding="utf-8") as inserts:
            copy = generate.CopySink(copied)
            writer = csv.writer(file, lineterminator="\n")
            writer.writerow(NAMES)
            for chunk in generate.chunks(rows):
                writer.writerows(chunk)
                copy.add(chunk)
                for row in chunk if rows <= FEW_ROWS else ():
                    values = ",".join("null" if value is None else f"'{value}'" for value in row)
                    inserts.write(f"insert into {DEFAULT_TABLE} values ({values})\n")


class Contender:
    """One who does a work: a command for a number of rows."""

    def __init__(self, name, command, rows):
        self.name, self.command, self.rows = name, command, rows

    def seconds(self, rows):
        """The median, for so many rows."""
        return self.command.seconds() * rows / self.rows


def is_missing(arguments, module=None):
    missing = shutil.which(arguments[0]) is None or (module is not None and subprocess.run(
        [arguments[0], "-c", f"import {module}"], stderr=subprocess.DEVNULL,
        check=False).returncode != 0)
    if missing:
        say(f"{module or arguments[0]} is not installed")
    return missing


def table_job(bench, name, engine, files, edition):
    source = ["Type=TextFile", f"Name={files.csv}", "Dialect=CSV", "Delimiter=,",
              "InputEncoding=UTF8"]
    target = ["Type=DatabaseTable", f'ConnectString="{engine.connect}"', f"Table={DEFAULT_TABLE}"]
    return [*bench.job(name, source, target), f"-Edition={edition}"]


def pgloader_job(bench, engine, files):
    """A command file for pgloader."""
    given = keywords(engine.connect)
    port = given.get("port", "5432")
    path = bench.scratch / "rows.load"
    path.write_text(f"load csv from '{files.csv}' ({', '.join(NAMES)}) into postgresql://"
                    f"{given['uid']}@{given['server']}:{port}/{given['database']} "
                    f"target table {DEFAULT_TABLE} with skip header = 1, "
                    "fields terminated by ',', fields optionally enclosed by '\"';\n")
    return ["pgloader", "--quiet", path]


def loaders(bench, engine, rows, slow_ones):
    files, few = Files(bench.scratch, rows), Files(bench.scratch, min(rows, FEW_ROWS))
    output = bench.scratch / "said.txt"
    driver = [PYTHON, FOLDER / "drivers.py", "load", engine.driver, engine.driver_connect]
    each = [("quillon", table_job(bench, "load", engine, files, 2), files, {}),
            ("plain ODBC, 50 rows a statement",
             [bench.limits, "load", engine.connect, DEFAULT_TABLE, files.copy], files, {})]
    each.append((*engine.load_tool(files.csv), files, {}))
    if engine.name == "PostgreSQL" and not is_missing(["pgloader"]):
        each.append(("pgloader", pgloader_job(bench, engine, files), files, {}))
    if not slow_ones:
        return contenders_of(each, output)
    if not is_missing(driver, engine.driver):
        each.append((f"Python, {engine.driver}", [*driver, files.csv], files, {}))
    each.append(("quillon, edition 1", table_job(bench, "load1", engine, few, 1), few, {}))
    isql = ["isql", "-k", engine.connect, "-b"]
    if not is_missing(isql):
        each.append(("isql", isql, few, {"stdin": few.inserts}))
    return contenders_of(each, output)


def contenders_of(each, output):
    return [Contender(name, Command(arguments, output, writes_stdout=True, **options), of.rows)
            for name, arguments, of, options in each]


def readers(bench, engine, rows, folder):
    output = folder / "read.txt"
    query = bench.scratch / "query.sql"
    query.write_text(READ + "\n")
    job = bench.job("read", ["Type=DatabaseQuery", f'ConnectString="{engine.source}"',
                             f'Query="{READ}"'], ["Type=TextFile", f"Name={output}"])
    driver = [PYTHON, FOLDER / "drivers.py", "read", engine.driver, engine.driver_connect]
    name, tool = engine.read_tool(output)
    each = [("quillon", [*job, "-Edition=2"], {}),
            ("quillon, edition 1", [*job, "-Edition=1"], {}),
            ("plain ODBC, blocks of rows",
             [bench.limits, "blocks", engine.source, READ, output], {}),
            ("plain ODBC, SQLGetData", [bench.limits, "odbc", engine.source, READ, output], {}),
            (name, tool, {"writes_stdout": "\\copy" not in name})]
    if not is_missing(driver, engine.driver):
        each.append((f"Python, {engine.driver}", [*driver, output], {}))
    isql = ["isql", "-k", engine.source, "-b", "-d,"]
    if not is_missing(isql):
        each.append(("isql", isql, {"stdin": query, "writes_stdout": True}))
    return [Contender(name, Command(arguments, output, **options), rows)
            for name, arguments, options in each]


def lines_of(path):
    with open(path, "rb") as file:
        return sum(piece.count(b"\n") for piece in iter(lambda: file.read(1 << 20), b""))


def measure(bench, contenders, repeat, before, check):
    """Has all take turns; `before` comes in front of each, `check` behind it."""
    for turn in range(repeat):
        first = turn % len(contenders)
        for contender in contenders[first:] + contenders[:first]:
            before()
            contender.command.outcomes.append(bench.time(contender.command))
            check(contender)


def table_rows(work, rows, contenders):
    own = contenders[0].seconds(rows)
    for contender in contenders:
        seconds = contender.seconds(rows)
        name = contender.name + (f" ({contender.rows:,} rows)" if contender.rows != rows else "")
        ratio = own / seconds
        share = f"{ratio:.2f}" if ratio > 0.1 else f"{ratio:.1g}"
        share = "" if contender is contenders[0] else f"**{share}**"
        yield (f"| {work} | {name} | {seconds:.2f} | {rows / seconds:,.0f} | "
               f"{contender.command.peak_mib():.0f} | {share} |")
        work = ""


def measure_engine(bench, engine, options):
    def check_loaded(contender):
        found = int(command_line(engine, f"select count(*) from {DEFAULT_TABLE}"))
        if found != contender.rows:
            sys.exit(f"{engine.name}: {contender.name} loaded {found} of {contender.rows} rows")

    def check_read(contender):
        found = lines_of(contender.command.output)
        if not contender.rows <= found <= contender.rows + 1:  # with a line of names
            sys.exit(f"{engine.name}: {contender.name} read {found} of {contender.rows} rows")

    for rows in options.load:
        say(f"{engine.name}: loading {rows:,} rows")
        contenders = loaders(bench, engine, rows, rows == options.load[0])
        measure(bench, contenders, options.repeat, lambda: empty_table(engine), check_loaded)
        work = f"{engine.name}, loading {rows:,}"
        print("\n".join(table_rows(work, rows, contenders)), flush=True)
    if options.read:
        say(f"{engine.name}: reading {options.read:,} rows")
        empty_table(engine)
        bench.time(loaders(bench, engine, options.read, False)[0].command)
        with tempfile.TemporaryDirectory(dir=MEMORY if MEMORY.is_dir() else None) as folder:
            contenders = readers(bench, engine, options.read, Path(folder))
            measure(bench, contenders, options.repeat, lambda: None, check_read)
        work = f"{engine.name}, reading {options.read:,}"
        print("\n".join(table_rows(work, options.read, contenders)), flush=True)
    command_line(engine, f"drop table {DEFAULT_TABLE}")


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=Path, default=ROOT / "build/linux")
    parser.add_argument("--load", type=int, nargs="*", default=[100_000, 1_000_000],
                        help="numbers of rows to load")
    parser.add_argument("--read", type=int, default=1_000_000, help="rows to read; 0: none")
    parser.add_argument("--repeat", type=int, default=3)
    parser.add_argument("--only", nargs="+", choices=("sqlite", "postgres", "mariadb"),
                        default=("sqlite", "postgres", "mariadb"))
    parser.add_argument("--scratch", type=Path, help="folder for the data (default: temporary)")
    return parser.parse_args()


def main():
    options = parse_arguments()
    with contextlib.ExitStack() as stack:
        scratch = Path(stack.enter_context(
            tempfile.TemporaryDirectory(prefix="quillon-bench-", dir=options.scratch)))
        scratch.chmod(0o755)  # the servers' accounts have to get through
        bench = Bench(options.build.resolve(), scratch)
        print(f"8 columns, medians of {options.repeat}, {machine()}.\n\n| Work | Done by | s | "
              "rows/s | peak MiB | quillon's share |\n|---|---|--:|--:|--:|--:|", flush=True)
        if "sqlite" in options.only:
            measure_engine(bench, Sqlite(scratch), options)
        for word, engine, server in (("postgres", Postgres, any_server),
                                     ("mariadb", MariaDb, mariadb_server)):
            if word not in options.only:
                continue
            connect_string = stack.enter_context(server(scratch))
            if connect_string:
                measure_engine(bench, engine(connect_string), options)
            else:
                say(f"SKIPPED: {engine.name}. There is no server.")


if __name__ == "__main__":
    main()
