#!/usr/bin/env python3
"""Writes random documents of hostile names and values in every strict form and has other programs read
them back. Run by hand on Linux; usage: hostile_tables.py PROGRAM [--tables N] [--heavy]
[--seed N] [--results FILE] [--keep FOLDER] [FORMAT...]. See README.md."""
import argparse
import collections
import dataclasses
import json
import math
import operator
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import tempfile
import typing

import readers
from documents import Document, job

IN_ONE_RUN = 100
NUMBERS = ("integer", "decimal(12,2)", "real", "boolean")
FORMATS = {
    "json": ("JSONFile",),
    "jsonl": ("JSONFile", "Form=Lines"),
    "xml": ("XMLFile", "Unmappable=Replace"),
    "tags.xml": ("XMLFile", "Unmappable=Replace", "FieldIsTag=1"),
    "xls": ("ExcelFile", "Unmappable=Replace"),
    "html": ("HtmlFile",),
    "rtf": ("RTFFile",),
}
# The characters that XML lacks.
LACKING = re.compile("[\x00-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]")


@dataclasses.dataclass(frozen=True)
class Reader:
    """shape: what its rows are, see Document.rows. same: whether it made of a value what it has to."""
    kind: str
    name: str
    read: typing.Callable
    shape: str = "tables"
    same: typing.Callable = operator.eq
    heavy: bool = False


def replaced(text, value):
    """XML lacks some characters."""
    return text == (value and LACKING.sub("\ufffd", value))


def same_in_calc(text, value):
    return replaced(text, value or "")


def same_in_writer(text, value):
    """It has one kind of line ends. What XML lacks it leaves out, or makes a 0 of it."""
    if text is None or value is None:
        return text == value
    parts = LACKING.split(re.sub("\r\n?", "\n", value))
    return re.fullmatch("0*".join(map(re.escape, parts)), text) is not None


def same_in_unrtf(text, value):
    """What blanks there are is not told."""
    return (text and "".join(text.split())) == (value and "".join(value.split()))


READERS = [
    Reader("json", "Python json", readers.read_json, "unlike records"),
    Reader("json", "jq", readers.read_json_by_jq, "unlike records"),
    Reader("jsonl", "Python json", readers.read_json_lines, "unlike records"),
    Reader("jsonl", "jq", readers.read_json_by_jq, "unlike records"),
    *(Reader(kind, name, read, shape, replaced)
      for kind, shape in (("xml", "records"), ("tags.xml", "records by tags"))
      for name, read in (("Python expat", readers.read_xml), ("xmllint", readers.read_xml_by_xmllint),
                         ("xmllint, old names", readers.read_xml_by_old_names))),
    Reader("xls", "Python ElementTree", readers.read_sheet, "tables", replaced),
    Reader("xls", "LibreOffice Calc", readers.read_by_office("fods", readers.calc_rows), "trimmed tables",
           same_in_calc, heavy=True),
    Reader("html", "Python html.parser", readers.read_page),
    Reader("html", "Chromium", readers.read_page_by_chromium, heavy=True),
    Reader("html", "Nu Html Checker", readers.validate_pages, heavy=True),
    Reader("rtf", "LibreOffice Writer", readers.read_by_office("fodt", readers.writer_rows), "tables",
           same_in_writer, heavy=True),
    Reader("rtf", "unrtf", readers.read_document_by_unrtf, "cells", same_in_unrtf),
]


def same_number(text, value):
    try:
        return math.isclose(float(text), float(value), rel_tol=1e-14)  # the driver's 15 digits
    except (TypeError, ValueError):
        return False


def difference(reader, document, found):
    """What is wrong with what a reader found, or nothing."""
    if isinstance(found, Exception):
        return f"{type(found).__name__}: {found}"
    if found is None:
        return None
    wanted = document.rows(reader.shape)
    if len(found) != len(wanted):
        return f"{len(found)} rows instead of {len(wanted)}"
    for found_row, row in zip(found, wanted):
        if len(found_row) != len(row):
            return f"{len(found_row)} cells instead of {len(row)}"
        for text, (kind, value) in zip(found_row, row):
            same = operator.eq if kind == "tag" else reader.same
            if not (same(text, value if value is None else str(value))
                    or kind in NUMBERS and same_number(text, value)):
                return f"{kind}: {text!r} instead of {value!r}"
    return None


def read_back(options, folder, documents):
    """Returns for each reader how many documents it was given, and the faults."""
    results = {}
    for reader in READERS:
        given = [document for document in documents
                 if (folder / f"{document.number}.{reader.kind}").exists()]
        if not given or reader.kind not in options.formats or reader.heavy and not options.heavy:
            continue
        faults = {}
        found = reader.read([folder / f"{document.number}.{reader.kind}" for document in given])
        for document, rows in zip(given, found):
            if fault := difference(reader, document, rows):
                faults[document.number] = fault[:500]
                print(f"document {document.number}, {reader.kind}, {reader.name}: {fault[:500]}", flush=True)
        results[f"{reader.kind}|{reader.name}"] = [len(given), faults]
    return results


def write_and_read(options, folder, numbers):
    (folder / "data.db").unlink(missing_ok=True)
    with sqlite3.connect(folder / "data.db") as database:
        documents = [Document(options.seed, number, database) for number in numbers]
    for document in documents:
        if document.query:
            (folder / f"{document.number}.sql").write_text(document.query, "utf-8", newline="")
    formats = {kind: FORMATS[kind] for kind in options.formats}
    (folder / "job.qpr").write_text(job(documents, formats), "utf-8", newline="")
    # Its warnings of equal names in JSON are of no interest.
    subprocess.run([options.program, "-config=job.qpr", "-silent"], cwd=folder, check=True,
                   stderr=subprocess.DEVNULL, env=os.environ | {"LC_ALL": "C.UTF-8"})
    return read_back(options, folder, documents)


def report(runs):
    """A Markdown table of what became of the documents of all runs."""
    totals = collections.Counter()
    for one in runs:
        for reader, (given, faults) in one.items():
            totals[reader, "given"] += given
            totals[reader, "differing"] += len(faults)
    lines = ["| Format | Read by | Documents | Equal | Differing |", "|---|---|---|---|---|"]
    for reader in READERS:
        given = totals[f"{reader.kind}|{reader.name}", "given"]
        differing = totals[f"{reader.kind}|{reader.name}", "differing"]
        if given:
            lines.append(f"| {reader.kind} | {reader.name} | {given} | {given - differing} | {differing} |")
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("formats", nargs="*", help=", ".join(FORMATS))
    parser.add_argument("--tables", type=int, default=300, help="so many documents")
    parser.add_argument("--heavy", action="store_true", help="desktop programs read, too")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--results", type=pathlib.Path, help="runs that stand there are not done again")
    parser.add_argument("--keep", type=pathlib.Path, help="a folder for the files of the latest run")
    options = parser.parse_intermixed_args()
    options.program = options.program.resolve()
    options.formats = options.formats or list(FORMATS)
    done = []
    if options.results and options.results.exists():
        done = [json.loads(line) for line in options.results.read_text("utf-8").splitlines()]
    for start in range(len(done) * IN_ONE_RUN, options.tables, IN_ONE_RUN):
        with tempfile.TemporaryDirectory() as scratch:
            folder = (options.keep or pathlib.Path(scratch)).resolve()
            shutil.rmtree(folder, ignore_errors=True)
            folder.mkdir(parents=True)
            numbers = range(start, min(start + IN_ONE_RUN, options.tables))
            done.append(write_and_read(options, folder, numbers))
        if options.results:
            with options.results.open("a", encoding="utf-8") as opened:
                opened.write(json.dumps(done[-1]) + "\n")
    print(report(done))
    return 1 if any(faults for one in done for _, faults in one.values()) else 0


if __name__ == "__main__":
    raise SystemExit(main())
