#!/usr/bin/env python3
"""Whole databases and their structure, read from real engines: SQLite, and PostgreSQL and MariaDB
where QUILLON_TEST_POSTGRES and QUILLON_TEST_MARIADB hold ODBC connect strings of servers. Runs on
Linux; usage: engines_test.py PROGRAM [unittest arguments]."""
import os
import re
import sys
import unittest

from support import EngineTest, MariaDb, Postgres, Sqlite, section, source, text_files

# Each is a table's name and, in its only row, a value. The lone quote comes last: in a job file
# what follows it, up to the next one, counts as quoted.
ODD_NAMES = ("plain", "MixedCase", "Order Details", " leading blank", "a.b.c", "sq[uare]",
             "[bracketed]", "ab]", "o'clock", "back\\slash", "100%_sure", "one_name", "semi;colon #1",
             "Größe żółć", "smile 😀", "a,b", 'qu"ote')
# Those that a list of tables cannot hold as they are.
LISTED_AS = {"a.b.c": '"a.b.c"', "sq[uare]": '"sq[uare]"', "[bracketed]": '"[bracketed]"',
             "ab]": "[a]b]",
             'qu"ote': '[qu"ote]', "semi;colon #1": '"semi;colon #1"', "a,b": "[a,b]"}


def quoted(name):
    doubled = name.replace('"', '""')
    return f'"{doubled}"'


def named_table(name):
    value = name.replace("'", "''")
    return (f"create table {quoted(name)} (name varchar(40));\n"
            f"insert into {quoted(name)} values ('{value}');\n")


class Content:
    """What holds for every engine."""
    names = ODD_NAMES
    unlisted = ('qu"ote',)  # names that the catalogue or the script does not carry

    def test_odd_names(self):
        made = self.database("".join(map(named_table, self.names)))
        self.move(source("DatabaseContent", made) + text_files())
        self.assertEqual(self.files(), {name: f"name\n{name}\n" for name in self.names})

    def test_odd_names_in_a_list(self):
        made = self.database("".join(map(named_table, self.names)))
        listed = [name for name in self.names if name not in ("plain", "PLAIN", "one_name")]
        tables = ",".join(LISTED_AS.get(name, name) for name in listed)
        self.move(source("DatabaseContent", made, f"Tables={tables}") + text_files())
        self.assertEqual(self.files(), {name: f"name\n{name}\n" for name in listed})

    def test_shapes(self):
        columns = [f"c{number}" for number in range(300)]
        made = self.database(
            "create table empty (a int, b varchar(5)); create table one (a int);"
            "insert into one values (1); insert into one values (2);"
            f"create table wide ({' int,'.join(columns)} int);"
            f"insert into wide values ({','.join(map(str, range(300)))});"
            "create view seen as select a, 'x' as b from one;")
        wide = "\t".join(columns) + "\n" + "\t".join(map(str, range(300))) + "\n"
        tables = {"empty": "a\tb\n", "one": "a\n1\n2\n", "wide": wide}
        self.move(source("Database", made) + text_files())
        self.assertEqual(self.files(), tables)
        self.move(source("Database", made, "Tables=seen") + text_files())
        self.assertEqual(self.files(), tables | {"seen": "a\tb\n1\tx\n2\tx\n"})

    def test_table_that_is_gone(self):
        made = self.database("".join(map(named_table, ("a", "b"))))
        said = f'ODBCDatabase::Query execution error: {self.gone}\r\nselect \\* from "gone"'
        done = self.run_job(source("DatabaseContent", made, "Tables=a,gone,b") + text_files())
        self.assert_ends(done, 0, "HasMoreData: " + said)
        self.assertEqual(self.files(), {"a": "name\na\n"})
        done = self.run_job(source("DatabaseContent", made, "Tables=gone,b") + text_files())
        self.assert_ends(done, 2, said)
        self.assertEqual(self.files(), {"a": "name\na\n"})

    def test_lists_of_tables_and_views(self):
        made = self.database('create table a (x int); create table "B c" (x int);'
                             'create view "V w" as select x from a;')
        for kind, names in (("AllTables", ["a", "B c"]), ("AllViews", ["V w"])):
            self.move(source("DatabaseSchema", made, f"ObjectType={kind}") +
                      section("Target", "TextFile", f"Name={kind}.txt", "Header=1", "EndOfLine=LF"))
            lines = self.files()[kind].splitlines()
            self.assertEqual(lines[0], "Table\tSchema")
            self.assertEqual(sorted(lines[1:], key=str.lower),
                             [f"{name}\t{made.home_schema}" for name in names])

    def test_columns_of_a_table_and_a_view(self):
        made = self.database(self.described + "; create table axb (other int);"
                             'create view "V w" as select id, name from a_b')
        for kind, name, expected in (("Table", "a_b", self.columns),
                                     ("View", "V w", self.view_columns)):
            self.move(source("DatabaseSchema", made, f"ObjectType={kind}", f"Name={name}") +
                      section("Target", "TextFile", "Name=out.txt", "Overwrite=1", "Header=1",
                              "EndOfLine=LF", "Delimiter=|"))
            head, *lines = self.files()["out"].splitlines()
            self.assertEqual(head, "Table|Column|TypeName|Size|Digits|IsNullable|Default")
            self.assertEqual(lines, [f"{name}|{line}" for line in expected])

    def test_columns_of_all_tables(self):
        names = [name for name in self.names if name not in self.unlisted]
        made = self.database("".join(map(named_table, names)) +
                             "create table a_b (x int, y int); create table axb (z int);"
                             "create view seen as select x from a_b;")
        for kind in ("AllTables", "AllViews"):
            self.move(source("DatabaseSchema", made, f"ObjectType={kind}", "WithColumns=1") +
                      section("Target", "DDLScript", f"Name={kind}.txt", "Table=$TABLE$",
                              "Encoding=UTF8", 'Delimiter=";"'))
        schema = f'"{made.home_schema}".' if made.home_schema else ""
        found = {}
        for statement in self.files()["AllTables"].split(";\r\n")[:-1]:
            name, columns = statement.removeprefix(f"create table {schema}").split(" (\r\n ")
            found[name] = [line.split()[0] for line in columns.split("\r\n ")]
        self.assertEqual(found, {f'"{name}"': ["name"] for name in names} |
                         {'"a_b"': ["x", "y"], '"axb"': ["z"]})
        views = self.files()["AllViews"]
        self.assertTrue(views.startswith(f'create table {schema}"seen" (\r\n x '), views)


class ServerContent(Content):
    """What holds for every engine with schemas and users; a database is MariaDB's schema."""
    names = (*ODD_NAMES, "PLAIN")

    def test_schemas_with_a_table_of_the_same_name(self):
        made = self.database()
        schemas = self.two_schemas(made)
        for schema in schemas:
            made.run(f'create table "{schema}".t (a varchar(40));'
                     f"""insert into "{schema}".t values ('{schema}')""")
        tables = ",".join(f"[{schema}].t" for schema in schemas)
        self.move(source("DatabaseContent", made, f"Tables={tables}") + text_files())
        self.assertEqual(self.files(), {"t": f"a\n{schemas[0]}\na\n{schemas[1]}\n"})

    def test_table_without_the_right_to_read_it(self):
        made = self.database("".join(map(named_table, ("open", "secret", "later"))))
        user = f"quillon_{os.getpid()}"
        made.add_user(user)
        self.addCleanup(made.drop_user, user)
        for table in ("open", "later"):
            made.run(f"grant select on {table} to {made.user(user)}")
        said = f'ODBCDatabase::Query execution error: {self.denied}\r\nselect \\* from "secret"'
        reader = made.as_user(user)
        done = self.run_job(source("DatabaseContent", reader, "Tables=secret,open") + text_files())
        self.assert_ends(done, 2, said)
        self.assertEqual(self.files(), {})
        done = self.run_job(source("DatabaseContent", reader, "Tables=open,secret,later") +
                            text_files())
        self.assert_ends(done, 0, "HasMoreData: " + said)
        self.assertEqual(self.files(), {"open": "name\nopen\n"})


class SqliteContent(Content, EngineTest):
    engine = Sqlite
    gone = r"\[SQLite\]no such table: gone \(1\),HY000,1"
    described = ("create table a_b (id integer primary key, name varchar(40) not null, "
                 "price numeric(9,2) default 7, note text)")
    columns = ("id|INTEGER|9|10|1|NULL", "name|varchar(40)|40|10|0|NULL",
               "price|numeric(9,2)|2|10|1|7", "note|TEXT|0|10|1|NULL")
    view_columns = ("id|INTEGER|9|10|1|NULL", "name|varchar(40)|40|10|1|NULL")


class PostgresContent(ServerContent, EngineTest):
    engine = Postgres
    denied = "ERROR: permission denied for table secret;\nError while executing the query,42501,1"
    gone = 'ERROR: relation "gone" does not exist;\nError while executing the query,42P01,1'
    unlisted = ('qu"ote', "back\\slash")  # the driver escapes a pattern's backslash once more
    described = ("create table a_b (id integer primary key, name varchar(40) not null, "
                 "price numeric(9,2) default 7, note text default 'o''k')")
    columns = ("id|int4|10|0|0|", "name|varchar|40||0|", "price|numeric|9|2|1|7",
               "note|text|8190||1|'o''k'::text")
    view_columns = ("id|int4|10|0|1|", "name|varchar|40||1|")

    def two_schemas(self, made):
        made.run('create schema "Left.hand"')
        return "Left.hand", made.home_schema

    def test_columns_in_a_schema(self):
        made = self.database('create schema "Other.one"; create table t (a int);'
                             'create table "Other.one".t (b int);')
        self.move(source("DatabaseSchema", made, "ObjectType=Table", "Schema=Other.one", "Name=t") +
                  section("Target", "TextFile", "Name=out.txt", "EndOfLine=LF"))
        self.assertEqual(self.files(), {"out": "t\tb\tint4\t10\t0\t1\t\n"})

    def test_narrower_result_set(self):
        done = self.run_job(source("DatabaseQuery", self.database(),
                                   'Query="select 1 as a, 2 as b; select 3 as c"') +
                            section("Target", "TextFile", "Name=out.txt", "EndOfLine=LF"))
        self.assert_ends(done, 2, r"TextFile: Broken row structure "
                         r"\[Values: 2, Structure: 1 for ''\]")
        self.assertEqual(self.files(), {"out": "1\t2\n"})

    def test_driver_that_refuses_its_catalogue(self):
        made = self.database("create table t (a int); create view v as select a from t")
        made.connect = made.connect.replace("Unicode", "ANSI")
        said = "(?s:.*),07006,[0-9]+"
        for settings, message in (
                (("AllTables",), "ODBCDatabase::Tables. Tables list error: " + said),
                (("AllViews",), "ODBCDatabase::Tables. Tables list error: " + said),
                (("Table", "Name=t"), "Could not retrieve list of columns. Schema='',Table='t'")):
            done = self.run_job(source("DatabaseSchema", made, "ObjectType=" + settings[0],
                                       *settings[1:]) + text_files())
            self.assert_ends(done, 2, message)


class MariaDbContent(ServerContent, EngineTest):
    engine = MariaDb
    names = tuple(name for name in ServerContent.names if "😀" not in name)  # not allowed there
    denied = r"\[ma-.*\]SELECT command denied to user .* for table .*`secret`,42000,1142"
    gone = r"\[ma-.*\]Table '.*\.gone' doesn't exist,42S02,1146"
    described = ("create table a_b (id integer primary key, name varchar(40) not null, "
                 "price numeric(9,2) default 7, note text default 'o''k')")
    columns = ("id|INT|10|0|0|", "name|VARCHAR|40||0|", "price|DECIMAL|9|2|1|7.00",
               r"note|TEXT|65535||1|'o\'k'")
    view_columns = ("id|INT|10|0|0|", "name|VARCHAR|40||0|")
    unlisted = ('qu"ote', "PLAIN")  # the catalogue of columns does not look at letter case

    def two_schemas(self, made):
        return made.name, self.database(name="b").name

    def test_lists_of_a_server_and_of_an_empty_database(self):
        made = self.database("create table only_here (x int)")
        listed = {}
        for name, connect in (("server", re.sub("(?i)database=[^;]*;", "", made.connect)),
                              ("empty", self.database(name="b").connect),
                              ("own", made.connect)):
            self.move(source("DatabaseSchema", connect, "ObjectType=AllTables") +
                      section("Target", "TextFile", f"Name={name}.txt", "EndOfLine=LF"))
            listed[name] = self.files()[name].splitlines()
        self.assertIn("only_here\t", listed["server"])
        self.assertEqual([listed["empty"], listed["own"]], [[], ["only_here\t"]])


if __name__ == "__main__":
    EngineTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
