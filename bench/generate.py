#!/usr/bin/env python3
"""Makes the rows that the benchmarks move: 8 mixed columns, about 100 bytes a row.

A number of rows and a seed always give the same rows, whichever form they are written in: delimited
text, a COPY file, a table of a SQLite database or a table of a PostgreSQL server.
"""

import argparse
import datetime
import random
import sqlite3
import subprocess
import sys
from pathlib import Path

FEWEST_ROWS = 10_000
MOST_ROWS = 10_000_000
CHUNK_ROWS = 10_000
POOL_SIZE = 8192
DEFAULT_SEED = 20_240_229
DEFAULT_TABLE = "quillon_bench"

# Name and SQL type; SQLite and PostgreSQL understand all of them.
COLUMNS = (
    ("id", "integer"),
    ("customer", "varchar(40)"),
    ("amount", "numeric(12,2)"),
    ("due", "date"),
    ("changed", "timestamp"),
    ("code", "varchar(8)"),
    ("remark", "varchar(20)"),
    ("notes", "varchar(100)"),
)

FIRST_NAMES = ("Anna Bela Carl Dora Emil Fay Gus Hanna Ivo Jana Karl Lena Max Nora Otto Paul "
               "Rosa Sam Tom Uma Vera Will Xenia Yves").split()
LAST_NAMES = ("Adler Brook Castle Dunn Evans Field Grant Hill Irving Jones Keller Lang Miller "
              "Novak Olsen Price Quinn Reed Stone Turner Vance Wood Young Zeller").split()
ACCENTED_NAMES = ("Zoë Brontë", "José Núñez", "Jürgen Groß", "Élise Lefèvre", "Åsa Öberg")
ACCENTED_SHARE = 0.02
REMARKS = (None,) * 12 + ("",) * 2 + ("check", "on hold")
WORDS = ("order late parcel blue paper box sent again to the old store by rail with a note from "
         "north harbour, 25% paid; rest open in May and June (see file) or call first").split()


def make_pools(generator):
    """One list of values for every column but the first; rows draw from them."""

    def pool(make):
        return [make() for _ in range(POOL_SIZE)]

    def customer():
        if generator.random() < ACCENTED_SHARE:
            return generator.choice(ACCENTED_NAMES)
        return f"{generator.choice(FIRST_NAMES)} {generator.choice(LAST_NAMES)}"

    def moment():
        second = generator.randrange(20 * 365 * 86_400)
        return datetime.datetime(2005, 1, 1) + datetime.timedelta(seconds=second)

    def notes():
        text = " ".join(generator.choices(WORDS, k=generator.randint(3, 9)))
        return text[:60].rstrip()

    return (
        pool(customer),
        pool(lambda: f"{generator.randrange(-500_000, 10_000_000) / 100:.2f}"),
        pool(lambda: moment().strftime("%Y-%m-%d")),
        pool(lambda: moment().strftime("%Y-%m-%d %H:%M:%S")),
        pool(lambda: "".join(generator.choices("ABCDEFGHKLMNPRSTUVWXYZ23456789", k=4))),
        pool(lambda: generator.choice(REMARKS)),
        pool(notes),
    )


def chunks(rows, seed=DEFAULT_SEED):
    """Yields lists of up to CHUNK_ROWS tuples: a number from 1, then texts; None means NULL."""
    generator = random.Random(seed)
    pools = make_pools(generator)
    for start in range(1, rows + 1, CHUNK_ROWS):
        count = min(CHUNK_ROWS, rows + 1 - start)
        columns = [generator.choices(pool, k=count) for pool in pools]
        yield list(zip(range(start, start + count), *columns))


def lines(chunk, null, end_of_line):
    """The rows of a chunk as tab-delimited lines in one text."""
    rows = ("\t".join((str(number), name, amount, due, changed, code,
                       null if remark is None else remark, notes))
            for number, name, amount, due, changed, code, remark, notes in chunk)
    return end_of_line.join(rows) + end_of_line


class TextSink:
    """A UTF-8 text file with a header line; NULL is an empty field."""

    def __init__(self, path, end_of_line):
        self._file = open(path, "w", encoding="utf-8", newline="")
        self._end_of_line = end_of_line
        self._file.write("\t".join(name for name, _ in COLUMNS) + end_of_line)

    def add(self, chunk):
        self._file.write(lines(chunk, "", self._end_of_line))

    def close(self):
        self._file.close()


class CopySink:
    """The text format of PostgreSQL's COPY. No value holds a tab, a line end or a back-slash."""

    def __init__(self, stream):
        self._stream = stream

    def add(self, chunk):
        self._stream.write(lines(chunk, r"\N", "\n"))

    def close(self):
        self._stream.close()


class PsqlSink(CopySink):
    """A table made anew on a PostgreSQL server; psql reads the COPY text from a pipe."""

    def __init__(self, connection, table):
        self._psql = subprocess.Popen(
            ["psql", "--no-psqlrc", "--quiet", "--set=ON_ERROR_STOP=1", f"--dbname={connection}",
             "--command=set client_min_messages = warning",
             f"--command=drop table if exists {table}", f"--command={create_table(table)}",
             f"--command=\\copy {table} from pstdin"],
            stdin=subprocess.PIPE, text=True, encoding="utf-8")
        super().__init__(self._psql.stdin)

    def close(self):
        super().close()
        if self._psql.wait() != 0:
            sys.exit("psql could not load the table")


class SqliteSink:
    """A table in a new SQLite database file."""

    def __init__(self, path, table):
        Path(path).unlink(missing_ok=True)
        self._database = sqlite3.connect(path)
        self._database.execute("pragma journal_mode = off")
        self._database.execute("pragma synchronous = off")
        self._database.execute(create_table(table))
        self._insert = f"insert into {table} values ({','.join('?' * len(COLUMNS))})"

    def add(self, chunk):
        self._database.executemany(self._insert, chunk)

    def close(self):
        self._database.commit()
        self._database.close()


def create_table(table):
    columns = ", ".join(f"{name} {sql_type}" for name, sql_type in COLUMNS)
    return f"create table {table} ({columns}, primary key (id))"


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rows", type=int, default=1_000_000,
                        help=f"{FEWEST_ROWS} to {MOST_ROWS} (default 1000000)")
    parser.add_argument("--seed", type=int, default=DEFAULT_SEED)
    parser.add_argument("--text", metavar="FILE", help="write tab-delimited text with a header")
    parser.add_argument("--line-end", choices=("lf", "crlf"), default="crlf", help="of --text")
    parser.add_argument("--copy", metavar="FILE", help="write a file for PostgreSQL's COPY")
    parser.add_argument("--sqlite", metavar="FILE", help="make a SQLite database")
    parser.add_argument("--psql", metavar="CONNECTION",
                        help="load a PostgreSQL table; a connection string as psql takes it")
    parser.add_argument("--table", default=DEFAULT_TABLE, help="of the databases")
    arguments = parser.parse_args()
    if not FEWEST_ROWS <= arguments.rows <= MOST_ROWS:
        parser.error(f"--rows must be from {FEWEST_ROWS} to {MOST_ROWS}")
    return parser, arguments


def main():
    parser, arguments = parse_arguments()
    sinks = []
    if arguments.text:
        sinks.append(TextSink(arguments.text, "\r\n" if arguments.line_end == "crlf" else "\n"))
    if arguments.copy:
        sinks.append(CopySink(open(arguments.copy, "w", encoding="utf-8", newline="")))
    if arguments.sqlite:
        sinks.append(SqliteSink(arguments.sqlite, arguments.table))
    if arguments.psql:
        sinks.append(PsqlSink(arguments.psql, arguments.table))
    if not sinks:
        parser.error("name at least one of --text, --copy, --sqlite and --psql")
    for chunk in chunks(arguments.rows, arguments.seed):
        for sink in sinks:
            sink.add(chunk)
    for sink in sinks:
        sink.close()


if __name__ == "__main__":
    main()
