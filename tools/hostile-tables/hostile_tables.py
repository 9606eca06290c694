#!/usr/bin/env python3
"""Writes random tables of hostile names and values in every strict form and has other programs read
them back. Run by hand on Linux; usage: hostile_tables.py PROGRAM [--tables N] [--seed N] [--heavy N]
[--keep FOLDER] [FORMAT...]. --heavy: so many tables also go through LibreOffice, Chromium and unrtf."""
import argparse
import csv
import html.parser
import itertools
import json
import math
import os
import pathlib
import random
import re
import shutil
import sqlite3
import subprocess
import tempfile
import xml.etree.ElementTree as ElementTree

SHEET = "{urn:schemas-microsoft-com:office:spreadsheet}"
PIECES = ["a", "Zürich", " ", "<b>", "</td>", "&", "&amp;", "]]>", "<!--", '"', "'", "\\", "{", "}",
          "\\par", "\n", "\r\n", "\r", "\t", "😀", "𝔘", "\x01", "\x1b", "\x7f", "\x80", "\x9f", "\u2028",
          "\ufffe", "\uffff", "\ufeff", "$NAME$", "%s", "_x0041_", "_x01F600_", ":", "1", "é", "Ж",
          "漢", "null", "nil", "true", "0", ",", ";", "=", "/", "​", "\u0300", "\u0f0c", "\u00b7"]
TYPES = {
    "integer": ["0", "7", "-3", "9007199254740993", "x"],
    "decimal(12,2)": ["0", "0.5", ".5", "-.25", "1e5", "3.0", "12345678901234567890", "007", "NaN", ""],
    "real": ["0.1", "-2.5", "1e300", "x"],
    "date": ["2012-05-12", "1900-02-28", "1899-01-01", "2023-02-30", "9999-12-31", "x"],
    "timestamp": ["2005-08-16 23:42:55", "2005-08-16 23:42:55.5", "2005-08-16T01:02:03.12345", "x"],
    "boolean": ["0", "1", "7"],
}
NUMBERS = ("integer", "decimal(12,2)", "real")


def run(*command, **options):
    done = subprocess.run([str(each) for each in command], capture_output=True, timeout=600, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command[0]}: {done.returncode} {done.stdout[-500:]!r} {done.stderr[-500:]!r}")
    return done.stdout


class Table:
    """Names, types and rows; what the source delivers is what SQLite makes of them as texts."""

    def __init__(self, rng, number):
        def text(longest, pieces=PIECES):
            return "".join(rng.choice(pieces) for _ in range(rng.randrange(longest)))
        # SQLite's driver does not tell names beyond the basic plane as they are.
        named = [piece for piece in PIECES if max(piece) < "\U00010000"]
        columns = 1000 if number % 97 == 5 else rng.randrange(1, 9)
        self.types = [rng.choice(["text", "text", *TYPES]) for _ in range(columns)]
        self.names = [rng.choice(["", "a"]) if rng.random() < 0.2 else text(6, named) + str(i)
                      for i in range(columns)]
        self.rows = [[None if rng.random() < 0.1 else self.value(rng, kind, text) for kind in self.types]
                     for _ in range(rng.choice([0, 1, 3, 10 if columns < 100 else 2]))]
        if self.rows and number % 53 == 7:
            self.types[0], self.rows[0][0] = "text", "é<&\\" * 250000
        self.number = number

    def formats(self, wanted):
        """A cell of a spreadsheet has no room for the longest values."""
        longest = max((len(str(value)) for row in self.rows for value in row), default=0)
        return [kind for kind in wanted if kind != "xls" or longest <= 32767]

    @staticmethod
    def value(rng, kind, text):
        return text(8) if kind == "text" else rng.choice(TYPES[kind])

    def fill(self, database):
        # Values stay the texts that they are: the columns have types, but their values none.
        declared = ", ".join(f'c{i} {kind}' for i, kind in enumerate(self.types))
        database.execute(f"create table t{self.number} ({declared})")
        places = ",".join("?" * len(self.types))
        database.executemany(f"insert into t{self.number} values ({places})", self.rows)
        stored = ", ".join(f"c{i}" for i in range(len(self.types)))
        found = database.execute(f"select {stored} from t{self.number} order by rowid").fetchall()
        self.rows = [[None if value is None else value for value in row] for row in found]

    def query(self):
        names = (name.replace('"', '""') for name in self.names)
        columns = ", ".join(f'c{i} as "{name}"' for i, name in enumerate(names))
        return f"select {columns} from t{self.number} order by rowid"


def same_number(text, value):
    try:
        return math.isclose(float(text), float(value), rel_tol=1e-14)  # the driver's 15 digits
    except (TypeError, ValueError):
        return False


def check(condition, what, *found):
    if not condition:
        raise AssertionError(f"{what}: {found!r}"[:1500])


def check_cells(table, names, rows, fit, what):
    """names, rows: what a reader found. fit: what the format makes of a text."""
    check(names is None or names == [fit(name) for name in table.names], what + " names",
          names, table.names)
    check(len(rows) == len(table.rows), what + " rows", len(rows), len(table.rows))
    for found, wanted in zip(rows, table.rows):
        check(len(found) == len(wanted), what + " cells", len(found), len(wanted))
        for kind, text, value in zip(table.types, found, wanted):
            if value is None or text is None:
                check(text is None and value is None, what, kind, text, value)
            elif isinstance(value, str):
                check(text == fit(value) or kind in NUMBERS and same_number(text, value), what,
                      kind, text, value)
            else:
                check(same_number(text, value), what, kind, text, value)


def no_controls(text):
    return re.sub("[\x00-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]", "\ufffd", text)


def unlike(names):
    taken, made, used = set(names), [], set()
    for name in names:
        number = 2
        new = name
        if name in used:
            while (new := f"{name}_{number}") in taken:
                number += 1
        taken.add(new)
        used.add(name)
        made.append(new)
    return made


def refuse(constant):
    raise AssertionError(constant)


def check_json(table, path, lines):
    text = path.read_bytes().decode("utf-8")
    read = lambda data: json.loads(data, object_pairs_hook=list, parse_constant=refuse, parse_int=str,
                                   parse_float=str)
    objects = [read(line) for line in text.split("\n")[:-1]] if lines else read(text)
    names = unlike(table.names)
    cells = lambda found: [[None if value is None else str(int(value)) if isinstance(value, bool)
                            else value for _, value in each] for each in found]
    for each in objects:
        check([name for name, _ in each] == names, "json names", each, names)
    check_cells(table, None, cells(objects), str, "json")
    said = run("jq", "-c", "." if lines else ".[]", path).decode("utf-8")
    check_cells(table, None, cells([read(line) for line in said.split("\n")[:-1]]), str, "jq")


def unescape(name):
    return re.sub("_x([0-9A-F]{6}|[0-9A-F]{4})_", lambda m: chr(int(m[1], 16)), name)


def check_xml(table, path, tags):
    for how, data in (("expat", path.read_bytes()), ("libxml2", run("xmllint", "--huge", "--c14n", path)),
                      ("old names", run("xmllint", "--huge", "--oldxml10", "--c14n", path))):
        root = ElementTree.fromstring(data)
        rows = [[None if field.get("nil") == "true" else field.text or "" for field in row]
                for row in root]
        check_cells(table, None, rows, no_controls, how)
        for row in root:
            found = [unescape(field.tag) if tags else field.get("name") for field in row]
            fit = (lambda name: name or "_") if tags else no_controls
            check(found == [fit(name) for name in table.names], how, found, table.names)


def sheet_cell(cell):
    data = cell.find(SHEET + "Data")
    if data is None:
        return None
    text = data.text or ""
    if data.get(SHEET + "Type") == "DateTime":
        text = text.replace("T", " ").removesuffix(".000").removesuffix(" 00:00:00")
    return re.sub(r"(\.\d+?)0+$", r"\1", text) if data.get(SHEET + "Type") == "DateTime" else text


def check_sheet(table, path):
    run("xmllint", "--huge", "--noout", path)
    sheets = list(ElementTree.parse(path).getroot().iter(SHEET + "Worksheet"))
    check(len(sheets) == 1, "one sheet", len(sheets))
    rows = [[sheet_cell(cell) for cell in row] for row in sheets[0].iter(SHEET + "Row")]
    check_cells(table, rows[0], rows[1:], no_controls, "sheet")


class Cells(html.parser.HTMLParser):
    """The rows of a page."""

    def __init__(self, page):
        super().__init__()
        self.rows, self.inside, self.null = [], False, False
        self.feed(page)
        self.close()

    def handle_starttag(self, tag, attrs):
        if tag == "tr":
            self.rows.append([])
        elif tag in ("td", "th"):
            self.rows[-1].append(None if ("class", "null") in attrs else "")
            self.inside = True

    def handle_endtag(self, tag):
        self.inside = self.inside and tag not in ("td", "th")

    def handle_data(self, data):
        if self.inside:
            self.rows[-1][-1] = (self.rows[-1][-1] or "") + data


def check_page(table, path):
    rows = Cells(path.read_bytes().decode("utf-8")).rows
    check_cells(table, rows[0], rows[1:], str, "page")


def check_rtf(table, path):
    data = path.read_bytes()
    check(max(data) < 0x80, "rtf is ASCII")
    depth = 0
    for mark in re.findall(rb"\\.|[{}]", data, re.S):
        depth += {b"{": 1, b"}": -1}.get(mark, 0)
        check(depth > 0 or data.endswith(b"}\n"), "rtf braces")
    check(depth == 0, "rtf braces", depth)
    cells = [re.sub(rb"^.*\\intbl ", b"", cell, flags=re.S) for cell in data.split(b"\\cell\n")[:-1]]
    def read(cell):
        if cell == b"{\\i NULL}":
            return None
        def one(match):
            word = match[0]
            if word.startswith(b"\\u"):
                return (int(word[2:-4]) & 0xFFFF).to_bytes(2, "little")
            known = {b"\\tab ": "\t", b"\\line ": "\n", b"\\\\": "\\", b"\\{": "{", b"\\}": "}"}
            text = known.get(word) or (chr(int(word[2:], 16)) if word[:2] == b"\\'" else word.decode())
            return text.encode("utf-16-le")
        return re.sub(rb"\\u-?\d+\\'3f|\\'..|\\[a-z]+ |\\.|[^\\]", one, cell, flags=re.S).decode("utf-16-le")
    width = len(table.names)
    found = [read(cell) for cell in cells]
    rows = [found[i:i + width] for i in range(0, len(found), width)]
    check_cells(table, rows[0], rows[1:], lambda text: re.sub("\r\n?", "\n", text), "rtf")


FORMATS = {
    "json": ("JSONFile", [], lambda table, path: check_json(table, path, False)),
    "jsonl": ("JSONFile", ["Form=Lines"], lambda table, path: check_json(table, path, True)),
    "xml": ("XMLFile", [], lambda table, path: check_xml(table, path, False)),
    "tags.xml": ("XMLFile", ["FieldIsTag=1"], lambda table, path: check_xml(table, path, True)),
    "xls": ("ExcelFile", [], check_sheet),
    "html": ("HtmlFile", [], check_page),
    "rtf": ("RTFFile", [], check_rtf),
}


def write_all(options, folder, tables):
    """Has the program write every table in every format, one step each."""
    lines = ["Globals", "Edition=2", 'ConnectString="Driver=SQLite3;Database=data.db;StepAPI=1"']
    for table in tables:
        (folder / f"{table.number}.sql").write_text(table.query(), "utf-8", newline="")
        for kind in table.formats(options.formats):
            target, settings, _ = FORMATS[kind]
            replace = [] if target in ("JSONFile", "RTFFile") else ["Unmappable=Replace"]
            lines += [f"Step {table.number} {kind}", "Source", "Type=DatabaseQuery",
                      f"QueryFile={table.number}.sql", "Target", f"Type={target}",
                      f"Name={table.number}.{kind}", *settings, *replace]
    (folder / "job.qpr").write_text("\n".join(lines) + "\n", "utf-8")
    run(options.program, "-config=job.qpr", cwd=folder, env=os.environ | {"LC_ALL": "C.UTF-8"})


def words(text):
    """Letters and digits that office programs keep whatever they do to blanks and controls."""
    return re.sub(r"[^A-Za-z0-9éäüßЖ漢😀<>&]", "", text or "")


def office(folder, paths, kind):
    run("soffice", "--headless", f"-env:UserInstallation={(folder / 'office').as_uri()}", "--convert-to",
        kind, "--outdir", folder / "made", *paths)
    return [folder / "made" / f"{path.stem}.{kind.partition(':')[0]}" for path in paths]


def check_heavy(options, folder, tables):
    some = [table for table in tables
            if len(table.names) < 100 and "xls" in table.formats(["xls"])][:options.heavy]
    paths = lambda kind: [folder / f"{table.number}.{kind}" for table in some]
    if "xls" in options.formats and some:
        made = office(folder, paths("xls"), "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,false")
        for table, path in zip(some, made):
            with path.open(encoding="utf-8", newline="") as opened:
                rows = list(csv.reader(opened))
            for found, wanted in zip(rows, [table.names, *table.rows]):
                for text, value in zip(found, wanted):
                    fits = words(text) == words(str("" if value is None else value))
                    check(fits or same_number(text, value) or text in ("TRUE", "FALSE")
                          or re.match(r"\d{4}-", text), "calc", table.number, text, value)
            check(len(rows) == len(table.rows) + 1, "calc rows", table.number, len(rows))
    if "html" in options.formats:
        for table, path in zip(some, paths("html")):
            page = run("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run",
                       "--disable-background-networking", f"--user-data-dir={folder / 'browser'}",
                       "--dump-dom", path.as_uri()).decode("utf-8")
            rows = Cells(page).rows
            check_cells(table, rows[0], rows[1:], lambda text: re.sub("[\ufffe\uffff]", lambda m: m[0], text),
                        f"chromium {table.number}")
    if "rtf" in options.formats and some:
        for table, path in zip(some, office(folder, paths("rtf"), "html")):
            rows = Cells(path.read_text("utf-8")).rows
            wanted = [["NULL" if value is None else str(value) for value in row]
                      for row in [table.names, *table.rows]]
            check(len(rows) == len(wanted), "writer rows", table.number, len(rows), len(wanted))
            for cell, value in ((cell, value) for found, row in zip(rows, wanted)
                                for cell, value in itertools.zip_longest(found, row)):
                # It makes something of control characters, whatever way they are written.
                check(words(cell) == words(value) or no_controls(value) != value
                      or same_number(cell, value), "writer", table.number, cell, value)
        for table, path in zip(some, paths("rtf")):
            said = words(html_text(run("unrtf", "--html", path).decode("utf-8", "replace")))
            for value in (value for row in table.rows for value in row if isinstance(value, str)):
                # It knows no characters beyond the basic plane.
                check(words(re.sub("[^\t\n -\ud7ff]", "", value)) in said, "unrtf", table.number, value, said)


def html_text(page):
    import html as entities
    return entities.unescape(re.sub("<[^>]*>", "", page))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("formats", nargs="*", help=", ".join(FORMATS))
    parser.add_argument("--tables", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--heavy", type=int, default=0)
    parser.add_argument("--keep", type=pathlib.Path)
    options = parser.parse_args()
    options.program = options.program.resolve()
    options.formats = options.formats or list(FORMATS)
    with tempfile.TemporaryDirectory() as scratch:
        folder = options.keep or pathlib.Path(scratch)
        folder.mkdir(parents=True, exist_ok=True)
        folder = folder.resolve()
        (folder / "data.db").unlink(missing_ok=True)
        rng = random.Random(options.seed)
        tables = [Table(rng, number) for number in range(options.tables)]
        with sqlite3.connect(folder / "data.db") as database:
            for table in tables:
                table.fill(database)
        write_all(options, folder, tables)
        faults = 0
        for table in tables:
            for kind in table.formats(options.formats):
                try:
                    FORMATS[kind][2](table, folder / f"{table.number}.{kind}")
                except Exception as error:  # every fault is told, whatever a reader says
                    faults += 1
                    print(f"table {table.number} {kind}: {type(error).__name__} {error}"[:700])
        if options.heavy:
            check_heavy(options, folder, tables)
        print(f"{options.tables} tables, seed {options.seed}: {faults} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    raise SystemExit(main())
