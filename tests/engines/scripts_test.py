#!/usr/bin/env python3
"""Scripts in the dialect of each engine: its own client runs them as they are, and the tables that
they make hold the rows that were there. SQLite always takes part, PostgreSQL and MariaDB where
QUILLON_TEST_POSTGRES and QUILLON_TEST_MARIADB hold ODBC connect strings of servers."""
import decimal
import random
import re

from support import (EngineTest, MariaDb, Postgres, Sqlite, client, quoted, run_tests, section,
                     source)

TEXTS = ("'O''Brien ''\"`'", r"'\'", r"'C:\new\r\''; drop table t; -- '", "'a\r\nb\rc\n'", "'\n'",
         "'\\13.\\10.\r\n'", "''", "null", "'😀 Zażółć'", "':x $1 %s ?'", "'a\tb'", "'\\\n.quit\ngo\n/'",
         "'" + "line\r\n" * 2000 + "'")
# The columns of a table in SQLite by name and type, with literals for its rows.
HOSTILE = {
    "order": ("integer not null", range(1, len(TEXTS) + 1)),
    "a b": ("text", TEXTS),
    "it's `q\"u]o[te": ("varchar(255) default 'it''s \\ \"7\"\r\n'", ("'x'",)),
    "größe": ("decimal(9,2)", ("'12.50'", "-7", "0.05", "null")),
    "key": ("bigint default -7", ("9223372036854775807", "-9223372036854775808", "0")),
    "no": ("integer", ("'1); delete from t; --'", "7")),
    "real": ("double", ("0.1", "1e300", "-2.5e-300", "null")),
    "yes": ("boolean default 1", ("1", "0", "null")),
    "day": ("date", ("'2024-02-29'", "null")),
    "at": ("timestamp", ("'2024-02-29 23:59:58.125'", "'1999-12-31 00:00:00'")),
    "raw": ("blob", ("x'00270a5c0d2700ff'", "x''", "null")),
    "bin": ("varbinary(16)", ("x'4142'",)),
}
NAME = "o'clo.ck; drop [select]"
# The same on every engine, where `raw` is the engine's own word.
SHARED = {
    "id": ("integer not null", ("1", "2")),
    "name": ("varchar(60) not null", ("'O''Brien'", "''")),
    "price": ("numeric(9,2) default 7.5", ("12.5", "-0.05")),
    "wide": ("decimal(30,10)", ("WIDE", "null")),
    "small": ("smallint", ("-3", "null")),
    "day": ("date", ("'2024-02-29'", "null")),
    "at": ("TIMESTAMP", ("'1999-12-31 23:59:58.125'", "null")),
    "note": ("text", ("'two\r\nlines \\'", "'x'")),
    "raw": ("RAW", ("HEX", "null")),
}


def rows_of(columns):
    count = max(len(values) for _, values in columns.values())
    return ", ".join("(" + ", ".join(str(values[row % len(values)])
                                     for _, values in columns.values()) + ")"
                     for row in range(count))


def table_script(name, columns):
    """Makes and fills a table; double quotes around the names."""
    described = ", ".join(f"{quoted(column)} {kind}" for column, (kind, _) in columns.items())
    return (f"create table {quoted(name)} ({described}); "
            f"insert into {quoted(name)} values {rows_of(columns)};")


def plain(value):
    """A value whatever a client makes of the form of numbers and of the fractions of a second."""
    if value is None:
        return None
    try:
        return decimal.Context(prec=60).create_decimal(str(value)).normalize()
    except ArithmeticError:
        return re.sub(r"(:\d\d)\.?0*$|(\.\d+?)0+$", r"\1\2", str(value)).lower()


class Shell:
    """An engine's client as a user calls it, and what reads a table: texts and bytes as
    hexadecimal digits."""

    def __init__(self, dialect, load, query, text, binary, boolean="{}", mark='"', **words):
        self.dialect, self.load, self.query, self.mark = dialect, load, query, mark
        self.forms = {"text": text, "varchar": text, "blob": binary, "RAW": binary,
                      "varbinary": binary, "boolean": boolean}
        self.words = words

    def quoted(self, name):
        return self.mark + name.replace(self.mark, self.mark * 2) + self.mark

    def read(self, made, name, columns):
        values = ", ".join(self.forms.get(re.split(r"\W", kind)[0], "{}").format(
            self.quoted(column)) for column, (kind, _) in columns.items())
        said = self.query(made, f"select {values} from {self.quoted(name)} order by 1")
        return [tuple(map(plain, row)) for row in said]

    def shared_table(self):
        script = table_script("t", SHARED)
        for word, stands_for in self.words.items():
            script = script.replace(word, stands_for)
        return script


def mariadb(made, script):
    client("mariadb", "--no-defaults", "--protocol=tcp", *made.server,
           "--default-character-set=utf8mb4", made.name, input=script)


SHELLS = {
    Sqlite: Shell("SQLite", lambda made, script: client("sqlite3", "-bail", made.path, input=script),
                  Sqlite.query, "iif({0} is null, null, hex({0}))", "iif({0} is null, null, hex({0}))", RAW="blob", WIDE="0.5",
                  HEX="x'00ff2700'", TIMESTAMP="timestamp"),
    Postgres: Shell("PostgreSQL", lambda made, script: made.client(made.name, script.decode()),
                    Postgres.query, "encode(convert_to({}, 'UTF8'), 'hex')", "encode({}, 'hex')",
                    "{}::int", RAW="bytea", WIDE="12345678901234567890.0123456789",
                    HEX="'\\x00ff2700'", TIMESTAMP="timestamp"),
    MariaDb: Shell("MySQL", mariadb, MariaDb.query, "hex({})", "hex({})", mark="`", RAW="blob",
                   WIDE="-12345678901234567890.0123456789", HEX="x'00ff2700'",
                   TIMESTAMP="datetime(6)"),
}


class Scripts:
    """What holds for every engine as the one that runs the scripts."""

    def carry(self, made, taker):
        """Has the engine's client run a script of the tables of a database."""
        shell = SHELLS[self.engine]
        common = ("Name=all.sql", f"SqlDialect={shell.dialect}", "Table=$TABLE$")
        self.write("job.qpr", "Globals\nEdition=2\n" + "".join(f"Step\n{step}" for step in (
            source("DatabaseSchema", made, "ObjectType=AllTables", "WithColumns=1") +
            section("Target", "DDLScript", *common),
            source("Database", made) +
            section("Target", "SQLScript", *common, "Overwrite=0", "BatchSize=3"))))
        self.assert_ends(self.run_job(None))
        shell.load(taker, (self.path / "all.sql").read_bytes())

    def test_hostile_table(self):
        shell = SHELLS[self.engine]
        columns = {name: column for name, column in HOSTILE.items()
                   if self.engine is Sqlite or name != "no"}  # a text among numbers
        made = self.database(table_script(NAME, columns), "hostile", Sqlite)
        taker = self.database(name="taker")
        self.carry(made, taker)
        expected = SHELLS[Sqlite].read(made, NAME, columns)
        self.assertEqual(len(expected), len(TEXTS))
        for name, *pair in zip(columns, zip(*expected), zip(*shell.read(taker, NAME, columns))):
            with self.subTest(name):
                self.assertEqual(*pair)
        shell.load(taker, f"insert into {shell.quoted(NAME)} ({shell.quoted('order')}) values (0);"
                   .encode())
        row = dict(zip(columns, shell.read(taker, NAME, columns)[0]))
        self.assertEqual([row["it's `q\"u]o[te"], row["key"], row["yes"]],
                         ["it's \\ \"7\"\r\n".encode().hex(), -7, 1])

    def test_random_texts(self):
        random_text = random.Random(7)  # the same at each run
        pieces = ["'", "''", '"', "\\", "\\13.", "\\10.", "\\13.1.", "\r", "\n", "\r\n", "1.", "13.", "n",
                  "r", "0", "\x1a", "\t", ";", "--", "/*", "$$", ":a", "go", ".quit", "\\q", "😀", "ß"]
        texts = ["".join(random_text.choices(pieces, k=random_text.randrange(12)))
                 for _ in range(500)]
        made = self.database("create table t (id integer, text text)", "random", Sqlite)
        made.run("".join("insert into t values ({}, cast(x'{}' as text));".format(
            number, text.encode().hex()) for number, text in enumerate(texts)))
        taker = self.database(name="taker")
        self.carry(made, taker)
        columns = {"id": ("integer", ()), "text": ("text", ())}
        self.assertEqual(SHELLS[self.engine].read(taker, "t", columns),
                         [(number, plain(text.encode().hex()))
                          for number, text in enumerate(texts)])

    def test_number_that_is_none(self):
        made = self.database("create table t (no integer); "
                             "insert into t values ('1); delete from t; --')", "bad", Sqlite)
        taker = self.database(name="taker")
        if self.engine is Sqlite:
            self.carry(made, taker)
            self.assertEqual(taker.query("select no from t"), [("1); delete from t; --",)])
        else:
            with self.assertRaisesRegex(AssertionError, "(?i)integer|truncated"):
                self.carry(made, taker)

    def test_tables_of_each_engine(self):
        for engine in (each for each in (Sqlite, Postgres, MariaDb) if not each.missing):
            with self.subTest(engine.__name__):
                name = engine.__name__.lower()
                made = self.database(SHELLS[engine].shared_table(), name, engine)
                taker = self.database(name="of_" + name)
                self.carry(made, taker)
                self.assertEqual(SHELLS[self.engine].read(taker, "t", SHARED),
                                 SHELLS[engine].read(made, "t", SHARED))


class SqliteScripts(Scripts, EngineTest):
    engine = Sqlite


class PostgresScripts(Scripts, EngineTest):
    engine = Postgres


class MariaDbScripts(Scripts, EngineTest):
    engine = MariaDb


if __name__ == "__main__":
    run_tests(__doc__)
