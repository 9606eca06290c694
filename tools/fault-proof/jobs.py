"""The jobs that the fault proof runs: every source, every target, in both editions."""
import dataclasses
import sqlite3

OLD = b"what was here before\r\n"
ROWS = 60


@dataclasses.dataclass
class Job:
    """A job file, and what it leaves when all goes well."""
    name: str
    text: str                   # without its Globals; {driver}, {port} and {run} are filled in
    targets: tuple = ("out",)   # files that it makes or replaces
    in_place: tuple = ()        # those of them that it does not replace as a whole
    tables: tuple = ()          # (database file or None for the driver's store, table)
    withheld: tuple = ()        # what the driver's silence about a failure leaves
    stdin: str = ""             # the file that standard input is
    printed: bool = False       # standard output holds data
    edition: int = 2
    globals: str = ""
    called: bool = False        # a web server is called

    @property
    def title(self):
        return f"{self.name}, edition {self.edition}"

    def job_file(self, **values):
        """The job file; {name} of the text becomes values[name]."""
        edition = "Edition=2\n" if self.edition == 2 else ""
        text = "Globals\n" + edition + self.globals + self.text
        for name, value in values.items():
            text = text.replace("{%s}" % name, str(value))
        return text

    @property
    def can_be_repeated(self):
        """Whether a second run leaves the same as one alone."""
        return bool(self.targets) and not self.in_place and "Overwrite=0" not in self.text

    @property
    def uses_driver(self):
        return "{driver}" in self.text


def value(number, column):
    """What stands in the source; some of it needs care in every format."""
    if column == "note" and number % 5 == 0:
        return None
    texts = {"name": f"row-{number} é \"q\" 'a' <b>&amp;", "note": f"one\ntwo;\t{{{number}}}\\ 漢 "
             + "x" * (number % 7 * 40), "price": f"{number}.25"}
    return number if column == "id" else texts[column]


COLUMNS = ("id", "name", "note", "price")


def fill(folder):
    """Makes the files that the jobs read."""
    rows = [[value(number, column) for column in COLUMNS] for number in range(1, ROWS + 1)]
    for name, tables in (("data.db", ("item", "other")), ("target.db", ("item",))):
        database = sqlite3.connect(folder / name)
        for table in tables:
            database.execute(f"create table {table}"
                             "(id integer, name varchar(80), note text, price decimal(9,2))")
            if name == "data.db":
                database.executemany(f"insert into {table} values (?,?,?,?)", rows)
        database.execute("create view seen as select * from item")
        database.commit()
        database.close()

    def csv(text):
        return "" if text is None else '"' + str(text).replace('"', '""') + '"'
    lines = [",".join(COLUMNS)] + [",".join(map(csv, row)) for row in rows]
    (folder / "in.csv").write_bytes("\r\n".join([*lines, ""]).encode())
    (folder / "bad.csv").write_bytes("\n".join([lines[0], lines[1], '"9","no end', ""]).encode())
    (folder / "in.utf16").write_bytes("\n".join([*lines, ""]).encode("utf-16"))
    plain = ["\t".join(COLUMNS)] + [f"{n}\tname {n}\tnote {n}\t{n}.5" for n in range(1, ROWS + 1)]
    (folder / "in.txt").write_bytes("\n".join([*plain, ""]).encode())
    widths = [f"{n:<6}{'name ' + str(n):<12}{'x' * (n % 9):<10}" for n in range(1, ROWS + 1)]
    (folder / "in.wid").write_bytes("\n".join(["id    name        note      ", *widths, ""]).encode())
    (folder / "query.sql").write_bytes(b"select *\r\nfrom item\r\norder by id\r\n")
    (folder / "head.html").write_bytes("<html><body><h1>Käse</h1>\n".encode())
    (folder / "part.inc").write_bytes(b"Type=DatabaseQuery\nQueryFile=query.sql\n")
    (folder / "odbc.ini").write_bytes(b"[Sales]\nDriver=SQLite3\nDatabase=data.db\n")
    (folder / "tree" / "deep").mkdir(parents=True)
    (folder / "tree" / "one.txt").write_bytes(b"one\n" * 2000)
    (folder / "tree" / "deep" / "two.txt").write_bytes(b"two\n" * 2000)
    for name in ("move.txt", "gone.txt"):
        (folder / name).write_bytes(b"content\n" * 1000)
    (folder / "doomed").mkdir()
    (folder / "doomed" / "file").write_bytes(b"")


SQLITE = 'ConnectString="Driver=SQLite3;Database=data.db;StepAPI=1"\n'
QUERY = "Step 1\nSource\nType=DatabaseQuery\n" + SQLITE + "Query=select * from item order by id\n"
DRIVER = ('Step 1\nSource\nType=DatabaseQuery\nConnectString="Driver={driver};Rows=12{words}"\n'
          "Query=select * from t\n")
TEXT = "Step 1\nSource\nType=TextFile\nName=in.csv\n"
OWN_TABLE = ('Target\nType=DatabaseTable\nConnectString="Driver={driver};Store=store{words}"\n'
             "Table=t\n")


def target(kind, more="", name="out"):
    return f"Target\nType={kind}\nName={name}\n{more}"


def table(kind="SQLite3;Database=target.db"):
    return f'Target\nType=DatabaseTable\nConnectString="Driver={kind}"\nTable=item\n'


def system(number, command, **keys):
    lines = [f"Step {number}", "System", f"Command={command}"]
    return "\n".join(lines + [f"{key}={text}" for key, text in keys.items()]) + "\n"


SYSTEM = "".join((
    system(1, "CopyFile", From="in.csv", To="out"),
    system(2, "MoveFile", From="move.txt", To="moved.txt"),
    system(3, "CopyFolder", From="tree", To="made/tree"),
    system(4, "MoveFolder", From="made/tree", To="made/moved"),
    system(5, "DeleteFile", File="gone.txt"),
    system(6, "DeleteFolder", Folder="doomed"),
    system(7, "WriteFile", File="written.txt", Text="a line", Overwrite=1)))
MOVED = ("made/moved/one.txt", "made/moved/deep/two.txt")

TWO_STEPS = (QUERY + target("TextFile", name="first") +
             "Settings\nLog=log.txt\n" + QUERY.replace("Step 1", "Step 2") +
             target("JSONFile", name="out") + "Settings\nLog=log.txt\n")

# What both editions run alike.
EITHER = [
    Job("text to text", TEXT + target("TextFile")),
    Job("text to fixed width", TEXT + target("TextFile", "FixedWidth=1\n")),
    Job("standard input to console", TEXT.replace("in.csv", "CONSOLE") +
        target("TextFile", name="CONSOLE"), targets=(), stdin="in.csv", printed=True),
    Job("query to text", QUERY + target("TextFile")),
    Job("database to text files", "Step 1\nSource\nType=Database\n" + SQLITE + "Tables=item,other\n"
        + target("TextFile", "OneFilePerResultSet=1\n", "$TABLE$.out"),
        targets=("item.out", "other.out")),
    Job("schema to DDL script", "Step 1\nSource\nType=DatabaseSchema\nObjectType=AllTables\n" +
        SQLITE + "WithColumns=1\n" + target("DDLScript", "Table=$TABLE$\n"),
        withheld=([b")\r\n"], [b""])),
    Job("schema of a table to text", "Step 1\nSource\nType=DatabaseSchema\nObjectType=Table\n"
        "Name=item\n" + SQLITE + target("TextFile")),
    Job("list of drivers to text", "Step 1\nSource\nType=ODBCDriverList\n" + target("TextFile")),
    Job("list of data sources to JSON", "Step 1\nSource\nType=ODBCDataSourcesList\n" +
        target("JSONFile")),
    Job("query to SQL script", QUERY + target("SQLScript", "Table=t\nBatchSize=7\nDelimiter=;\n")),
    Job("query to XML", QUERY + target("XMLFile", "set=set\nrow=row\nitem=item\nname=name\n")),
    Job("query to JSON", QUERY + target("JSONFile")),
    Job("query to spreadsheet", QUERY + target("ExcelFile")),
    Job("query to HTML", QUERY + target("HtmlFile", "PrologueFile=head.html\n")),
    Job("query to RTF", QUERY + target("RTFFile")),
    Job("text to database table", TEXT.replace("in.csv", "in.txt") + "Delimiter=tab\n" + table(),
        targets=(), tables=(("target.db", "item"),)),
    Job("own driver to text", DRIVER + target("TextFile")),
    Job("own driver's blocks to JSON", DRIVER.replace("{words}", ";Short=1;NoTotal=1{words}") +
        target("JSONFile")),
    Job("query to own driver", DRIVER.replace("{words}", "") + OWN_TABLE, targets=(),
        tables=((None, "store"),)),
    Job("system steps", SYSTEM, targets=("out", "moved.txt", "written.txt", *MOVED),
        in_place=("written.txt",)),
    Job("call of a web server", system(1, "HttpCall", URL="127.0.0.1", Port="{port}",
                                       Parameters="/redirect/1?{run}"), targets=(), called=True),
]

# What edition 2 alone has.
NEWER = [
    Job("CSV rejects", TEXT.replace("in.csv", "bad.csv") + "OnBadRow=Reject\nRejectFile=rejects\n" +
        target("TextFile"), targets=("out", "rejects"), in_place=("rejects",)),
    Job("UTF-16 to code page", TEXT.replace("in.csv", "in.utf16") +
        target("TextFile", "Encoding=CP1252\nUnmappable=Replace\n")),
    Job("widths to widths", TEXT.replace("in.csv", "in.wid") + "Widths=6,12,10\n" +
        target("TextFile", "Widths=6,14,12\n")),
    Job("standard input to fixed width", TEXT.replace("in.csv", "STDIN").replace("STDIN", "CONSOLE")
        + target("TextFile", "FixedWidth=1\n"), stdin="in.csv"),
    Job("appending", TEXT + target("TextFile", "Overwrite=0\n")),
    Job("rows written one by one", TEXT + target("JSONFile", "Form=Lines\nWriteBuffer=0\n")),
    Job("include, query file, XML tags", "Step 1\nSource\n@include part.inc\n" + SQLITE +
        target("XMLFile", "FieldIsTag=1\n")),
    Job("database into new tables", "Step 1\nSource\nType=Database\n" + SQLITE +
        "Tables=item,other\n" + table("SQLite3;Database=new.db").replace("item", "$TABLE$") +
        "CreateTable=1\n", targets=(), tables=(("new.db", "item"), ("new.db", "other"))),
    Job("query to own driver as literals", DRIVER.replace("{words}", "") + OWN_TABLE +
        "InsertMode=Literal\nInsertRows=5\n", targets=(), tables=((None, "store"),)),
    Job("two steps with a log", TWO_STEPS, targets=("first", "out")),
    Job("a failed step does not end the run", TWO_STEPS, targets=("first", "out"),
        globals="StopOnError=0\n"),
]

# Names, types and dialects that edition 1 does not take as they stand.
JOBS = [*EITHER, *NEWER, *(dataclasses.replace(job, edition=1) for job in EITHER)]
