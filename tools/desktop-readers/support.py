"""The data that is written and read, the running of jobs and the reading of HTML tables."""
import html.parser
import os
import pathlib
import sqlite3
import subprocess
import tempfile
import unittest

# Name, type, size, digits, nullable and default value of each column.
COLUMNS = (
    ("id", "integer", None, None, "0", None),
    ("name", "varchar", "60", None, "0", None),
    ("phone", "varchar", "20", None, "1", "'none'"),
    ("visits", "integer", None, None, "0", "7"),
    ("balance", "numeric", "12", "2", "1", None),
    ("Größe", "float", None, None, "1", None),
    ("city", "varchar", "40", None, "1", None),
    ("note", "varchar", "200", None, "1", None),
    ("story", "varchar", "8000", None, "1", None),
)
NAMES = [column[0] for column in COLUMNS]
# Seven rows: batches of three end with a short one.
ROWS = [
    (1, "O'Brien & Sons", "007", 3, 12.5, 1.75, "Łódź", "two\r\nlines", "short"),
    (2, 'The "Red" Lion', "5550100", 0, 0, 0.5, "Zürich", "three\n\nlines", None),
    (3, "<b>Bold</b> & Co.", None, -14, -7, -2.5, "São Paulo", None, ""),
    (4, "''; drop table x; --", "", 1200, 1234567.89, 0.0, "Århus", "", "null"),
    (5, "50% off, $NAME$ [a] 'b'", "+48 22", 1, None, None, None, "a\ttab", "NULL"),
    (6, "Jones; Smith: #1", "0.5", 2, 0.01, 100.0, "Gdańsk",
     "&amp; and &lt; as they are", "Zażółć gęślą jaźń. " * 263 + "End"),
    (7, "-", "12a", 1000000, 1200, 3.25, "Cañon / Île", r'"C:\new" {1} \o/', "]]> <!-- x --> ?>"),
]


def texts(row, null):
    """The row's values as the driver spells them, with the format's word for NULL."""
    return [null if value is None else str(value) for value in row]


def is_sheet_number(name, value):
    """Whether a spreadsheet cell holds a number: zero never does, and SQLite's driver says of no
    other column that it holds numbers of the kinds that the format takes."""
    return name in ("id", "visits") and value != 0


def plain_line_ends(rows):
    """Markup does not keep carriage returns: its readers see line feeds."""
    return [[value.replace("\r\n", "\n") if isinstance(value, str) else value for value in row]
            for row in rows]


def column_line(name, kind, size, digits, nullable, default):
    line = f'"{name}" {kind}'
    if size:
        line += f"({size},{digits})" if digits else f"({size})"
    if default:
        line += f" default {default}"
    return line + (" null" if nullable == "1" else " not null")


CREATE_TABLE = f"create table customer ({', '.join(column_line(*each) for each in COLUMNS)})"


class ReaderTest(unittest.TestCase):
    """A scratch folder with a database of ordinary data, and jobs that read it."""
    program = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = pathlib.Path(folder.name)
        self.fill(self.path / "data.db", [CREATE_TABLE], "customer", ROWS)

    def fill(self, database, statements, table, rows):
        connection = sqlite3.connect(database)
        for statement in statements:
            connection.execute(statement)
        places = ",".join("?" * len(rows[0]))
        connection.executemany(f"insert into {table} values ({places})", rows)
        connection.commit()
        connection.close()

    def run_job(self, kind, name, *settings, query="select * from customer order by id"):
        """Writes the query's rows to a target of this kind; returns the file's path."""
        (self.path / "query.sql").write_text(query, encoding="utf-8")
        lines = ["Step 1", "Source", "Type=DatabaseQuery",
                 'ConnectString="Driver=SQLite3;Database=data.db;StepAPI=1"', "QueryFile=query.sql",
                 "Target", f"Type={kind}", f"Name={name}", *settings]
        (self.path / "job.qpr").write_text("\n".join(lines) + "\n", encoding="ascii")
        done = subprocess.run([self.program, "-config=job.qpr", "-silent"], cwd=self.path,
                              capture_output=True, timeout=120,
                              env=os.environ | {"LC_ALL": "C.UTF-8"})
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))
        return self.path / name


class TableReader(html.parser.HTMLParser):
    """The cells of the tables of a page, as rows of pairs: the tag and the text inside it."""

    def __init__(self, page):
        super().__init__()
        self.rows = []
        self._inside = False
        self.feed(page)
        self.close()

    def handle_starttag(self, tag, attrs):
        if tag == "tr":
            self.rows.append([])
        elif tag in ("td", "th"):
            self.rows[-1].append((tag, ""))
            self._inside = True
        elif tag == "br":
            self.handle_data("\n")

    def handle_endtag(self, tag):
        if tag in ("td", "th"):
            self._inside = False

    def handle_data(self, data):
        if self._inside:
            tag, text = self.rows[-1][-1]
            self.rows[-1][-1] = (tag, text + data)


def page_rows(rows):
    """What TableReader finds in a page with these rows: each text follows a line end."""
    def cells(tag, values):
        return [(tag, "\n" + value) for value in values]
    return [cells("th", NAMES)] + [cells("td", row) for row in plain_line_ends(
        texts(row, "NULL") for row in rows)]
