"""What the engine tests share: the engines with their command line clients, and jobs on them."""
import contextlib
import csv
import io
import os
import pathlib
import re
import sqlite3
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from program import Scene, run_tests  # noqa: E402, F401

ENVIRONMENT = os.environ | {"LC_ALL": "C.UTF-8", "PGCLIENTENCODING": "UTF8"}
csv.field_size_limit(sys.maxsize)
EDITION_2 = "Globals\nEdition=2\n"


def quoted(name):
    return '"' + name.replace('"', '""') + '"'


def client(*command, **options):
    """Runs a database's client, which must succeed; returns what it says."""
    done = subprocess.run(command, capture_output=True, timeout=120, env=ENVIRONMENT, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command[0]} ended with {done.returncode}: {done.stderr[:2000]!r}")
    return done.stdout.decode(errors="surrogateescape")


class Sqlite:
    """A SQLite database in a file. `rows` gives values of Python's types, so that a number is not
    taken for its digits."""
    missing = ""
    home_schema = ""
    fast = "pragma synchronous = off;"  # a crash of the machine may take the scratch folder

    def __init__(self, folder, name):
        self.path = folder / f"{name}.db"
        self.connect = f"Driver=SQLite3;Database={self.path};StepAPI=1;SyncPragma=OFF"

    def run(self, script):
        with contextlib.closing(sqlite3.connect(self.path)) as connection:
            connection.executescript(self.fast + script)

    def load(self, path):
        """Runs a script. The shell of SQLite would read it by lines and so change line ends."""
        self.run(path.read_bytes().decode("utf-8-sig"))

    def query(self, query):
        with contextlib.closing(sqlite3.connect(self.path)) as connection:
            return connection.execute(query).fetchall()

    def rows(self, table):
        return self.query(f"select * from {quoted(table)} order by 1")

    def drop(self):
        """The folder goes, and the database with it."""


class Server:
    """A database of its own on a server. `rows` gives texts, and None for NULL."""
    connect_string = ""
    client_words = {}  # the client's words for keywords of the connect string

    def __init__(self, _folder, name):
        self.name = f"quillon_{os.getpid()}_{name}"
        given = {key.lower(): value for key, value in
                 re.findall(r"([^=;]+)=(\{[^}]*\}|[^;]*)", self.connect_string)}
        self.home = given["database"]
        self.server = [f"{word}={given[key]}" for key, word in self.client_words.items()
                       if key in given]
        self.connect = re.sub("(?i)(?<=database=)[^;]*", self.name, self.connect_string)
        self.client(self.home, f"create database {self.name}")

    def as_user(self, user):
        """A connect string for a user without a password."""
        return re.sub("(?i)(?<=uid=)[^;]*", user, self.connect)

    def run(self, script):
        self.client(self.name, script)

    def load(self, path):
        """Runs a script as a user would."""
        self.run(path.read_bytes().decode())


class Postgres(Server):
    connect_string = os.environ.get("QUILLON_TEST_POSTGRES", "")
    missing = "" if connect_string else "QUILLON_TEST_POSTGRES holds no connect string"
    client_words = {"server": "host", "port": "port", "uid": "user", "pwd": "password"}
    home_schema = "public"

    def client(self, database, script, *arguments):
        return client("psql", "--no-psqlrc", "--quiet", "--set=ON_ERROR_STOP=1",
                      f"--dbname={' '.join(self.server)} dbname={database}", *arguments,
                      input=script.encode())

    def query(self, query):
        said = self.client(self.name, query, "--csv", "--tuples-only", "--pset=null=\x01")
        return [tuple(None if value == "\x01" else value for value in row)
                for row in csv.reader(io.StringIO(said, newline=""))]

    def rows(self, table):
        return self.query(f"select * from {quoted(table)} order by 1")

    @staticmethod
    def user(name):
        """The user as statements name it."""
        return name

    def add_user(self, user):
        self.run(f"create role {user} login")

    def drop_user(self, user):
        self.run(f"drop owned by {user}; drop role {user}")

    def drop(self):
        self.client(self.home, f"drop database {self.name} with (force)")


class MariaDb(Server):
    connect_string = os.environ.get("QUILLON_TEST_MARIADB", "")
    missing = "" if connect_string else "QUILLON_TEST_MARIADB holds no connect string"
    client_words = {"server": "--host", "port": "--port", "uid": "--user", "pwd": "--password"}
    home_schema = ""

    def client(self, database, script):
        # Names in double quotes; backslashes that are nothing but backslashes.
        return client("mariadb", "--no-defaults", "--protocol=tcp", *self.server, "--batch",
                      "--default-character-set=utf8mb4", "--skip-column-names", "--init-command="
                      "set sql_mode=concat(@@sql_mode,',ANSI_QUOTES,NO_BACKSLASH_ESCAPES')",
                      "--binary-mode", database, input=script.encode())

    def query(self, query):
        """Values without line ends, tabs and backslashes."""
        return [[None if value == "NULL" else value for value in line.split("\t")]
                for line in self.client(self.name, query).split("\n")[:-1]]

    def rows(self, table):
        literal = table.replace("'", "''")
        names = self.client(self.name, "select column_name from information_schema.columns where "
                            f"table_schema = database() and table_name = '{literal}' "
                            "order by ordinal_position").splitlines()
        values = ",".join(f"coalesce(concat('=', {quoted(self.value('=' + name))}), '')"
                          for name in names)
        said = self.client(self.name, f"select {values} from {quoted(table)} order by 1")
        return [tuple(self.value(field) for field in line.split("\t"))
                for line in said.split("\n")[:-1]]

    @staticmethod
    def value(field):
        """A value as the client writes it: nothing for NULL, "=" before others, with escapes."""
        plain = {"n": "\n", "t": "\t", "0": "\0", "\\": "\\"}
        return re.sub(r"\\(.)", lambda found: plain[found[1]], field[1:]) if field else None

    @staticmethod
    def user(name):
        """The user as statements name it."""
        return f"{name}@'127.0.0.1'"

    def add_user(self, user, how=""):
        self.run(f"create user {self.user(user)} {how}")

    def drop_user(self, user):
        self.run(f"drop user {self.user(user)}")

    def drop(self):
        self.client(self.home, f"drop database {self.name}")


class EngineTest(Scene):
    """Databases that go when the test ends, and jobs that move rows."""
    engine = Sqlite

    def setUp(self):
        if self.engine.missing:
            self.skipTest(self.engine.missing + ", see tests/servers")
        super().setUp()

    def database(self, script="", name="a", engine=None):
        """A new database in which the script has run."""
        made = (engine or self.engine)(self.path, name)
        self.addCleanup(made.drop)
        if script:
            made.run(script)
        return made

    def reader(self, made, *tables):
        """A new user of the database, who may read these tables and do nothing else."""
        user = f"quillon_{os.getpid()}"
        made.add_user(user)
        self.addCleanup(made.drop_user, user)
        for table in tables:
            made.run(f"grant select on {table} to {made.user(user)}")
        return made.as_user(user)

    def assert_job(self, status, message, *steps, globals=""):
        """Runs a job, a step being the text of its sections. It ends with this status, and the
        pattern is all that it says, in one line."""
        ended = self.run_job(globals + "".join(f"Step #\n{step}" for step in steps))
        self.assertRegex(f"{ended.status} {ended.output.decode()}{ended.errors.decode()}",
                         rf"\A{status} {message}\s*\Z")

    def move(self, *steps, globals=""):
        """Runs a job that must succeed without a word."""
        self.assert_job(0, "", *steps, globals=globals)

    def files(self):
        """Name and text of each text file that a job has written, without the mark in front."""
        return {path.stem: path.read_bytes().decode("utf-8-sig")
                for path in self.path.glob("*.txt")}


def section(kind, word, *settings):
    return "\n".join([kind, f"Type={word}", *settings, ""])


def source(word, database, *settings):
    """A Source section; `database` is one or a connect string."""
    connect = getattr(database, "connect", database)
    return section("Source", word, f'ConnectString="{connect}"', *settings)


def table(database, name="t"):
    """A Target section: a table."""
    return source("DatabaseTable", database, f"Table={name}").replace("Source", "Target")


def text_files(*settings):
    """A Target section: a text file for each table, named after it."""
    return section("Target", "TextFile", "Name=$TABLE$.txt", "OneFilePerResultSet=1", "Header=1",
                   "Encoding=UTF8", "EndOfLine=LF", *settings)
