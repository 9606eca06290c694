#!/usr/bin/env python3
"""Whether LibreOffice and Chromium show what the targets write. Run by hand on Linux; usage:
desktop_readers.py PROGRAM [--keep FOLDER] [unittest arguments]. --keep leaves pictures there."""
import argparse
import csv
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import unittest

from support import (NAMES, ROWS, ReaderTest, TableReader, is_sheet_number, page_rows,
                     plain_line_ends, texts)

EXAMPLE = pathlib.Path(__file__).resolve().parent.parent.parent / "examples/every-target"
MARK = b"\xef\xbb\xbf"
RTF_HEAD = rb"{\rtf\ansi"
FEW_COLUMNS = "select id, name, visits, balance, city, note from customer order by id"
PROLOGUE = """<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>Customers</title><style>
table { border-collapse: collapse; font-family: sans-serif }
td, th { border: 1px solid; padding: 0.3em; max-width: 30em }
</style></head><body>
"""
# What RTF needs and the target leaves alone: its marks escaped, and line breaks in its own words.
RTF_TRANSFORMERS = [line for search, replacement in (
    ("\\", "\\\\"), ("{", "\\{"), ("}", "\\}"), ("\\r\\n", "{\\line}"), ("\\n", "{\\line}"))
    for line in ("Transform", "Type=ReplaceString", "ApplyTo=*", f"From={search}",
                 f"To={replacement}")]


def run(*command):
    """Runs a reader to its end and returns what it wrote to standard output."""
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          start_new_session=True) as process:
        try:
            output, errors = process.communicate(timeout=180)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)  # launchers have programs below them
            raise
    if process.returncode != 0:
        raise AssertionError(f"{command[0]} ended with {process.returncode}: {errors[-2000:]!r}")
    return output


class Desktop(ReaderTest):
    keep = None

    def convert(self, path, kind, *options):
        """Has LibreOffice convert a file; returns the path of what it made."""
        made = self.path / "made"
        run("soffice", "--headless", f"-env:UserInstallation={(self.path / 'office').as_uri()}",
            *options, "--convert-to", kind, "--outdir", made, path)
        return made / f"{path.stem}.{kind.partition(':')[0]}"

    def browse(self, path, *options):
        return run("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                   "--no-first-run", "--disable-background-networking",
                   "--disable-component-update", "--disable-sync",
                   f"--user-data-dir={self.path / 'browser'}", *options, path.as_uri())

    def keep_first_page(self, path, name):
        if self.keep:
            run("pdftoppm", "-png", "-r", "60", "-singlefile", self.convert(path, "pdf"),
                self.keep / name)

    def document(self, *settings, **options):
        """An RTF file without its mark: with it LibreOffice takes the file for plain text."""
        path = self.run_job("RTFFile", "out.rtf", *settings, **options)
        path.write_bytes(path.read_bytes().removeprefix(MARK))
        return path

    def document_rows(self, path):
        """The cells that LibreOffice sees in an RTF file, with single blanks between words."""
        page = self.convert(path, "html").read_text(encoding="utf-8")
        return [[" ".join(text.split()) for _, text in row] for row in TableReader(page).rows]

    def expected_rows(self, names, rows):
        return [list(names)] + [[" ".join(text.split()) for text in texts(row, "NULL")]
                                for row in rows]

    def test_spreadsheet(self):
        path = self.run_job("ExcelFile", "out.xls")
        # Comma, double quote, UTF-8, from line 1, English, texts quoted, values as stored.
        sheet = self.convert(path, "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,true,false")
        with sheet.open(encoding="utf-8", newline="") as opened:
            rows = list(csv.reader(opened, quoting=csv.QUOTE_NONNUMERIC))
        expected = [[value if is_sheet_number(name, value) else text
                     for name, value, text in zip(NAMES, row, texts(row, "NULL"))] for row in ROWS]
        self.assertEqual(plain_line_ends(rows), plain_line_ends([NAMES] + expected))
        self.keep_first_page(self.run_job("ExcelFile", "few.xls", query=FEW_COLUMNS), "sheet")

    def test_page(self):
        (self.path / "head.html").write_text(PROLOGUE, encoding="utf-8")
        for name, settings in (("default prologue", []),
                               ("prologue of its own", ["PrologueFile=head.html"])):
            with self.subTest(name):
                path = self.run_job("HtmlFile", "out.html", "Encoding=UTF8", *settings)
                page = self.browse(path, "--dump-dom").decode()
                self.assertEqual(TableReader(page).rows, page_rows(ROWS))
        if self.keep:
            self.browse(self.run_job("HtmlFile", "out.html", "Encoding=UTF8",
                                     "PrologueFile=head.html", query=FEW_COLUMNS),
                        f"--screenshot={self.keep / 'page.png'}", "--window-size=1100,500")

    def test_document_of_plain_text(self):
        columns = 5  # ASCII ones, without line breaks
        path = self.document(query="select id, name, phone, visits, balance from customer "
                                   "order by id")
        self.assertEqual(self.document_rows(path), self.expected_rows(
            NAMES[:columns], [row[:columns] for row in ROWS]))
        self.keep_first_page(path, "rtf")

    def test_document_of_any_text(self):
        """The transformers above make line breaks and marks right, but not accents: the reader
        takes UTF-8 for Windows' western letters until the head tells it better."""
        path = self.document(*RTF_TRANSFORMERS)
        shown = self.document_rows(path)
        cities = list(zip(self.expected_rows(NAMES, ROWS), shown))
        column = NAMES.index("city")
        for right, seen in cities:
            print(f"RTF: {right[column]!r} is shown as {seen[column]!r}", file=sys.stderr)
        self.assertIn("Zürich".encode().decode("cp1252"), [seen[column] for _, seen in cities])
        written = path.read_bytes()
        self.assertTrue(written.startswith(RTF_HEAD))
        path.write_bytes(written.replace(RTF_HEAD, RTF_HEAD + rb"\ansicpg65001", 1))
        self.assertEqual(self.document_rows(path), self.expected_rows(NAMES, ROWS))

    def test_strict_documents(self):
        """Those of an example, to be looked at."""
        if not self.keep:
            self.skipTest("only with --keep")
        folder = self.path / "example"
        shutil.copytree(EXAMPLE, folder)
        with sqlite3.connect(folder / "data.db") as database:
            database.executescript((folder / "setup.sql").read_text(encoding="utf-8"))
        subprocess.run([self.program, "-config=job.qpr", "-silent"], cwd=folder, check=True)
        self.keep_first_page(folder / "article.xls.xml", "strict-sheet")
        self.keep_first_page(folder / "article.rtf", "strict-rtf")
        self.browse(folder / "article.html", f"--screenshot={self.keep / 'strict-page.png'}",
                    "--window-size=700,300")

    def test_marked_document_is_refused(self):
        """When a version does better, the documents may stop asking to take the mark away."""
        path = self.run_job("RTFFile", "out.rtf")
        for name, options, begin in (
                ("taken for plain text", [], "{\\rtf"),
                ("empty, even when told", ["--infilter=Rich Text Format"], "")):
            with self.subTest(name):
                text = self.convert(path, "txt:Text", *options).read_text(encoding="utf-8-sig")
                self.assertEqual(text[:5].strip(), begin)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path, help="the built program")
    parser.add_argument("--keep", type=pathlib.Path, help="a folder for pictures")
    options, others = parser.parse_known_args()
    ReaderTest.program = options.program.resolve()
    if options.keep:
        options.keep.mkdir(parents=True, exist_ok=True)
        Desktop.keep = options.keep.resolve()
    unittest.main(argv=[sys.argv[0], *others])


if __name__ == "__main__":
    main()
