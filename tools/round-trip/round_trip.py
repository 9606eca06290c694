#!/usr/bin/env python3
"""Writes generated rows as CSV and reads them back, by the program and by others. Run by hand on Linux;
usage: round_trip.py PROGRAM [--rows N] [--seed N] [--keep FOLDER]. See README.md."""
import argparse
import csv
import os
import pathlib
import random
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile

SERVER = pathlib.Path(__file__).resolve().parent.parent.parent / "tests/servers/postgres.sh"
PIECES = ["a", "Zürich", "漢", "😀", "𝔘", " ", "  ", "\t", ",", ";", "|", "\x1f", '"', '""', "'", "\\", "\n",
          "\r", "\r\n", "\\N", "\\.", "NULL", "null", "$NAME$", "#", "=1+1", "-", "0", "1.50", "\x01", "\x7f",
          "\x85", "\xa0", "\ufeff", "\u2028", "\ufffd"]
WHOLE = ["", None, "NULL", " ", " a", "a ", '"', "\r", "\n", "\r\n", ",", "\\.", "\ufeffa"]
LONG = "é, \"quoted\"\r\n;" * 75000  # 1.1 MB
LONG_ROWS = 8
# psql takes a line of these alone for the end of the rows, inside quotes, too.
END_OF_COPY = re.compile(r"(?<=[\r\n])\\\.(?=[\r\n])")
COLUMNS = ("id", "a", "b", "c")
SETTINGS = ("", "NullText=NULL\n")
ODBC = 'ConnectString="Driver=SQLite3;Database={};StepAPI=1;SyncPragma=OFF;JournalMode=OFF"\n'
JOB = """Globals
Edition=2
Step 1: from the database
Source
Type=DatabaseQuery
Query=select id, a, b, c from t order by rowid
{made}Target
Type=TextFile
Name=first.csv
{null}Step 2: from the file
Source
Type=TextFile
Name=first.csv
{null}Target
Type=TextFile
Name=second.csv
{null}Step 3: back into a database
Source
Type=TextFile
Name=second.csv
{null}Target
Type=DatabaseTable
Table=t
{back}
"""


def value(rng):
    if rng.random() < 0.3:
        return rng.choice(WHOLE)
    return END_OF_COPY.sub("", "".join(rng.choices(PIECES, k=rng.randrange(7))))


def rows(options):
    rng = random.Random(options.seed)
    every = max(options.rows // LONG_ROWS, 1)
    for number in range(options.rows):
        row = [value(rng) for _ in COLUMNS[1:]]
        if number % every == 0:
            row[number // every % len(row)] = LONG
        yield [str(number), *row]


def compare(options, reader, found, fit=lambda value: value):
    """found: the rows of a reader. fit: what it can tell of a value."""
    count = 0
    for row, wanted in zip(found, rows(options)):
        if list(row) != [fit(value) for value in wanted]:
            raise SystemExit(f"{reader}: {str(row)[:500]!r} instead of {str(wanted)[:500]!r}")
        count += 1
    if count != options.rows or next(found, None) is not None:
        raise SystemExit(f"{reader}: {count} rows or more instead of {options.rows}")
    print(f"| {reader} | {count} |", flush=True)


def without_null(value):
    return "" if value is None else value


def run(*command, **others):
    return subprocess.run(command, check=True, **others)


def database_rows(path):
    with sqlite3.connect(path) as database:
        yield from database.execute("select id, a, b, c from t order by cast(id as integer)")


def python_rows(path):
    csv.field_size_limit(sys.maxsize)
    with path.open(encoding="utf-8", newline="") as opened:
        reader = csv.reader(opened, strict=True)
        if tuple(next(reader)) != COLUMNS:
            raise SystemExit("the names of the columns differ")
        yield from reader


def sqlite_rows(path, folder):
    made = folder / "import.db"
    made.unlink(missing_ok=True)
    run("sqlite3", made, f".import --csv {path} t")
    return database_rows(made)


def postgres_rows(path, folder, null):
    """In by \\copy ... csv, out in the format that tells NULL and everything else apart."""
    server = folder / "server"
    shutil.rmtree(server, ignore_errors=True)
    connect = run("sh", SERVER, "start", server, stdout=subprocess.PIPE, text=True).stdout
    try:
        port = re.search(r"Port=(\d+)", connect)[1]
        said = folder / "postgres.txt"
        script = ("create table t(id text, a text, b text, c text);\n"
                  f"\\copy t from '{path}' with (format csv, header{null})\n"
                  f"\\copy (select * from t order by id::int) to '{said}'\n")
        run("psql", "-X", "-q", "-v", "ON_ERROR_STOP=1", "-h", "127.0.0.1", "-p", port, "-U", "postgres",
            input=script.encode(), env=os.environ | {"PGCLIENTENCODING": "UTF8"})
    finally:
        run("sh", SERVER, "stop", server)
    known = {"n": "\n", "r": "\r", "t": "\t", "b": "\b", "f": "\f", "v": "\v"}

    def cell(text):
        return None if text == "\\N" else re.sub(r"\\(.)", lambda m: known.get(m[1], m[1]), text)
    with said.open(encoding="utf-8", newline="\n") as opened:
        for line in opened:
            yield [cell(text) for text in line.removesuffix("\n").split("\t")]


def round_trip(options, folder, null):
    (folder / "back.db").unlink(missing_ok=True)
    for name in ("made.db", "back.db"):
        with sqlite3.connect(folder / name) as database:
            database.execute("create table if not exists t(id text, a text, b text, c text)")
    job = JOB.format(null=null, made=ODBC.format("made.db"), back=ODBC.format("back.db"))
    (folder / "job.qpr").write_text(job)
    run(options.program, "-config=job.qpr", "-silent", cwd=folder, env=os.environ | {"LC_ALL": "C.UTF-8"})
    first = folder / "first.csv"
    run("cmp", first, folder / "second.csv")
    suffix = f", {null.strip()}" if null else ""
    compare(options, "Quillon" + suffix, database_rows(folder / "back.db"))
    if null:
        compare(options, "PostgreSQL" + suffix, postgres_rows(first, folder, ", null 'NULL'"))
        return
    compare(options, "Python csv", python_rows(first), without_null)
    compare(options, "sqlite3 .import", sqlite_rows(first, folder), without_null)
    compare(options, "PostgreSQL", postgres_rows(first, folder, ""))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", type=pathlib.Path, help="a folder for the files")
    options = parser.parse_args()
    options.program = options.program.resolve()
    with tempfile.TemporaryDirectory() as scratch:
        folder = (options.keep or pathlib.Path(scratch)).resolve()
        folder.mkdir(parents=True, exist_ok=True)
        folder.chmod(0o755)  # the server is another user
        (folder / "made.db").unlink(missing_ok=True)
        with sqlite3.connect(folder / "made.db") as database:
            database.execute("create table t(id text, a text, b text, c text)")
            database.executemany("insert into t values (?,?,?,?)", rows(options))
        print("| Read by | Equal rows |\n|---|---|")
        for null in SETTINGS:
            round_trip(options, folder, null)


if __name__ == "__main__":
    main()
