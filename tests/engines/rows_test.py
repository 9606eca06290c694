#!/usr/bin/env python3
"""Rows of real engines: the types of each, through an insert script, a text file and straight into
a table; from each engine into each; rows that a table refuses. Types that do not come back are
missing here and listed in the documents. SQLite always takes part, PostgreSQL and MariaDB where
QUILLON_TEST_POSTGRES and QUILLON_TEST_MARIADB hold ODBC connect strings of servers."""
import csv
import re

from support import (EDITION_2, EngineTest, MariaDb, Postgres, Sqlite, run_tests, section, source,
                     table)

TEXTS = ("''", "' lead'", "'O''Brien ''''s \"name\"'", "'NULL'",
         r"'back\slash \n'", "'żółć 😀 👩‍👩‍👧 𝄞'", "'12'", "'%s {d} $T$ -- #'")
LINES = ("'a\nb\tc'", "'a\r\nb\rc'", "'one \" quote'", f"'{'0123456789abcdż;' * 65536}'")
TAKER = '"Über. alles"'
SALE = ("create table t (id int primary key, name varchar(60) not null, price numeric(9,2), "
        "day date, at timestamp null, note text);")
SALES = ("insert into t values (1, 'O''Brien', 12.5, '2024-02-29', '2024-02-29 23:59:58', null);"
         "insert into t values (2, 'Łódź', -0.05, null, null, '');"
         "insert into t values (3, '', 1234567, '1999-12-31', '1970-01-02 00:00:00', 'NULL')")


class Rows:
    """What holds for every engine as the one that rows go into. A type comes with the values of its
    column, as literals; those of `not_as_text` do not fit into lines."""
    before = ""
    bytes = ()  # types whose values arrive whole as parameters only

    def test_types(self):
        for way, step, names in (
                ("script", section("Target", "SQLScript", "Name=rows.sql", f'Table="{TAKER}"',
                                   "Encoding=UTF8", "ColumnList=1", 'Delimiter=";"',
                                   "BatchSize=3"), self.types + self.not_as_text),
                ("table", None, self.types + self.not_as_text),
                ("bound", None, self.types + self.not_as_text + self.bytes),
                # A source reads UTF-8 byte by byte. The mark of UTF-16 goes into the first name.
                ("text", section("Target", "TextFile", "Name=rows.txt", "Encoding=UTF16",
                                 "Header=1"), self.types)):
            made, taker = self.databases(way, names)
            read, into = source("DatabaseTable", made, "Table=t"), table(taker, f'"{TAKER}"')
            if way == "text":
                made.run("delete from t where id = 0")  # a text file does not tell NULL from texts
            self.move(read + (step or into), *(
                [section("Source", "TextFile", "Name=rows.txt") + into] if way == "text" else []),
                globals=EDITION_2 if way == "bound" else "")
            if way == "script":
                taker.load(self.path / "rows.sql")
            expected, arrived = zip(*made.rows("t")), zip(*taker.rows(TAKER.strip('"')))
            for kind, *pair in zip([("id",), *names], expected, arrived, strict=True):
                with self.subTest(way, type=kind[0]):
                    self.assertTrue(pair[0] == pair[1], f"{pair!r:.1000}")

    def databases(self, name, types):
        """Two with a table of these types: one with rows, the first of them all NULL, one empty."""
        columns = ", ".join(f'"c {number}" {kind} null' for number, (kind, *_) in enumerate(types))
        rows = [["null"] * len(types)]
        rows += [[values[min(row, len(values) - 1)] for _, *values in types]
                 for row in range(max(len(values) for _, *values in types))]
        literals = ",\n".join(f"({number}, {', '.join(row)})" for number, row in enumerate(rows))
        made = self.database(f"{self.before} create table t (id int, {columns}); "
                             f"insert into t values {literals}", name)
        return made, self.database(f"{self.before} create table {TAKER} (id int, {columns});",
                                   name + "_taker")

    def test_copy_from_each_engine(self):
        for engine in (each for each in (Sqlite, Postgres, MariaDb) if not each.missing):
            with self.subTest(engine.__name__):
                name = engine.__name__.lower()
                made = self.database(SALE + SALES, name, engine)
                taker = self.database(SALE, name + "_taker")
                self.move(source("DatabaseQuery", made, "Query=select * from t order by id") +
                          table(taker))
                self.assertEqual(taker.rows("t"), self.sales)

    def test_refused_row(self):
        made = self.database("create table t (id int, name text)", "rows", Sqlite)
        for number, (row, words) in enumerate(zip(
                ("2, 'again'", "3, null", "3, 'bad'", "3, 'longer'"), self.refusals)):
            with self.subTest(row):
                taker = self.database("create table t (id int primary key, name varchar(5) not "
                                      "null check (name <> 'bad'))", f"taker{number}")
                made.run("delete from t; insert into t values "
                         f"(1, 'one'), (2, 'two'), ({row}), (4, 'four')")
                self.assert_refused(words, made, taker)
                self.assertEqual([name for _, name in taker.rows("t")], ["one", "two"])

    def assert_refused(self, words, made, taker):
        self.assert_job(2, "ODBCDatabase::ExecNonQuery execution error: "
                        rf"(?s:.*){re.escape(words)}(?s:.*),[0-9A-Z]{{5}},\d+",
                        source("DatabaseTable", made, "Table=t") + table(taker))


    def test_bad_rows(self):
        """Of three batches the first and the last have a row that the table refuses."""
        rows = "\n".join(["id,name", *(f"{number},{name}" for number, name in enumerate(
            ("long name" if number in (3, 2200) else f"n{number}" for number in range(2300))))])
        self.write("rows.csv", rows)
        good = {str(number) for number in range(2300)} - {"3", "2200"}
        for case, (policy, status, message, arrived) in enumerate((
                ("OnBadRow=Skip", 0, "", good),
                ("OnBadRow=Reject\nRejectFile=bad.csv\nCommitRows=150", 0, "", good),
                ("OnBadRow=Reject\nRejectFile=bad.csv\nMaxRejects=1", 2,
                 ".* row 2201, line 2202: More than 1 rows were rejected; the last one: .*", set()),
                ("CommitRows=2000\nInsertRows=7", 2, ".* row 4, line 5: ODBCDatabase::Insert .*",
                 set()),
                ("OnBadRow=Skip\nInsertMode=Literal\nInsertRows=40", 0, "", good))):
            with self.subTest(policy):
                taker = self.database("create table t (id int, name varchar(5), "
                                      "check (name <> 'long name'))", f"bad{case}")
                self.assert_job(status, f"(?s:{message})",
                                section("Source", "TextFile", "Name=rows.csv") +
                                table(taker) + policy + "\n", globals=EDITION_2)
                self.assertEqual({str(number) for number, _ in taker.rows("t")}, arrived)
                if "Reject" in policy:
                    with open(self.path / "bad.csv", newline="", encoding="utf-8") as rejects:
                        records = [(line, row) for line, _, row in csv.reader(rejects)][1:]
                    self.assertEqual(records, [("5", "3,long name"), ("2202", "2200,long name")]
                                     [:1 if status else 2])


class ServerRows(Rows):
    """What holds for every engine with users."""

    def test_table_without_the_right_to_write_it(self):
        made = self.database("create table t (a int); insert into t values (1)")
        self.assert_refused(self.denied, made, self.reader(made, "t"))
        self.assertEqual(made.rows("t"), [("1",)])


class SqliteRows(Rows, EngineTest):
    types = (
        ("integer", "9223372036854775807", "-9223372036854775808", "0"),
        ("tinyint", "-3"), ("bigint", "9007199254740993"), ("boolean", "1", "0"),
        ("real", "0.1", "1e308", "-2.5e-300", "3.0"), ("double", "123456.789012345"),
        ("numeric(12,3)", "1.5", "99999999.125", "7"), ("decimal(9,2)", "-1.25", "7"),
        ("text", *TEXTS), ("varchar(20)", *TEXTS), ("char(5)", "'ab'"), ("nvarchar(9)", "'ż'"),
        ("clob", "'x'"), ("json", """'{"a": "b"}'"""), ("date", "'2024-02-29'"),
        ("time", "'23:59:59'"), ("datetime", "'2024-02-29 23:59:59'"),
        ("timestamp", "'2024-02-29 23:59:59.125'"),
    )
    not_as_text = (("text", *LINES),)
    bytes = (("blob", "x'00ff410042'", "x''"), ("varbinary(3)", "x'000102'"))
    sales = [(1, "O'Brien", 12.5, "2024-02-29", "2024-02-29 23:59:58", None),
             (2, "Łódź", -0.05, None, None, ""),
             (3, "", 1234567, "1999-12-31", "1970-01-02 00:00:00", "NULL")]
    refusals = ("UNIQUE constraint failed: t.id", "NOT NULL constraint failed: t.name",
                "CHECK constraint failed: name <> 'bad'")  # it takes texts of any length

    def test_bytes_and_texts_of_any_length(self):
        """The driver takes the length of bytes when they are bound, not when they are sent."""
        made = self.database(
            "create table t (id integer, b blob, c varbinary(90), x text, n int, d decimal(9,2)); "
            "insert into t (id, b) values (1, x'01'), (2, x'0203'), (3, x'040506'), (4, x'07'); "
            "with recursive n(i) as (select 5 union all select i + 1 from n where i < 124) "
            "insert into t select i, iif(i % 7, randomblob(i * 37 % 41), null), randomblob(i * 5 % 89), "
            "iif(i % 5, hex(randomblob(i * 31 % 23)), null), iif(i % 3, i * i * i, null), "
            "iif(i % 11, i * i * 0.25, null) from n;", "made")
        for number, rows in enumerate((0, 1, 7)):
            taker = self.database("create table t (id integer, b blob, c varbinary(90), x text, "
                                  "n int, d decimal(9,2));", f"taker{number}")
            self.move(source("DatabaseTable", made, "Table=t") + table(taker) +
                      f"InsertRows={rows}\n", globals=EDITION_2)
            self.assertEqual(taker.rows("t"), made.rows("t"))


class PostgresRows(ServerRows, EngineTest):
    engine = Postgres
    before = ("create type mood as enum ('sad', 'so so'); "
              "create domain positive as int check (value > 0);")
    types = (
        ("smallint", "-32768", "32767"), ("integer", "-2147483648", "0"),
        ("bigint", "-9223372036854775808", "9223372036854775807"),
        ("real", "3.4028235e38", "1.17549435e-38", "0.1"),
        ("double precision", "1.7976931348623157e308", "5e-324", "3.141592653589793"),
        ("numeric", "123456789012345678901234567890.123456789", "-0.000001"),
        ("numeric(12,3)", "1.5", "-999999999.999"), ("boolean", "true", "false"),
        ("varchar(40)", *TEXTS), ("text", *TEXTS), ("char(5)", "'ab'", "'é'"), ('"char"', "'a'"),
        ("name", "'name'"), ("date", "'0001-01-01'", "'2024-02-29'", "'9999-12-31'"),
        ("time", "'23:59:59.123456'", "'00:00'"), ("timetz", "'23:59:59.5+02'"),
        ("timestamp", "'2024-02-29 23:59:59.123456'", "'0001-01-01'"),
        ("timestamptz", "'2024-02-29 23:59:59.123456+02'", "'2024-07-01 00:00+05:30'"),
        ("interval", "'1 year 2 mons 3 days 04:05:06.789'", "'-1 day'"),
        ("uuid", "'a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11'"), ("json", """'{"a": [1,  null]}'"""),
        ("jsonb", """'{"a": "😀"}'"""), ("xml", """'<a b="c">&amp;</a>'"""),
        ("inet", "'192.168.0.1/24'", "'::1'"), ("cidr", "'10.0.0.0/8'"),
        ("macaddr", "'08:00:2b:01:02:03'"), ("bit(3)", "B'101'"),
        ("bit varying(8)", "B'1010'", "B''"), ("integer[]", "'{1,2,NULL}'", "'{{1,2},{3,4}}'"),
        ("text[]", """array['a', 'b c', '"q"', 'NULL']"""), ("point", "'(1,2.5)'"),
        ("tsvector", "'a:1 b:2'"), ("int4range", "'[1,5)'"), ("oid", "4294967295"),
        ("mood", "'sad'", "'so so'"), ("positive", "5"),
    )
    not_as_text = (("text", *LINES),)
    bytes = (("bytea", r"'\x00ff410042'", "''"),
             ("real", "1.5e10"), ("money", "1.5"),
             ("double precision", "'NaN'", "'-Infinity'"))
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
    types = (
        ("tinyint", "-128", "127"), ("boolean", "true"), ("smallint", "-32768"),
        ("mediumint", "8388607"), ("int", "-2147483648"), ("int unsigned", "4294967295"),
        ("bigint", "-9223372036854775808"), ("bigint unsigned", "18446744073709551615"),
        ("int(5) zerofill", "42"), ("decimal(12,3)", "-999999999.999", "1.5"),
        ("decimal(65,30)", "12345678901234567890123456789012345.123456789012345678901234567890"),
        ("float", "0.1", "1.5e30"), ("double", "1.7976931348623157e308", "5e-324", "0.1"),
        ("varchar(40)", *TEXTS), ("text", *TEXTS), ("mediumtext", *TEXTS), ("longtext", *TEXTS),
        ("char(5)", "'ab'", "'é'"), ("varchar(9) character set latin1", "'é'"),
        ("text collate utf8mb4_bin", "'é'"), ("date", "'2024-02-29'", "'1000-01-01'"),
        ("time", "'23:59:59'", "'-838:59:59'"), ("time(6)", "'23:59:59.123456'"),
        ("datetime", "'2024-02-29 23:59:59'"), ("datetime(6)", "'2024-02-29 23:59:59.123456'"),
        ("timestamp", "'2024-02-29 23:59:59'"), ("timestamp(3)", "'2024-02-29 23:59:59.125'"),
        ("year", "2024"), ("enum('a','b c')", "'b c'"), ("set('x','y','z')", "'x,z'", "''"),
        ("json", """'{"a": "b"}'"""), ("inet6", "'::1'"),
        ("uuid", "'a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11'"),
    )
    not_as_text = (("longtext", *LINES),)
    bytes = (("blob", "x'00ff410042'", "''"), ("varbinary(3)", "x'000102'"),
             ("binary(2)", "x'0041'"), ("bit(1)", "1", "0"), ("bit(12)", "2748"))
    sales = PostgresRows.sales
    refusals = ("Duplicate entry '2' for key 'PRIMARY'", "Column 'name' cannot be null",
                "CONSTRAINT `t.name` failed", "Data too long for column 'name'")
    denied = "INSERT command denied to user"

    def test_values_that_a_lax_server_would_change(self):
        self.write("rows.csv", "id,n,s\n0,1,abc\n1,300,abc\n2,1,abcdef\n3,2,\\\n")
        for mode in ("", "NO_BACKSLASH_ESCAPES"):
            for way in ("Bound", "Literal"):
                with self.subTest(mode=mode, way=way):
                    taker = self.database("create table t (id int primary key auto_increment, "
                                          "n tinyint, s varchar(3));", f"{mode}{way}".lower())
                    taker.connect = re.sub("(?i)InitStmt={[^}]*}", f"InitStmt={{set sql_mode='{mode}'}}",
                                           taker.connect)
                    self.move(section("Source", "TextFile", "Name=rows.csv") + table(taker) +
                              f"OnBadRow=Skip\nInsertMode={way}\n", globals=EDITION_2)
                    self.assertEqual(taker.rows("t"), [("0", "1", "abc"), ("3", "2", "\\")])

    def test_tables_without_transactions(self):
        """Rows of a refused statement would stay and come again."""
        self.write("rows.csv", "id,s\n1,abc\n2,abcdef\n3,abc\n")
        for engine in ("MyISAM", "Aria"):
            for one_by_one in (False, True):
                with self.subTest(engine, one_by_one=one_by_one):
                    taker = self.database(f"create table t (id int, s varchar(3)) engine={engine};",
                                          f"{engine}{one_by_one}".lower())
                    step = section("Source", "TextFile", "Name=rows.csv") + table(taker)
                    self.assert_job(*(0, "") if one_by_one else
                                    (2, ".*Table `t` has no transactions: set CommitRows=1."),
                                    step + f"OnBadRow=Skip\nCommitRows={one_by_one:d}\n",
                                    globals=EDITION_2)
                    self.assertEqual(taker.rows("t"), [("1", "abc"), ("3", "abc")] * one_by_one)


if __name__ == "__main__":
    run_tests(__doc__)
