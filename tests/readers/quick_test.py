#!/usr/bin/env python3
"""Whether other programs read what the targets write: xmllint, jq, sqlite3, psql and Python's
parsers. Runs on Linux; usage: quick_test.py PROGRAM [unittest arguments]. psql is asked when
QUILLON_TEST_POSTGRES holds an ODBC connect string of a server."""
import contextlib
import json
import os
import re
import sqlite3
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ElementTree

from support import (COLUMNS, CREATE_TABLE, EMOJI_ROW, NAMES, ROWS, ReaderTest, TableReader,
                     is_sheet_number, page_rows, plain_line_ends, texts)

POSTGRES = os.environ.get("QUILLON_TEST_POSTGRES")
NEEDS_POSTGRES = unittest.skipUnless(POSTGRES, "QUILLON_TEST_POSTGRES names no server")


def run(*command, **options):
    """Runs a reader that must accept its input without a word of complaint."""
    done = subprocess.run(command, capture_output=True, timeout=120, **options)
    if done.returncode != 0 or done.stderr:
        raise AssertionError(f"{command[0]} ended with {done.returncode}: {done.stderr[:2000]!r}")
    return done.stdout


class Documents(ReaderTest):
    def test_xml_with_an_element_for_each_column(self):
        path = self.run_job("XMLFile", "out.xml", "FieldIsTag=1", "set=customers", "row=customer")
        run("xmllint", "--noout", path)
        root = ElementTree.parse(path).getroot()
        self.assertEqual((root.tag, {row.tag for row in root}), ("customers", {"customer"}))
        self.assertEqual([[(field.tag, field.text or "") for field in row] for row in root],
                         [list(zip(NAMES, row)) for row in self.expected("null")])

    def test_xml_with_the_column_in_an_attribute(self):
        path = self.run_job("XMLFile", "out.xml", "set=set", "row=row", "item=value", "name=column")
        run("xmllint", "--noout", path)
        root = ElementTree.parse(path).getroot()
        self.assertEqual({field.tag for row in root for field in row}, {"value"})
        self.assertEqual([[(field.attrib, field.text or "") for field in row] for row in root],
                         [[({"column": name}, text) for name, text in zip(NAMES, row)]
                          for row in self.expected("null")])

    def test_spreadsheet(self):
        path = self.run_job("ExcelFile", "out.xls")
        run("xmllint", "--noout", path)
        space = "{urn:schemas-microsoft-com:office:spreadsheet}"
        sheets = ElementTree.parse(path).getroot().findall(space + "Worksheet")
        rows = [[(data.get(space + "Type"), data.text or "")
                 for data in row.findall(f"{space}Cell/{space}Data")]
                for row in sheets[0].findall(f"{space}Table/{space}Row")]
        expected = [[("Number" if is_sheet_number(name, value) else "String", text)
                     for name, value, text in zip(NAMES, row, text_row)]
                    for row, text_row in zip(ROWS, self.expected("NULL"))]
        self.assertEqual(rows, [[("String", name) for name in NAMES]] + expected)

    def test_page(self):
        path = self.run_job("HtmlFile", "out.html", "Encoding=UTF8")
        page = path.read_text(encoding="utf-8-sig")  # reads CR LF as LF
        self.assertEqual(TableReader(page).rows, page_rows(ROWS))

    def expected(self, null):
        return plain_line_ends(texts(row, null) for row in ROWS)


class Json(ReaderTest):
    def test_python(self):
        path = self.write_json()
        self.assertEqual(json.loads(path.read_text(encoding="utf-8-sig")), self.expected(ROWS))
        self.assertEqual(json.loads(path.read_bytes()), self.expected(ROWS))

    def test_jq(self):
        path = self.write_json()
        for name, said in (("file", run("jq", "--compact-output", ".[]", path)),
                           ("standard input", run("jq", "--compact-output", ".[]",
                                                  input=path.read_bytes()))):
            with self.subTest(name):
                self.assertEqual([json.loads(line) for line in said.splitlines()],
                                 self.expected(ROWS))

    def test_emoji(self):
        self.fill(self.path / "data.db", [], "customer", [EMOJI_ROW])
        path = self.write_json()
        self.assertEqual(json.loads(run("jq", ".", path)), self.expected([*ROWS, EMOJI_ROW]))

    def write_json(self):
        return self.run_job("JSONFile", "out.json", "Encoding=UTF8", "Overwrite=1")

    def expected(self, rows):
        """Digits that do not begin with 0 come back as a number, also those of a text column."""
        def read(value):
            if value is None or value == "null":
                return None
            bare = re.fullmatch(r"[1-9]\d*(\.\d+)?", str(value))
            return json.loads(str(value)) if bare else str(value)
        return [dict(zip(NAMES, map(read, row))) for row in rows]


class Scripts(ReaderTest):
    def test_inserts_in_sqlite(self):
        for batch in (1, 3):
            with self.subTest(batch=batch):
                script = self.write_inserts(batch)
                self.assertEqual(self.sqlite_rows(self.table(CREATE_TABLE), script),
                                 plain_line_ends(ROWS))
                # As an argument it is not read by lines, and CR LF inside a value stays.
                database = self.table(CREATE_TABLE)
                run("sqlite3", database, script.read_bytes())
                self.assertEqual(self.sqlite_rows(database), [list(row) for row in ROWS])

    def test_table_and_inserts_in_sqlite(self):
        database = self.table(None)
        self.assertEqual(self.sqlite_rows(database, self.write_table(), self.write_inserts(3)),
                         plain_line_ends(ROWS))
        structure = 'select name, lower(type), "notnull", dflt_value from pragma_table_info(?)'
        with contextlib.closing(sqlite3.connect(database)) as made, contextlib.closing(
                sqlite3.connect(self.path / "data.db")) as source:
            self.assertEqual(made.execute(structure, ["customer"]).fetchall(),
                             source.execute(structure, ["customer"]).fetchall())

    @NEEDS_POSTGRES
    def test_inserts_in_postgres(self):
        for batch in (1, 3):
            with self.subTest(batch=batch), self.postgres_schema() as psql:
                psql(f"--command={CREATE_TABLE}")
                psql(f"--file={self.write_inserts(batch)}")
                self.assertEqual(self.postgres_rows(psql), [list(row) for row in ROWS])

    @NEEDS_POSTGRES
    def test_table_and_inserts_in_postgres(self):
        with self.postgres_schema() as psql:
            psql(f"--file={self.write_table()}")
            psql(f"--file={self.write_inserts(3)}")
            self.assertEqual(self.postgres_rows(psql), [list(row) for row in ROWS])
            psql("--command=insert into customer (id, name) values (9, 'x')")
            self.assertEqual(self.postgres_rows(psql)[-1][:5], [9, "x", "none", 7, None])
            structure = psql("--command=select column_name, data_type, character_maximum_length, "
                             "numeric_precision, numeric_scale, is_nullable "
                             "from information_schema.columns where table_name = 'customer' "
                             "and table_schema = current_schema order by ordinal_position")
            self.assertIn("phone|character varying|20|||YES\n", structure)
            self.assertIn("balance|numeric||12|2|YES\n", structure)
            self.assertIn("visits|integer||32|0|NO\n", structure)

    def test_emoji_in_sqlite(self):
        self.fill(self.path / "data.db", [], "customer", [EMOJI_ROW])
        rows = self.sqlite_rows(self.table(CREATE_TABLE), self.write_inserts(1))
        self.assertEqual(rows[-1], list(EMOJI_ROW))

    @NEEDS_POSTGRES
    def test_emoji_in_postgres(self):
        self.fill(self.path / "data.db", [], "customer", [EMOJI_ROW])
        with self.postgres_schema() as psql:
            psql(f"--command={CREATE_TABLE}")
            psql(f"--file={self.write_inserts(1)}")
            self.assertEqual(self.postgres_rows(psql)[-1], list(EMOJI_ROW))

    def write_inserts(self, batch):
        return self.run_job("SQLScript", "rows.sql", "Encoding=UTF8", "Overwrite=1",
                            "Table=customer", 'Delimiter=";"', "ColumnList=1", f"BatchSize={batch}")

    def write_table(self):
        described = [("customer", f'"{name}"', *others) for name, *others in COLUMNS]
        self.fill(self.path / "data.db", ["create table described (t, c, y, s, d, n, v)"],
                  "described", described)
        return self.run_job("DDLScript", "table.sql", "Encoding=UTF8", "Overwrite=1",
                            "Table=customer", 'Delimiter=";"',
                            query="select * from described order by rowid")

    def table(self, statement):
        """A new database, with a table when there is a statement for it."""
        database = self.path / "read.db"
        database.unlink(missing_ok=True)
        if statement:
            run("sqlite3", database, statement)
        return database

    def sqlite_rows(self, database, *scripts):
        """Runs the scripts as a user would, with "sqlite3 DATABASE < SCRIPT"."""
        for script in scripts:
            with script.open("rb") as opened:
                run("sqlite3", "-bail", database, stdin=opened)
        with contextlib.closing(sqlite3.connect(database)) as connection:
            return [list(row) for row in connection.execute("select * from customer order by id")]

    @contextlib.contextmanager
    def postgres_schema(self):
        """Yields psql in a schema of its own, so that tests can run beside each other."""
        schema = f"quillon_readers_{os.getpid()}"
        names = {"server": "host", "servername": "host", "port": "port", "database": "dbname",
                 "uid": "user", "pwd": "password"}
        parts = (part.partition("=") for part in POSTGRES.split(";"))
        connection = " ".join(f"{names[key.strip().lower()]}='{value.strip()}'"
                              for key, _, value in parts if key.strip().lower() in names)
        environment = os.environ | {"PGCLIENTENCODING": "UTF8", "PGOPTIONS":
                                    f"-c search_path={schema} -c client_min_messages=warning"}

        def psql(*arguments):
            return run("psql", "--no-psqlrc", "--quiet", "--tuples-only", "--no-align",
                       "--set=ON_ERROR_STOP=1", f"--dbname={connection}", *arguments,
                       env=environment).decode()
        psql(f"--command=create schema {schema}")
        try:
            yield psql
        finally:
            psql(f"--command=drop schema {schema} cascade")

    def postgres_rows(self, psql):
        read = psql("--command=select json_agg(c order by id) from customer c")
        return [list(row.values()) for row in json.loads(read)]


if __name__ == "__main__":
    ReaderTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
