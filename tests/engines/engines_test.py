#!/usr/bin/env python3
"""Whole databases and their structure, read from real engines; and databases that are built anew
from the scripts of tables and rows. SQLite always takes part, PostgreSQL and MariaDB where
QUILLON_TEST_POSTGRES and QUILLON_TEST_MARIADB hold ODBC connect strings of servers."""
import re

from support import (EDITION_2, EngineTest, MariaDb, Postgres, Sqlite, quoted, run_tests, section,
                     source, text_files)

# Each is a table's name and, in its only row, a value. The lone quote comes last: in a job file
# what follows it, up to the next one, counts as quoted.
ODD_NAMES = ("plain", "MixedCase", "Order Details", " leading blank", "a.b.c", "sq[uare]",
             "[bracketed]", "ab]", "o'clock", "back\\slash", "100%_sure", "one_name", "semi;colon #1",
             "Größe żółć", "smile 😀", "a,b", 'qu"ote')
# Those that a list of tables cannot hold as they are.
LISTED_AS = {"a.b.c": '"a.b.c"', "sq[uare]": '"sq[uare]"', "[bracketed]": '"[bracketed]"',
             "ab]": "[a]b]",
             'qu"ote': '[qu"ote]', "semi;colon #1": '"semi;colon #1"', "a,b": "[a,b]"}

# Column names and types as a table script can carry them: no blanks in names, sizes in
# parentheses after "char" and "numeric" only.
WHOLE = """
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
        for path in self.path.glob("*.txt"):
            path.unlink()
        listed = [name for name in self.names if name.lower() not in ("plain", "one_name")]
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
        self.assert_unreadable(made, "gone", self.gone)

    def assert_unreadable(self, made, name, reason):
        """Tables a and b may be read, the third may not: it ends the list, and at its start the
        run."""
        said = f'ODBCDatabase::Query execution error: {reason}\r\nselect \\* from "{name}"'
        read = source("DatabaseContent", made, "Tables=LIST") + text_files()
        self.assert_job(2, said, read.replace("LIST", f"{name},b"))
        self.assertEqual(self.files(), {})
        self.assert_job(0, "HasMoreData: " + said, read.replace("LIST", f"a,{name},b"))
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


class WholeDatabase:
    """What holds for every engine whose scripts carry its types. `structure` tells each column of
    each table."""

    def test_whole_database_built_anew(self):
        made, copy = self.database(WHOLE), self.database(name="copy")
        self.move(source("DatabaseSchema", made, "ObjectType=AllTables", "WithColumns=1") +
                  section("Target", "DDLScript", "Name=all.sql", "Encoding=UTF8", "Table=$TABLE$",
                          'Delimiter=";"'),
                  source("DatabaseContent", made) +
                  section("Target", "SQLScript", "Name=all.sql", "BatchSize=2",
                          'Table=""$TABLE$""', 'Delimiter=";"'))
        copy.load(self.path / "all.sql")
        structure = made.query(self.structure)
        self.assertEqual(copy.query(self.structure), structure)
        names = {name for name, *_ in structure}
        self.assertEqual(len(names), WHOLE.count("create table"))
        for name in names:
            with self.subTest(name):
                self.assertEqual(sorted(copy.rows(name), key=repr),
                                 sorted(made.rows(name), key=repr))


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
        made = self.database("".join(map(named_table, ("a", "secret", "b"))))
        self.assert_unreadable(self.reader(made, "a", "b"), "secret", self.denied)


class SqliteContent(Content, WholeDatabase, EngineTest):
    engine = Sqlite
    gone = r"\[SQLite\]no such table: gone \(1\),HY000,1"
    described = ("create table a_b (id integer primary key, name varchar(40) not null, "
                 "price numeric(9,2) default 7, note text)")
    columns = ("id|INTEGER|9|10|1|NULL", "name|varchar(40)|40|10|0|NULL",
               "price|numeric(9,2)|2|10|1|7", "note|TEXT|0|10|1|NULL")
    view_columns = ("id|INTEGER|9|10|1|NULL", "name|varchar(40)|40|10|1|NULL")
    # The driver tells of no default as NULL, and texts without quotes, which SQLite allows.
    structure = """select t.name, c.name, lower(c.type), c."notnull",
        nullif(trim(c.dflt_value, ''''), 'NULL')
        from pragma_table_list t, pragma_table_info(t.name) c
        where t.name not like 'sqlite%' order by t.name, c.cid"""


class PostgresContent(ServerContent, WholeDatabase, EngineTest):
    engine = Postgres
    denied = "ERROR: permission denied for table secret;\nError while executing the query,42501,1"
    gone = 'ERROR: relation "gone" does not exist;\nError while executing the query,42P01,1'
    unlisted = ('qu"ote', "back\\slash")  # the driver escapes a pattern's backslash once more
    described = ("create table a_b (id integer primary key, name varchar(40) not null, "
                 "price numeric(9,2) default 7, note text default 'o''k')")
    columns = ("id|int4|10|0|0|", "name|varchar|40||0|", "price|numeric|9|2|1|7",
               "note|text|8190||1|'o''k'::text")
    view_columns = ("id|int4|10|0|1|", "name|varchar|40||1|")
    structure = """select table_name, column_name, data_type, character_maximum_length,
        numeric_precision, numeric_scale, datetime_precision, is_nullable, column_default
        from information_schema.columns where table_schema = 'public'
        order by table_name, ordinal_position"""

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
        self.assert_job(2, r"TextFile: Broken row structure \[Values: 2, Structure: 1 for ''\]",
                        source("DatabaseQuery", self.database(),
                               'Query="select 1 as a, 2 as b; select 3 as c"') +
                        section("Target", "TextFile", "Name=out.txt", "EndOfLine=LF"))
        self.assertEqual(self.files(), {"out": "1\t2\n"})

    def test_driver_that_refuses_its_catalogue(self):
        made = self.database("create table t (a int); create view v as select a from t")
        made.connect = made.connect.replace("Unicode", "ANSI")
        said = "(?s:.*),07006,[0-9]+"
        for settings, message in (
                (("AllTables",), "ODBCDatabase::Tables. Tables list error: " + said),
                (("AllViews",), "ODBCDatabase::Tables. Tables list error: " + said),
                (("Table", "Name=t"), "Could not retrieve list of columns. Schema='',Table='t'")):
            self.assert_job(2, message, source("DatabaseSchema", made, "ObjectType=" + settings[0],
                                               *settings[1:]) + text_files())


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

    def test_data_source_that_asks_for_a_password(self):
        made = self.database("create table t (a int); insert into t values (7);")
        made.add_user("quillon_guest", "identified by 'open sesame'")
        self.addCleanup(made.drop_user, "quillon_guest")
        made.run(f"grant select on t to {made.user('quillon_guest')}")
        words = re.findall("(?i)(?:driver|server|port|database)=[^;]*", made.connect)
        ini = self.write("odbc.ini", "\n".join(["[Shop]", *words, ""]))
        for keys, status, said in (
                ("Login=quillon_guest\nPassword=open sesame", 0, "a\r\n7\r\n"),
                ("User=quillon_guest\nPassword=open sesame", 0, "a\r\n7\r\n"),
                ("Login=quillon_guest\nUser=root\nPassword=close", 2, "for 'quillon_guest' failed"),
                ("Login=quillon_guest", 2, "Access denied")):
            step = (section("Source", "DatabaseQuery", "DSN=Shop", keys, "Query=select a from t") +
                    section("Target", "TextFile", "Name=STDOUT"))
            ended = self.run_job(f"{EDITION_2}Step 1\n{step}", environment={"ODBCINI": str(ini)})
            self.assertEqual(ended.status, status, ended)
            self.assertIn(said, (ended.output + ended.errors).decode())

    def test_lists_of_a_server_and_of_an_empty_database(self):
        made = self.database("create table only_here (x int)")
        listed = {}
        for name, connect in (("server", re.sub("(?i)database=[^;]*;", "", made.connect)),
                              ("empty", self.database(name="b").connect),
                              ("own", made.connect)):
            self.move(source("DatabaseSchema", connect, "ObjectType=AllTables") +
                      section("Target", "TextFile", f"Name={name}.txt", "EndOfLine=LF",
                              "Encoding=UTF8"))  # other tests may have tables of any name
            listed[name] = self.files()[name].splitlines()
        self.assertIn("only_here\t", listed["server"])
        self.assertEqual([listed["empty"], listed["own"]], [[], ["only_here\t"]])


if __name__ == "__main__":
    run_tests(__doc__)
