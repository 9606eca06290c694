"""Random documents of hostile names and values, in a SQLite database, and the job that writes them."""
import random
import re

# Names and values are made of these.
PIECES = ["a", "Zürich", " ", "  ", "<b>", "</td>", "</title>", "&", "&amp;", "&#128;", "]]>", "<!--",
          '"', "'", "\\", "{", "}", "\\par", "\\u65?", "\n", "\r\n", "\r", "\t", "😀", "𝔘", "\U000ffffd",
          "\x01", "\x0b", "\x1b", "\x7f", "\x80", "\x85", "\x9f", "\xa0", "\xad", "\u2011", "\u2028",
          "\u202e", "\ue000", "\ufffe", "\uffff", "\ufeff", "$NAME$", "%s", "_x0041_", "_x01F600_", ":",
          "1", "é", "Ж", "漢", "null", "NULL", "nil", "true", "0", ",", ";", "=1+1", "@", "/", "\u200b",
          "\u0300", "\u0f0c", "\u00b7"]
TYPES = {
    "integer": ["0", "7", "-3", "9007199254740993", "x"],
    "decimal(12,2)": ["0", "0.5", ".5", "-.25", "1e5", "3.0", "12345678901234567890", "007", "NaN", ""],
    "real": ["0.1", "-2.5", "1e300", "x"],
    "date": ["2012-05-12", "1900-02-28", "1899-01-01", "2023-02-30", "9999-12-31", "x"],
    "timestamp": ["2005-08-16 23:42:55", "2005-08-16 23:42:55.5", "2005-08-16T01:02:03.12345", "x"],
    "boolean": ["0", "1", "7"],
}
SHEET_CELL = 32767  # the characters that a cell of a spreadsheet takes
MEGABYTE = "é <&\\" * 170000
# A document in so many has a thousand columns, a value of a megabyte, several result sets.
EVERY_WIDE, EVERY_LONG, EVERY_SEVERAL = 400, 400, 5


class Table:
    """Names, types and rows. Of equal names a query keeps both, a view does not."""

    def __init__(self, rng, name, columns, long_value):
        self.name = name
        self.types = [rng.choice(["text", "text", *TYPES]) for _ in range(columns)]
        # SQLite's driver does not tell names beyond the basic plane as they are, nor the plane U+100000.
        named = [piece for piece in PIECES if max(piece) < "\U00010000"]
        self.names = [rng.choice(["", "a"]) if rng.random() < 0.2 else text(rng, 6, named) + str(i)
                      for i in range(columns)]
        self.rows = [[None if rng.random() < 0.1 else value(rng, kind) for kind in self.types]
                     for _ in range(rng.choice([0, 1, 3, 10] if columns < 100 else [0, 1, 2]))]
        if long_value:
            self.types[0] = "text"
            self.rows = self.rows or [[None] * columns]
            self.rows[0][0] = MEGABYTE

    def query(self):
        columns = ", ".join(f"c{i} as {quoted(name)}" for i, name in enumerate(self.names))
        return f"select {columns} from {quoted('of ' + self.name)} order by rowid"

    def fill(self, database):
        """Makes the table and a view of it; takes over what SQLite makes of names and values."""
        stored = quoted("of " + self.name)
        declared = ", ".join(f"c{i} {kind}" for i, kind in enumerate(self.types))
        database.execute(f"create table {stored} ({declared})")
        database.executemany(f"insert into {stored} values ({','.join('?' * len(self.types))})", self.rows)
        database.execute(f"create view {quoted(self.name)} as {self.query()}")
        self.rows = [list(row) for row in database.execute(f"select * from {stored} order by rowid")]

    def take_names_of_view(self, database):
        found = database.execute(f"select * from {quoted(self.name)} limit 0")
        self.names = [column[0] for column in found.description]


class Document:
    """What becomes one file in each form: a table, or several."""

    def __init__(self, seed, number, database):
        rng = random.Random(f"{seed}/{number}")
        several = number % EVERY_SEVERAL == 2
        self.number = number
        self.tables = [Table(rng, f"t{number}" if not several else self.table_name(rng, i),
                             1000 if number % EVERY_WIDE == 5 else rng.randrange(1, 9),
                             number % EVERY_LONG == 11) for i in range(rng.randrange(2, 5) if several else 1)]
        for table in self.tables:
            table.fill(database)
            if several:
                table.take_names_of_view(database)
        self.source = (["Type=Database", "Tables=" + ",".join(f"[{table.name}]" for table in self.tables)]
                       if several else ["Type=DatabaseQuery", f"QueryFile={number}.sql"])
        self.query = None if several else self.tables[0].query()

    def table_name(self, rng, i):
        """What a list of tables can name: it has no way to write a bracket or a line end,
        and behind a blank a semicolon begins a comment."""
        name = re.sub("[][;\x00-\x1f]", "", text(rng, 4))
        return f"{name}-{self.number}-{i}"

    def fits_sheet(self):
        return all(len(str(value).encode("utf-16-le")) // 2 <= SHEET_CELL
                   for table in self.tables for row in table.rows for value in row)

    def rows(self, shape):
        """Rows of pairs, the type and the value, as readers of this shape find them."""
        if shape == "cells":
            return [[cell for row in self.rows("tables") for cell in row]]
        found = []
        for table in self.tables:
            names = unlike(table.names) if shape == "unlike records" else table.names
            names = [("tag" if shape == "records by tags" else "name", name) for name in names]
            rows = [list(zip(table.types, row)) for row in table.rows]
            if shape in ("tables", "trimmed tables"):
                whole = [names, *rows]
                found += whole if shape == "tables" else trimmed(whole, lambda cell: cell[1] in (None, ""))
            else:
                found += [each for row in rows for each in (names, row)]
        return found


def text(rng, longest, pieces=PIECES):
    return "".join(rng.choice(pieces) for _ in range(rng.randrange(longest)))


def value(rng, kind):
    return text(rng, 8) if kind == "text" else rng.choice(TYPES[kind])


def trimmed(rows, is_empty):
    """A table without the empty cells at the end of its rows, and without the empty rows below."""
    rows = [list(row) for row in rows]
    for row in rows:
        while row and is_empty(row[-1]):
            row.pop()
    while rows and not rows[-1]:
        rows.pop()
    return rows


def quoted(name):
    return '"' + name.replace('"', '""') + '"'


def unlike(names):
    """What JSON makes of equal names."""
    taken, made, used = set(names), [], set()
    for name in names:
        number, new = 2, name
        if name in used:
            while (new := f"{name}_{number}") in taken:
                number += 1
        taken.add(new)
        used.add(name)
        made.append(new)
    return made


def job(documents, formats):
    """formats: the ending, and the target with its settings."""
    lines = ["Globals", "Edition=2", 'ConnectString="Driver=SQLite3;Database=data.db;StepAPI=1"']
    for document in documents:
        for ending, (target, *settings) in formats.items():
            if ending != "xls" or document.fits_sheet():
                lines += [f"Step {document.number} {ending}", "Source", *document.source, "Target",
                          f"Type={target}", f"Name={document.number}.{ending}", *settings]
    return "\n".join(lines) + "\n"
