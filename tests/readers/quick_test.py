#!/usr/bin/env python3
"""Whether other programs read what the whole jobs expect, byte for byte, of the program: xmllint,
jq, sqlite3 and Python's parsers. Usage: quick_test.py [unittest arguments]."""
import contextlib
import csv
import json
import pathlib
import re
import sqlite3
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

TESTS = pathlib.Path(__file__).resolve().parent.parent
FOLDER = TESTS / "jobs" / "read-by-others"
FILES = [path for folder in (TESTS / "jobs", TESTS.parent / "examples")
         for path in folder.glob("*/expected/**/*")]
# What no reader takes, as the documents say: names that are no names in XML, or numbers in JSON; no
# names at all; characters beyond the basic plane; XML that was appended to; rows that broke off;
# files that were left for the next one.
REFUSED = {"target-errors/wide.json",
           "xml/odd.xml", "xml/items.xml", "xml/bare.xml", "encodings-edition-1/bare.xml",
           "appending-targets/old.xml",
           "json/names.json", "json/values.json", *(
               f"result-sets/{name}.{kind}" for name in ("empty", "first", "second", "same")
               for kind in ("json", "xml"))}


def run(*command, **options):
    """Runs a reader that must accept its input without a word of complaint."""
    done = subprocess.run(command, capture_output=True, timeout=120, **options)
    if done.returncode != 0 or done.stderr:
        raise AssertionError(f"{command[0]} ended with {done.returncode}: {done.stderr[:2000]!r}")
    return done.stdout


def table(script):
    """The names and the rows of the table that a script makes."""
    with contextlib.closing(sqlite3.connect(":memory:")) as database:
        database.executescript(script)
        made = database.execute("select * from customer order by id")
        return [column[0] for column in made.description], [list(row) for row in made]


NAMES, ROWS = table((FOLDER / "setup.sql").read_text("utf-8"))


def texts(null, rows=ROWS[:-1]):
    """The rows as markup holds them: emoji have no place there, and its readers see line feeds."""
    return [[null if value is None else str(value).replace("\r\n", "\n") for value in row]
            for row in rows]


class Readers(unittest.TestCase):
    def test_all_files_that_should_be_well_formed(self):
        readers = {".xml": lambda path: run("xmllint", "--noout", path),
                   ".json": lambda path: run("jq", "--exit-status", "length", path)}
        refused = set()
        for path in FILES:
            try:
                readers.get(path.suffix, str)(path)
            except AssertionError:
                refused.add(f"{path.parent.parent.name}/{path.name}")
        self.assertEqual(refused, REFUSED)

    def test_xml(self):
        for name, pairs in (
                ("tags.xml", lambda field: (field.tag, field.text or "")),
                ("items.xml", lambda field: (field.attrib["column"], field.text or ""))):
            with self.subTest(name):
                root = ElementTree.parse(FOLDER / "expected" / name).getroot()
                self.assertEqual([[pairs(field) for field in row] for row in root],
                                 [list(zip(NAMES, row)) for row in texts("null")])

    def test_spreadsheet(self):
        space = "{urn:schemas-microsoft-com:office:spreadsheet}"
        sheet = ElementTree.parse(FOLDER / "expected" / "sheet.xml").getroot()
        rows = [[(data.get(space + "Type"), data.text or "")
                 for data in row.iter(space + "Data")] for row in sheet.iter(space + "Row")]
        # Zero is never a number, and SQLite's driver says of no other column that it holds some.
        expected = [[("Number" if name in ("id", "visits") and text != "0" else "String", text)
                     for name, text in zip(NAMES, row)] for row in texts("NULL")]
        self.assertEqual(rows, [[("String", name) for name in NAMES]] + expected)

    def test_page(self):
        page = (FOLDER / "expected" / "page.html").read_bytes().replace(b"\r\n", b"\n")
        page = run("xmllint", "--html", "--xmlout", "-", input=page)
        rows = [[(cell.tag, "".join(cell.itertext())) for cell in row]
                for row in ElementTree.fromstring(page).iter("tr")]
        self.assertEqual(rows, [[("th", "\n" + name) for name in NAMES]] + [
            [("td", "\n" + text) for text in row] for row in texts("NULL")])

    def test_json(self):
        def read(value):
            """Digits that do not begin with 0 come back as a number, also those of a text."""
            if value is None or value == "null":
                return None
            bare = re.fullmatch(r"[1-9]\d*(\.\d+)?", str(value))
            return json.loads(str(value)) if bare else str(value)
        expected = [dict(zip(NAMES, map(read, row))) for row in ROWS]
        path = FOLDER / "expected" / "rows.json"
        self.assertEqual(json.loads(path.read_text("utf-8-sig")), expected)
        self.assertEqual(json.loads(run("jq", ".", path)), expected)

    def test_scripts(self):
        structure = 'select name, lower(type), "notnull", dflt_value from pragma_table_info(?)'
        for name in ("single.sql", "batches.sql"):
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                database = pathlib.Path(folder) / "data.db"
                for script in ("table.sql", name):  # as a user would; the shell reads by lines
                    with (FOLDER / "expected" / script).open("rb") as opened:
                        run("sqlite3", "-bail", database, stdin=opened)
                with contextlib.closing(sqlite3.connect(database)) as made:
                    self.assertEqual(
                        [list(row) for row in made.execute("select * from customer")],
                        [[value.replace("\r\n", "\n") if isinstance(value, str) else value
                          for value in row] for row in ROWS])
                    self.assertEqual(made.execute(structure, ["customer"]).fetchall()[2],
                                     ("phone", "varchar(20)", 0, "none"))

    def test_delimited_text(self):
        path = FOLDER / "expected" / "rows.csv"
        with path.open(encoding="utf-8-sig", newline="") as opened:
            rows = list(csv.reader(opened, delimiter=";"))
        count = len(rows[0])
        self.assertEqual(rows, [NAMES[:count], *(row[:count] for row in texts("NULL", ROWS))])

    def test_comma_separated_values(self):
        path = TESTS / "jobs" / "csv-round-trip" / "expected" / "again.csv"
        with path.open(encoding="utf-8", newline="") as opened:
            names, *rows = csv.reader(opened)
        imported = run("sqlite3", ":memory:", f".import --csv '{path}' t", ".mode json",
                       "select * from t")
        self.assertEqual([list(row.values()) for row in json.loads(imported)], rows)
        self.assertEqual(list(json.loads(imported)[0]), names)
        self.assertEqual(rows[2:4], [["3", " lead", "trail ", "\tt"],
                                     ["4", "CR\rLF\nCRLF\r\n", "é€", "\U0001F600\U0010FFFF"]])


if __name__ == "__main__":
    unittest.main()
