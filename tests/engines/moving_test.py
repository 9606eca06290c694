#!/usr/bin/env python3
"""Whole databases that go from engine to engine and back, in tables that are made on the way; and
what is left where that fails. Types that the documents name as lost on the way are missing here.
SQLite always takes part, PostgreSQL and MariaDB where QUILLON_TEST_POSTGRES and
QUILLON_TEST_MARIADB hold ODBC connect strings of servers."""
import re

import rows_test
from engines_test import ODD_NAMES, named_table
from scripts_test import plain
from support import (EDITION_2, EngineTest, MariaDb, Postgres, Sqlite, quoted, run_tests, section,
                     source, table)

ROUND = [engine for engine in (Sqlite, Postgres, MariaDb) if not engine.missing]
# A name of a column may have no full stop in SQLite, one of a table no emoji in MariaDB.
NAMES = [name for name in ODD_NAMES if "😀" not in name and "." not in name]
MANY = ("create table many (id int, name varchar(40), price decimal(9,2), day date); "
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 100000) "
        "insert into many select i, 'Größe ' || i, i % 1000 + 0.25, "
        "date('2000-01-01', '+' || (i % 9000) || ' days') from n;")


def copy(made, taker, *settings, name="$TABLE$"):
    """A step that copies a database."""
    return source("Database", made, *settings) + table(taker, name) + "CreateTable=1\n"


class Moving:
    """What holds for every engine as the one where the tables come from, or go to."""
    extra = ""
    lost = ()  # types that do not come back

    def tables(self):
        """The script of a database with a table for each type and for each odd name."""
        kinds = self.rows.types + self.rows.not_as_text + self.rows.bytes
        for number, (kind, *values) in enumerate(kinds):
            if kind in self.lost:
                continue
            rows = ", ".join(f"({row}, {value})" for row, value in enumerate(["null", *values]))
            yield f"create table t{number} (id int not null, c {kind} null);"
            yield f"insert into t{number} values {rows};"
        yield from map(named_table, NAMES)
        yield "create table empty (id int not null, name varchar(40));" + self.extra

    def test_round_trip(self):
        script = getattr(self.rows, "before", "") + "\n".join(self.tables())
        made = self.database(script, "start")
        names = re.findall(r'(?i)create table ("(?:""|[^"])+"|\w+)', script)
        names = [name.strip('"').replace('""', '"') for name in names]
        self.assertGreaterEqual(len(names), 30)
        counts = " union all ".join(f"select {number}, count(*) from {quoted(name)}"
                                    for number, name in enumerate(names)) + " order by 1"
        turn = ROUND.index(self.engine) + 1
        here = made
        for number, engine in enumerate(ROUND[turn:] + ROUND[:turn]):
            there = self.database("", f"stop{number}", engine)
            self.move(copy(here, there), globals=EDITION_2)
            here = there
            self.assertEqual(*([tuple(map(str, row)) for row in one.query(counts)]
                               for one in (made, here)))
        for name in names:
            with self.subTest(name, kind=re.findall(rf"create table {name} \(.*", script)):
                pair = [[tuple(map(plain, row)) for row in one.rows(name)] for one in (made, here)]
                self.assertTrue(pair[0] == pair[1], f"{pair!r:.1000}")

    def test_nothing_stays_of_a_copy_that_fails(self):
        made = self.database("create table a (x int); insert into a values (1);"
                             "create table b (x int); insert into b values (2);", "made", Sqlite)
        taker = self.database("create table b (x int); insert into b values (3);", "taker")
        rows = taker.rows("b")
        self.assert_job(2, "Step 1 .* source Database .*gone(?s:.*)",
                        copy(made, taker, "Tables=b,a,gone"), globals=EDITION_2)
        self.assertEqual(taker.rows("b"), rows)
        self.assertEqual(self.names(taker), ["b"])
        self.move(copy(made, taker, "Tables=b,a"), globals=EDITION_2)
        self.assertEqual((len(taker.rows("b")), self.names(taker)), (2, ["a", "b"]))

    def names(self, made):
        self.move(source("DatabaseSchema", made, "ObjectType=AllTables") +
                  "Target\nType=TextFile\nName=names.txt\nDelimiter=|\n", globals=EDITION_2)
        return sorted(line.split("|")[0] for line in self.files()["names"].splitlines()[1:])


class SqliteMoving(Moving, EngineTest):
    rows = rows_test.SqliteRows
    lost = ("integer",)  # 64 bits
    extra = MANY

    def test_fractions_of_a_second(self):
        made = self.database("create table t (a timestamp, b time, c datetime); insert into t values "
                             "('2024-02-29 23:59:59.987', '23:59:59.987', '2024-02-29 00:00:00.5')")
        for engine in ROUND:
            taker = self.database("", engine.__name__.lower(), engine)
            self.move(copy(made, taker), globals=EDITION_2)
            self.assertEqual([[plain(value) for value in row] for row in taker.rows("t")],
                             [["2024-02-29 23:59:59.987", "23:59:59.987", "2024-02-29 00:00:00.5"]])


    def test_own_tables_and_not_null_of_a_join(self):
        made = self.database("create table t (id integer primary key autoincrement, n int not null); "
                             "insert into t (n) values (5), (6);")
        taker = self.database("", "taker")
        self.move(copy(made, taker), source("DatabaseQuery", made, "Query=select a.id, b.n from t a "
                                            "left join t b on b.id = a.id and b.n = 5") +
                  table(taker, "j") + "CreateTable=1\n", globals=EDITION_2)
        self.assertEqual([taker.rows("t"), taker.rows("j")], [[(1, 5), (2, 6)], [(1, 5), (2, None)]])
        self.assertEqual(self.names(taker), ["j", "t"])


class PostgresMoving(Moving, EngineTest):
    engine = Postgres
    rows = rows_test.PostgresRows
    lost = ("real", "double precision", "numeric", "interval", "uuid", "timestamptz", "money",
            "boolean")

    def test_schemas_with_a_table_of_the_same_name(self):
        schemas = 'create schema "x.y"; create schema z;'
        made = self.database(schemas + 'create table "x.y".t (a int); create table z.t (a int);'
                             'insert into "x.y".t values (1); insert into z.t values (2);', "made")
        taker = self.database(schemas, "taker")
        self.assert_job(2, 'Step 1 .*Table "t" would take the rows of x.y.t and of z.t: name it by '
                        r"\$SCHEMA\$, too.", copy(made, taker), globals=EDITION_2)
        self.move(copy(made, taker, name="$SCHEMA$.$TABLE$"), globals=EDITION_2)
        self.assertEqual(taker.query('select * from "x.y".t union all select * from z.t'),
                         [("1",), ("2",)])

    def test_numbers_without_a_size_keep_their_digits(self):
        made = self.database("create table t (n int, a numeric); insert into t select n, n + 0.5 "
                             "from generate_series(1, 500) n; "
                             "insert into t values (501, 1.23456789);", "made")
        made.connect += ";UseDeclareFetch=1;Fetch=100"  # the driver has not seen the last row
        taker = self.database("", "taker")
        self.move(copy(made, taker), globals=EDITION_2)
        self.assertEqual(taker.rows("t"), made.rows("t"))


    def test_names_that_would_become_one(self):
        for engine in (engine for engine in ROUND if engine is not Postgres):
            with self.subTest(engine.__name__):
                made = self.database('create table item (a int); create table "Item" (a int);',
                                     f"of_{engine.__name__.lower()}")
                taker = self.database("", engine.__name__.lower(), engine)
                self.assert_job(2, "Step 1 .* would take the rows of public.[iI]tem and of "
                                r"public.[iI]tem: name it by \$SCHEMA\$, too.", copy(made, taker),
                                globals=EDITION_2)
        long = "ż" * 31 + "ab"
        taker = self.database(name="taker")
        self.write("rows.csv", f"{long}\n1\n")
        for name in ("t", long):
            self.assert_job(2, f".*The name '{long}' has more than the 63 bytes that the database "
                            "keeps.", section("Source", "TextFile", "Name=rows.csv") +
                            table(taker, name) + "CreateTable=1\n", globals=EDITION_2)

    def test_sizes_that_the_driver_does_not_know(self):
        made = self.database(
            "create table s (n int, a numeric); insert into s select n, n + 0.5 from "
            "generate_series(1, 300) n; insert into s values (301, 1.23456789);"
            "create table t (v varchar, w varchar(255), g numeric(10,-2), h numeric(3,5), "
            "b bit(300), c bit(5), d varbit);"
            "insert into t values (repeat('x', 300), 'w', 123456789012, 0.00123, "
            "repeat('10', 150)::bit(300), '10101', '1')", "made")
        made.connect += ";UseDeclareFetch=1;Fetch=100"
        for engine in ROUND:
            with self.subTest(engine.__name__):
                taker = self.database("", engine.__name__.lower(), engine)
                self.move(source("DatabaseQuery", made, "Query=select n, a + 0 as a from s") +
                          table(taker, "s") + "CreateTable=1\n", copy(made, taker, "Tables=t"),
                          globals=EDITION_2)
                for name in "st":
                    self.assertEqual(*(sorted([plain(value) for value in row] for row in one.rows(name))
                                       for one in (made, taker)))
        self.move(source("DatabaseSchema", made, "ObjectType=Table", "Name=t", "WithColumns=1") +
                  section("Target", "DDLScript", "Name=t.txt", "SqlDialect=PostgreSQL", "Table=t"),
                  globals=EDITION_2)
        self.assertEqual(self.files()["t"].split("(", 1)[1],
                         '\r\n "v" text,\r\n "w" varchar(255),\r\n "g" numeric(12,0),\r\n '
                         '"h" numeric(5,5),\r\n "b" varchar(300),\r\n "c" varchar(5),\r\n '
                         '"d" text);\r\n')


class MariaDbMoving(Moving, EngineTest):
    engine = MariaDb
    rows = rows_test.MariaDbRows
    lost = ("double", "time", "bit(1)")


if __name__ == "__main__":
    run_tests(__doc__)
