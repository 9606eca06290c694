#!/usr/bin/env python3
"""Loads a CSV file into the table, or reads it into one, with a database's own driver of Python:

    bench/drivers.py load|read sqlite3|psycopg2|pymysql CONNECT FILE

CONNECT is a file name, or keywords for the driver's connect() as JSON. For databases.py."""
import csv
import importlib
import itertools
import json
import sys

from generate import COLUMNS, DEFAULT_TABLE

BATCH_ROWS = 1_000


def load(connection, mark, path):
    marks = ",".join([mark] * len(COLUMNS))
    cursor = connection.cursor()
    with open(path, encoding="utf-8", newline="") as file:
        rows = csv.reader(file)
        next(rows)
        while batch := list(itertools.islice(rows, BATCH_ROWS)):
            cursor.executemany(f"insert into {DEFAULT_TABLE} values ({marks})", batch)
    connection.commit()


def read(connection, path):
    cursor = connection.cursor()
    cursor.execute(f"select * from {DEFAULT_TABLE}")
    with open(path, "w", encoding="utf-8", newline="") as file:
        rows = csv.writer(file)
        rows.writerow(name for name, _ in COLUMNS)
        rows.writerows(iter(cursor.fetchone, None))


def main():
    action, name, connect, path = sys.argv[1:]
    driver = importlib.import_module(name)
    if name == "sqlite3":
        connection = driver.connect(connect)
    else:
        connection = driver.connect(**json.loads(connect))
    if action == "load":
        load(connection, "?" if name == "sqlite3" else "%s", path)
    else:
        read(connection, path)
    connection.close()


if __name__ == "__main__":
    main()
