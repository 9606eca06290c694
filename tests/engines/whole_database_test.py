#!/usr/bin/env python3
"""A database of ten tables leaves as text, as insert scripts and as a table script, is built anew
from them, and must be the same, table by table. For SQLite, and for PostgreSQL where
QUILLON_TEST_POSTGRES holds an ODBC connect string of a server. Runs on Linux; usage:
whole_database_test.py PROGRAM [unittest arguments]."""
import os
import sys
import unittest

from support import EngineTest, Postgres, Sqlite, client, section, source

# Column names and types as a table script can carry them: no blanks in names, sizes in
# parentheses after "char" and "numeric" only.
TABLES = """
create table customer (id integer not null, name varchar(60) not null, city varchar(40));
create table "Order Details" (order_id integer not null, line integer not null,
    price numeric(9,2) not null, discount numeric(5,4));
create table "Größe.cm" (wert integer, größe numeric(6,1) not null);
create table "o'clock" (at timestamp not null, day date, until time);
create table calendar (day date not null, holiday varchar(30) default 'none',
    open integer default 7);
create table empty_one (id integer not null, note text);
create table single (word varchar(20));
create table measure (id integer not null, small real, large double precision);
create table unicode (id integer not null, story text, mark char(3));
create table "UPPER lower" (ID integer, flag boolean, total numeric(20,6));
"""
ROWS = """
insert into customer values (1, 'O''Brien & Sons', 'Łódź'), (2, 'The "Red" Lion', null),
    (3, 'semi;colon, comma', ''), (4, 'back\\slash', 'Zürich'), (5, '007', ' lead');
insert into "Order Details" values (1, 1, 12.5, null), (1, 2, 1234567.89, 0.125), (2, 1, 0, 0);
insert into "Größe.cm" values (1, 180.5), (null, 99);
insert into "o'clock" values ('2024-02-29 23:59:58', '2024-02-29', '07:30:00'),
    ('1999-12-31 00:00:00', null, null);
insert into calendar values ('2024-12-25', 'Christmas', 0), ('2024-12-27', 'none', null);
insert into single values ('one'), ('three'), ('two');
insert into measure values (1, 0.5, 3.14159265358979), (2, -1.25, 1e+300), (3, null, null);
insert into unicode values (1, 'emoji 😀 and 👩‍👩‍👧', 'ab'), (2, 'Zażółć gęślą jaźń 日本語', 'é'),
    (3, '', null), (4, null, 'xyz');
insert into "UPPER lower" values (1, true, 99999999999.125), (2, false, null), (3, null, -0.5);
"""
NAMES = ("customer", "Order Details", "Größe.cm", "o'clock", "calendar", "empty_one", "single",
         "measure", "unicode", "UPPER lower")


class WholeDatabase:
    """What holds for every engine. `structure` tells each column of each table, `load_text` puts a
    text file into a table."""

    def test_inserts(self):
        def load(copy, name, path):
            copy.load(path)
        self.assert_built_anew(load, "sql", "SQLScript", 'Table=""$TABLE$""', "BatchSize=2",
                               'Delimiter=";"')

    def test_text_files(self):
        self.assert_built_anew(self.load_text, "txt", "TextFile", "Header=1", "EndOfLine=LF")

    def assert_built_anew(self, load, extension, *settings):
        made = self.database(TABLES + ROWS)
        self.move(source("DatabaseSchema", made, "ObjectType=AllTables", "WithColumns=1") +
                  section("Target", "DDLScript", "Name=structure.ddl", "Encoding=UTF8",
                          "Table=$TABLE$", 'Delimiter=";"'),
                  source("DatabaseContent", made) +
                  section("Target", *settings, f"Name=$TABLE$.{extension}", "Encoding=UTF8",
                          "OneFilePerResultSet=1"))
        copy = self.database(name="copy")
        copy.load(self.path / "structure.ddl")
        for name in NAMES:
            load(copy, name, self.path / f"{name}.{extension}")
        self.assertEqual(self.structure(copy), self.structure(made))
        self.assertEqual({table for table, *_ in self.structure(copy)}, set(NAMES))
        for name in NAMES:
            with self.subTest(name):
                self.assertEqual(sorted(copy.rows(name), key=repr),
                                 sorted(made.rows(name), key=repr))


class SqliteDatabase(WholeDatabase, EngineTest):
    engine = Sqlite

    def structure(self, database):
        # The driver tells of no default as NULL, and texts without quotes, which SQLite allows.
        return database.query(
            """select t.name, c.name, lower(c.type), c."notnull",
            nullif(trim(c.dflt_value, ''''), 'NULL')
            from pragma_table_list t, pragma_table_info(t.name) c
            where t.name not like 'sqlite%' order by t.name, c.cid""")

    def load_text(self, copy, name, path):
        client("sqlite3", "-bail", "-cmd", copy.fast, copy.path, input=(
            '.mode ascii\n.separator "\\t" "\\n"\n'
            f'.import --skip 1 "{path}" "{name}"\n').encode())
        copy.run("".join(f"""update "{name}" set "{column}" = null where "{column}" = 'NULL';"""
                         for table, column, *_ in self.structure(copy) if table == name))


class PostgresDatabase(WholeDatabase, EngineTest):
    engine = Postgres

    def structure(self, database):
        return database.query(
            "select table_name, column_name, data_type, character_maximum_length, "
            "numeric_precision, numeric_scale, datetime_precision, is_nullable, column_default "
            "from information_schema.columns where table_schema = 'public' "
            "order by table_name, ordinal_position")

    def load_text(self, copy, name, path):
        file = str(path).replace("'", "''")
        copy.client(copy.name, rf"""\copy "{name}" from '{file}' with (format csv, """
                    r"""delimiter E'\t', quote E'\x01', null 'NULL', header)""")


if __name__ == "__main__":
    EngineTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
