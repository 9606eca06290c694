#!/usr/bin/env python3
"""Rows into tables of real engines, and rows that a table refuses. Engines and usage are those of
engines_test.py."""
import os
import re
import sys
import unittest

from support import EngineTest, MariaDb, Postgres, Sqlite, source, target

TEXTS = (
    ("1 MiB", "0123456789abcdż\n" * 65536),
    ("accents", "Zażółć gęślą jaźń, Größe, Ελλάδα, 日本語"),
    ("beyond the basic plane", "😀 żółw 😁 👩‍👩‍👧 𝄞"),
    ("empty", ""),
    ("line ends", "a\r\nb\nc\rd\te"),
    ("marks", """O'Brien ''s "name" \\' \\n %s {fn now()} ? $TABLE$ ; -- # /* */"""),
    ("null", None),
    ("word", "NULL"),
)
SALE = ("create table sale (id int primary key, name varchar(60) not null, price numeric(9,2), "
        "day date, at timestamp null, note text);")
SALES = ("insert into sale values (1, 'O''Brien', 12.5, '2024-02-29', '2024-02-29 23:59:58', null);"
         "insert into sale values (2, 'Łódź', -0.05, null, null, '');"
         "insert into sale values (3, '', 1234567, '1999-12-31', '1970-01-02 00:00:00', 'NULL')")


def literal(value):
    doubled = (value or "").replace("'", "''")
    return "null" if value is None else f"'{doubled}'"


class Rows:
    """What holds for every engine as the one that rows go into."""

    def test_copy_from_each_engine(self):
        for engine in (Sqlite, Postgres, MariaDb):
            with self.subTest(engine.__name__):
                if engine.missing:
                    self.skipTest(engine.missing)
                made = self.database(SALE + SALES, engine.__name__.lower(), engine)
                taker = self.database(SALE, engine.__name__.lower() + "_taker")
                self.move(source("DatabaseQuery", made, "Query=select * from sale order by id") +
                          target("DatabaseTable", taker, "Table=sale"))
                self.assertEqual(taker.rows("sale"), self.sales)

    def test_texts_arrive_whole(self):
        create = "create table t (name varchar(40) primary key, value text);"
        if self.engine is MariaDb:
            create = create.replace("value text", "value longtext")
        rows = ",".join(f"('{name}', {literal(value)})" for name, value in TEXTS)
        made = self.database(f"{create} insert into t values {rows}")
        taker = self.database(create, "b")
        self.assertEqual(made.rows("t"), list(TEXTS))
        self.move(source("DatabaseTable", made, "Table=t") +
                  target("DatabaseTable", taker, "Table=t"))
        for (name, value), expected in zip(taker.rows("t"), TEXTS, strict=True):
            with self.subTest(name):
                self.assertTrue((name, value) == expected, repr(value)[:200])

    def test_table_with_an_odd_name(self):
        made = self.database("create table t (a int); insert into t values (7);"
                             'create view "Größe" as select a as "x y" from t')
        taker = self.database('create table "Über. alles" ("a b" int)', "b")
        self.move(source("DatabaseContent", made, "Tables=t,Größe") +
                  target("DatabaseTable", taker, 'Table=""Über. alles""'))
        self.assertEqual([str(value) for (value,) in taker.rows("Über. alles")], ["7", "7"])

    def test_refused_row(self):
        create = ("create table t (id int primary key, name varchar(5) not null "
                  "check (name <> 'bad'))")
        made = self.database("create table t (id int, name text)", "rows", Sqlite)
        for number, (row, words) in enumerate(zip(
                ("2, 'again'", "3, null", "3, 'bad'", "3, 'longer'"), self.refusals)):
            with self.subTest(row):
                taker = self.database(create, f"taker{number}")
                made.run("delete from t; insert into t values "
                         f"(1, 'one'), (2, 'two'), ({row}), (4, 'four')")
                done = self.run_job(source("DatabaseTable", made, "Table=t") +
                                    target("DatabaseTable", taker, "Table=t"))
                self.assert_ends(done, 2, "ODBCDatabase::ExecNonQuery execution error: "
                                 rf"(?s:.*){re.escape(words)}(?s:.*),[0-9A-Z]{{5}},\d+")
                self.assertEqual([name for _, name in taker.rows("t")], ["one", "two"])


class ServerRows(Rows):
    """What holds for every engine with users."""

    def test_table_without_the_right_to_write_it(self):
        made = self.database("create table t (a int); insert into t values (1)")
        user = f"quillon_{os.getpid()}"
        made.add_user(user)
        self.addCleanup(made.drop_user, user)
        made.run(f"grant select on t to {made.user(user)}")
        reader = source("DatabaseTable", made, "Table=t").replace(made.connect, made.as_user(user))
        done = self.run_job(source("DatabaseTable", made, "Table=t") +
                            reader.replace("Source", "Target"))
        self.assert_ends(done, 2, f"ODBCDatabase::ExecNonQuery execution error: .*{self.denied}"
                         r"(?s:.*),[0-9A-Z]{5},\d+")
        self.assertEqual(made.rows("t"), [("1",)])


class SqliteRows(Rows, EngineTest):
    engine = Sqlite
    sales = [(1, "O'Brien", 12.5, "2024-02-29", "2024-02-29 23:59:58", None),
             (2, "Łódź", -0.05, None, None, ""),
             (3, "", 1234567, "1999-12-31", "1970-01-02 00:00:00", "NULL")]
    refusals = ("UNIQUE constraint failed: t.id", "NOT NULL constraint failed: t.name",
                "CHECK constraint failed: name <> 'bad'")  # it takes texts of any length


class PostgresRows(ServerRows, EngineTest):
    engine = Postgres
    sales = [("1", "O'Brien", "12.50", "2024-02-29", "2024-02-29 23:59:58", None),
             ("2", "Łódź", "-0.05", None, None, ""),
             ("3", "", "1234567.00", "1999-12-31", "1970-01-02 00:00:00", "NULL")]
    refusals = ('duplicate key value violates unique constraint "t_pkey"',
                'null value in column "name" of relation "t" violates not-null constraint',
                'new row for relation "t" violates check constraint "t_name_check"',
                "value too long for type character varying(5)")
    denied = "permission denied for table t"


class MariaDbRows(ServerRows, EngineTest):
    engine = MariaDb
    sales = PostgresRows.sales
    refusals = ("Duplicate entry '2' for key 'PRIMARY'", "Column 'name' cannot be null",
                "CONSTRAINT `t.name` failed", "Data too long for column 'name'")
    denied = "INSERT command denied to user"


if __name__ == "__main__":
    EngineTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
