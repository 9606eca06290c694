#!/usr/bin/env python3
"""Measures jobs of edition 2 beside tools that people would use instead, and prints a Markdown
table. All take turns on the same files; medians of whole processes, their start included.

    bench/peers.py [--build FOLDER] [--rows N] [--repeat N] [--duckdb FOLDER]

Debian packages: csvtool, miller, mawk. DuckDB: `npm install @duckdb/node-api` in the folder that
--duckdb names; what is not installed is left out, and the script says so."""
import argparse
import csv
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
import zlib
from pathlib import Path

import generate

HERE = Path(__file__).resolve().parent
MEMORY = Path("/dev/shm")
JOB = """Globals
Edition=2
EndOfLine=LF
Step 1
Source
Type=TextFile
Name={source}
{source_keys}Target
Type={target}
Name=out
{target_keys}"""
CHANGES = """Transform
Type=RemoveColumn
ApplyTo=5,8
Transform
Type=RenameColumn
ApplyTo=2
NewName=client
Transform
Type=ReplaceString
ApplyTo=6
From=A
To=B
"""
READ = "read_csv('{}', header=true, all_varchar=true{})"


def make_files(folder, rows, short_rows):
    with (folder / "rows.csv").open("w", newline="", encoding="utf-8") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(name for name, _ in generate.COLUMNS)
        for chunk in generate.chunks(rows):
            writer.writerows(["" if value is None else value for value in row] for row in chunk)
    with (folder / "rows.csv").open(encoding="utf-8", newline="") as rows_file, \
            (folder / "wide.csv").open("w", encoding="utf-16", newline="") as wide:
        shutil.copyfileobj(rows_file, wide)
    with (folder / "short.csv").open("w") as file:
        file.write("id,word\n")
        file.writelines(f"{number},word{number % 97}\n" for number in range(short_rows))
    with (folder / "rows.csv").open(encoding="utf-8", newline="") as rows_file, \
            (folder / "bad.csv").open("w", encoding="utf-8", newline="") as bad:
        writer = csv.writer(bad, lineterminator="\n")
        for number, row in enumerate(csv.reader(rows_file)):
            writer.writerow(row + ["one more"] * (number % 1000 == 999))


def copy_to(query, options="HEADER"):
    return f"COPY ({query}) TO 'out' ({options})"


def works():
    """Name, the program's job, and what peers do: a command, or SQL for DuckDB."""
    everything = "SELECT * FROM " + READ
    changed = ("SELECT id, customer AS client, amount, due, replace(code, 'A', 'B') AS code, "
               "remark FROM ")

    def job(source, target="TextFile", source_keys="", target_keys=""):
        return JOB.format(source=source, target=target, source_keys=source_keys,
                          target_keys=target_keys)

    def document(target, peers=None):
        return (job("rows.csv", target), (peers or {}) | {
            "quillon, Form=Plain": job("rows.csv", target, target_keys="Form=Plain\n")})

    return (
        ("CSV to CSV", job("rows.csv"),
         {"split through UTF-16, buffered": "LIMITS split rows.csv out",
          "DuckDB": copy_to(everything.format("rows.csv", "")),
          "csvtool": "csvtool cat rows.csv -o out", "miller": "mlr --csv --ofs , cat rows.csv"}),
        ("two columns dropped, one renamed, one replaced", job("rows.csv", target_keys=CHANGES),
         {"DuckDB": copy_to(changed + READ.format("rows.csv", "")),
          "miller": ["mlr", "--csv", "cut", "-x", "-f", "changed,notes", "then", "rename",
                     "customer,client", "then", "put", '$code = gsub($code, "A", "B")',
                     "rows.csv"]}),
        ("UTF-16 to UTF-8", job("wide.csv"),
         {"DuckDB": copy_to(everything.format("wide.csv", ", encoding='utf-16'"))}),
        ("short rows", job("short.csv"),
         {"quillon, Dialect=Plain": job("short.csv", source_keys="Dialect=Plain\n",
                                        target_keys="Dialect=Plain\n"),
          "DuckDB": copy_to(everything.format("short.csv", "")),
          "mawk": ["mawk", "-F,", "-vOFS=,", "{ $1 = $1; print }", "short.csv"]}),
        ("a bad record of every thousand set aside",
         job("bad.csv", source_keys="OnBadRow=Reject\nRejectFile=bad\n"),
         {"quillon, none bad": job("rows.csv", source_keys="OnBadRow=Reject\nRejectFile=bad\n")}),
        ("CSV to JSON", *document("JSONFile", {
            "DuckDB": copy_to(everything.format("rows.csv", ""), "FORMAT JSON, ARRAY true")})),
        ("CSV to JSON lines", job("rows.csv", "JSONFile", target_keys="Form=Lines\n"),
         {"DuckDB": copy_to(everything.format("rows.csv", ""), "FORMAT JSON")}),
        ("CSV to XML", *document("XMLFile")),
        ("CSV to spreadsheet", *document("ExcelFile")),
        ("CSV to HTML", *document("HtmlFile")),
        ("CSV to RTF", *document("RTFFile")),
        ("CSV to SQL", job("rows.csv", "SQLScript", target_keys="Table=t\n"), {}),
    )


def command_of(what, options, folder):
    """The command of a peer; None when it is not installed."""
    if isinstance(what, list):
        return what if shutil.which(what[0]) else None
    if what.startswith("Globals"):
        name = f"job{zlib.crc32(what.encode())}.qpr"
        (folder / name).write_text(what)
        return [str(options.build / "quillon"), f"-config={name}", "-silent"]
    if what.startswith("COPY"):
        if not (options.duckdb / "node_modules/@duckdb").exists():
            return None
        return ["node", str(HERE / "duckdb.mjs"), what]
    words = what.split()
    if words[0] == "LIMITS":
        return [str(options.build / "bench/bench_limits"), *words[1:]]
    return words if shutil.which(words[0]) else None


def seconds(command, folder):
    """How long the command takes, and the most memory that it held, in MiB."""
    (folder / "out").unlink(missing_ok=True)
    start = time.monotonic()
    with (folder / "stdout").open("wb") as output:
        process = subprocess.Popen(command, cwd=folder, stdout=output, stderr=output)
        _, status, usage = os.wait4(process.pid, 0)
    if status:
        sys.exit(f"{command[0]} failed")
    return time.monotonic() - start, usage.ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=Path, default=HERE.parent / "build/linux")
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--repeat", type=int, default=3)
    parser.add_argument("--duckdb", type=Path, default=Path.cwd())
    parser.add_argument("--scratch", type=Path, default=MEMORY if MEMORY.is_dir() else None,
                        help="folder for the files; what the disk does is not compared in memory")
    parser.add_argument("--only", default="", help="works whose names hold this text")
    options = parser.parse_args()
    options.build, options.duckdb = options.build.resolve(), options.duckdb.resolve()
    print("| Work | quillon, s | peak MiB | beside it | s | quillon's share |\n"
          "|---|--:|--:|---|--:|--:|")
    with tempfile.TemporaryDirectory(dir=options.scratch) as scratch:
        folder = Path(scratch)
        make_files(folder, options.rows, 3 * options.rows)
        (folder / "node_modules").symlink_to(options.duckdb / "node_modules")
        for name, job, peers in works():
            if options.only not in name:
                continue
            commands = {}
            for peer, what in {"": job, **peers}.items():
                command = command_of(what, options, folder)
                if command:
                    commands[peer] = command
                else:
                    print(f"{peer} is not installed", file=sys.stderr)
            times = {peer: [] for peer in commands}
            for _ in range(options.repeat):
                for peer, command in commands.items():
                    times[peer].append(seconds(command, folder))
            own = statistics.median(taken for taken, _ in times[""])
            peak = max(peak for _, peak in times[""])
            start = f"| {name} | {own:.2f} | {peak:.0f} "
            if len(times) == 1:
                print(f"{start}| | | |")
            for peer in list(times)[1:]:
                taken = statistics.median(taken for taken, _ in times[peer])
                print(f"{start}| {peer} | {taken:.2f} | **{own / taken:.2f}** |", flush=True)
                start = "| | | "


if __name__ == "__main__":
    main()
