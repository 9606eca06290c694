#!/usr/bin/env python3
"""What the built program does when the world is against it: hostile job files, full disks, pipes
that are closed or do not wait, strange arguments. Runs on Linux."""
import json
import os
import pathlib
import resource
import select
import signal
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from program import COMMAND, Scene, run, run_tests  # noqa: E402

COPY = "Step 1\nSource\nType=TextFile\nName={}\nTarget\nType=TextFile\nName={}\n"
NOBODY = 65534


def limit_files(size):
    """For a process to come: its files can take so many bytes and no more, unlike its messages."""
    return {"stderr": subprocess.PIPE,
            "preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))}


class Robustness(Scene):
    def setUp(self):
        super().setUp()
        self.write("in.txt", "a\n1\n")

    def assert_copies(self, job, *arguments, content=b"1\r\n", **options):
        """The job ends without a word and leaves this in out.txt."""
        self.assert_ends(self.run_job(job, *arguments, **options))
        self.assertEqual((self.path / "out.txt").read_bytes(), content)
        (self.path / "out.txt").unlink()

    def test_job_files(self):
        os.mkdir(self.path / "folder")
        start = b"Incorrect configuration file. 'Step #' clause expected.\n"
        for job, arguments, said in (
                (None, (), b"Could not find or load configuration file 'job.qpr'. Use -config "
                 b"command line switch to define it. Default name is 'quillon.qpr'.\n"),
                (None, ("-config=folder",), b"Error loading configuration file: Could not open "
                 b"file for reading: Is a directory\n"),
                (bytes(range(256)) * 50, (), start), (b"\0Step 1\nSource\n", (), start),
                # Lone carriage returns do not end a line, so all is one step head.
                (b"Step 1\rSource\rType=TextFile\r", (), b"Incorrect type for source ''.\n"),
                ("Globals\n@include job.qpr\n", (), b"Incorrect configuration file item: "
                 b"'Globals'. name=value format expected. Line 2.\n")):
            with self.subTest(job and job[:20]):
                self.assert_ends(self.run_job(job, *arguments), 2, said)
        self.assert_ends(self.run_job(""))
        self.assert_copies(COPY.format("in.txt", "out.txt") + "Note=" + "x" * 1_000_000 + "\n")
        self.assert_copies("@include folder\n" + COPY.format("in.txt", "out.txt"))

    def test_huge_job_file_is_read_to_its_limit(self):
        filler = "; a comment that fills the file\n" * 3_200_000
        ended = self.run_job((COPY.format("in.txt", "out.txt") + filler).encode())
        # The comment is 32 characters long: 16 MiB hold the job and 524 thousand of them.
        self.assertRegex(ended.errors, rb"^Warning: 'job.qpr' was read up to line 52429\d\. "
                                       rb"26757\d\d lines after it were left out\.\n$")
        self.assert_ends(ended, errors=ended.errors)
        self.assertEqual((self.path / "out.txt").read_bytes(), b"1\r\n")

    def test_source_that_cannot_be_read(self):
        self.assert_ends(self.run_job(COPY.format(".", "out.txt")), 2,
                         b"Could not open file for reading: Is a directory\n")
        self.assertFalse((self.path / "out.txt").exists())
        self.write("in.txt", "a\tb\n1\t2\n3\n")
        keys = "in.txt\nDialect=CSV\nDelimiter=tab\nOnBadRow=Stop"
        self.assert_ends(self.run_job(COPY.format(keys, "out.txt")), 2,
                         b"Line 3: 1 field where 2 columns are.\n")

    def test_pipes_as_files(self):
        copy = COPY.format("/dev/stdin", "out.txt")
        self.assert_copies(copy, input=b"a\n1\n22\n", content=b"1\r\n22\r\n")
        self.assert_copies(copy + "FixedWidth=1\n", input=b"a\tb\n1\t2\n3\t4\n",
                           content=b"12\r\n34\r\n")
        for header, out in (("1", b"ab \r\n12 \r\n344\r\n"), ("0", b"12 \r\n344\r\n")):
            self.assert_copies(copy + f"FixedWidth=1\nHeader={header}\n", "-Edition=2",
                               input=b"a,b\n1,2\n3,44\n", content=out)
        self.assert_copies(None, "-config=/dev/stdin",
                           input=COPY.format("in.txt", "out.txt").encode())

    def test_full_disk(self):
        self.assert_ends(self.run_job(COPY.format("in.txt", "/dev/full")), 2, errors=b"Could not "
                         b"write to file '/dev/full': No space left on device\n")
        self.run_job(COPY.format("in.txt", "/dev/full"), "-Edition=2", "-report=report.json")
        step, = json.loads((self.path / "report.json").read_text())["steps"]
        self.assertEqual((step["bytes_written"], step["files"]),
                         (0, [{"name": "/dev/full", "bytes": 0}]))
        self.write("in.txt", "a\n" + "123456789\n" * 1000)
        limit, line = 4096 + 5, b"123456789\r\n"
        ended = self.run_job(COPY.format("in.txt", "out.txt"), **limit_files(limit))
        self.assertEqual(ended.status, 2)
        self.assertEqual((self.path / "out.txt").read_bytes(), line * (limit // len(line)))

    def start_job(self, job, **options):
        """Runs a job beside the test; a run that never ends is ended with it."""
        self.write("job.qpr", job)
        process = subprocess.Popen([*COMMAND, "-config=job.qpr", "-silent"], cwd=self.path,
                                   stderr=subprocess.PIPE, **options)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def test_target_that_is_a_pipe_gets_what_a_new_file_gets(self):
        self.write("in.txt", b"a\n\xe9\n")
        os.mkfifo(self.path / "fifo")
        rows = b"\xef\xbb\xbf\xc3\xa9\r\n"
        for overwrite in ("Overwrite=0\n", "Overwrite=1\n"):
            job = COPY + "Encoding=UTF8\n" + overwrite
            with self.subTest(overwrite):
                ended = self.run_job(job.format("in.txt", "/dev/stdout"), stdout=subprocess.PIPE)
                self.assert_ends(ended, 0, rows)
                # The job waits for the reader, who comes late.
                writer = self.start_job(job.format("in.txt", "fifo"))
                self.assertRaises(subprocess.TimeoutExpired, writer.wait, 0.3)
                self.assertEqual((self.path / "fifo").read_bytes(), rows)
                self.assertEqual(writer.wait(timeout=60), 0)

    def test_target_that_is_standard_output_in_a_file(self):
        self.write("out.txt", "old\r\n")
        with (self.path / "out.txt").open("ab") as out:
            process = self.start_job(COPY.format("in.txt", "/dev/stdout"), stdout=out)
            self.assertEqual(process.wait(timeout=60), 0)
        self.assertEqual((self.path / "out.txt").read_bytes(), b"old\r\n1\r\n")

    def test_reader_of_the_target_that_stops_ends_the_run(self):
        self.write("in.txt", "a\n" + "123456789\n" * 200_000)
        process = self.start_job(COPY.format("in.txt", "/dev/stdout"), stdout=subprocess.PIPE)
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual(process.wait(timeout=60), 2)
        self.assertEqual(process.stderr.read(),
                         b"Could not write to file '/dev/stdout': Broken pipe\n")

    def test_target_whose_end_cannot_be_found_is_not_written(self):
        self.assert_ends(self.run_job(COPY.format("in.txt", "/proc/self/mem")), 2,
                         b"dFile::CheckUnicode could not read the file [5].\n"
                         b"Could not open file for writing: Invalid argument\n")

    def test_failure_without_words_does_not_repeat_an_earlier_one(self):
        job = "Globals\nStopOnError=0\nStep 0\nSystem\nCommand=sing\n"
        ended = self.run_job(job + COPY.format("in.txt", "/dev/full"))
        self.assertEqual((ended.status, ended.output),
                         (2, b"System step contains unsupported command 'sing'\n"))

    def test_read_only_target(self):
        os.chmod(self.write("out.txt", "kept"), 0o444)
        os.chmod(self.path, 0o755)
        self.write("job.qpr", COPY.format("in.txt", "out.txt"))
        # Root may write anything.
        user = {"user": NOBODY, "group": NOBODY} if os.geteuid() == 0 else {}
        self.assert_ends(self.run_job(None, **user), 2,
                         b"Could not open file for writing: Permission denied\n")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"kept")

    def test_closed_standard_output_refuses_data(self):
        closed = {"preexec_fn": lambda: os.close(1)}
        self.assertEqual(self.run_job(COPY.format("in.txt", "CONSOLE"), **closed).status, 2)
        self.assertEqual(self.run_job(COPY.format("in.txt", "out.txt"), **closed).status, 0)

    def test_output_that_nobody_reads_ends_the_run_quietly(self):
        self.write("in.txt", "a\n" + "123456789\n" * 200_000)
        self.write("job.qpr", COPY.format("in.txt", "CONSOLE"))
        with open("/dev/full", "wb") as full:
            ended = subprocess.run([*COMMAND, "-config=job.qpr", "-silent"], cwd=self.path,
                                   stdout=full, stderr=subprocess.PIPE, timeout=120)
            self.assertEqual((ended.returncode, ended.stderr), (2, b""))
        # A parent that ignores nothing: the program itself must see to it.
        with subprocess.Popen([*COMMAND, "-config=job.qpr"], cwd=self.path, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, preexec_fn=lambda:
                              signal.signal(signal.SIGPIPE, signal.SIG_DFL)) as process:
            process.stdout.readline()
            process.stdout.close()
            self.assertEqual(process.wait(timeout=120), 2)
            self.assertEqual(process.stderr.read(), b"")

    def test_output_that_does_not_wait_loses_nothing(self):
        self.write("in.txt", "a\n" + "123456789\n" * 20_000)
        self.write("job.qpr", COPY.format("in.txt", "CONSOLE"))
        reader, writer = os.pipe()
        os.set_blocking(writer, False)
        with subprocess.Popen([*COMMAND, "-config=job.qpr", "-silent"], cwd=self.path,
                              stdout=writer) as process, open(reader, "rb") as opened:
            # Read only when no more fits in and the program has found that out.
            state = pathlib.Path(f"/proc/{process.pid}/stat")
            while (select.select([], [writer], [], 0)[1] or ") S" not in state.read_text()) and (
                    process.poll() is None):
                pass
            os.close(writer)
            self.assertEqual(opened.read(), b"123456789\r\n" * 20_000)
            self.assertEqual(process.wait(timeout=120), 0)

    def test_arguments_that_are_not_utf8_name_files(self):
        self.write("job.qpr", COPY.format("in.txt", "$OUT$"))
        self.assert_ends(run(os.fsencode(self.path), b"-config=job.qpr", b"-silent",
                             b"$OUT$=out-\xff\xc3.txt", b"-Log=log-\xfe.txt"))
        names = os.listdir(os.fsencode(self.path))
        self.assertIn(b"out-\xff\xc3.txt", names)
        self.assertIn(b"log-\xfe.txt", names)

    def test_two_writers_of_one_file(self):
        job = COPY.format("in.txt", "out.txt") + "Settings\nLog=out.txt\n"
        self.assert_ends(self.run_job(job), 2)
        self.assertRegex((self.path / "out.txt").read_bytes(),
                         rb"> Could not open file for writing: Resource temporarily unavailable")

    def test_lists_of_drivers_and_data_sources(self):
        # What the system knows is in the way; the drivers are always those of the system.
        self.write("odbc.ini", "[Sales]\nDriver=SQLite3\n[Under]\nDriver=Own driver\n")
        job = ("Globals\nOverwrite=1\nSystem=0\nStep 1\nSource\nType=ODBCDataSourcesList\n"
               "Target\nType=TextFile\nEncoding=UTF8\nName=sources.txt\n"
               "Step 2\nSource\nType=ODBCDriverList\nTarget\nType=TextFile\nName=drivers.txt\n")
        self.assert_ends(self.run_job(job, environment={"ODBCINI": str(self.path / "odbc.ini")}))
        self.assertEqual((self.path / "sources.txt").read_text("utf-8-sig").splitlines(),
                         ["Sales\tUser\tSQLite3", "Under\tUser\tOwn driver"])
        self.assertRegex((self.path / "drivers.txt").read_text(),
                         r"(?m)^SQLite3\t(.*libsqlite3odbc\.so)\t0\.\d+\t.*Driver=\1;")

    def test_long_lines_of_percent_signs(self):
        self.write("in.txt", "a\n" + "%" * 4_000_000 + "\n")
        self.assert_ends(self.run_job(COPY.format("in.txt", "CONSOLE")), 0,
                         b"%" * 2_000_000 + b"\r\n")


class Targets(Scene):
    """The same for every file target."""

    KINDS = {
        "TextFile": "Header=1\nEncoding=UTF8\n",
        "SQLScript": "Table=t\nBatchSize=3\nEncoding=UTF8\n",
        "DDLScript": "Table=t\n",
        "XMLFile": "set=set\nrow=row\nitem=item\nname=name\n",
        "JSONFile": "Encoding=UTF8\n",
        "ExcelFile": "",
        "HtmlFile": "",
        "RTFFile": "",
    }

    def run_targets(self, more="", **options):
        """Copies in.txt with each kind of target and yields the kind, how the run ended and the
        file's content."""
        for kind, settings in self.KINDS.items():
            ended = self.run_job(f"{more}Step 1\nSource\nType=TextFile\nName=in.txt\nTarget\n"
                                 f"Type={kind}\nName=out\nOverwrite=1\n{settings}", **options)
            yield kind, ended, (self.path / "out").read_bytes()

    def test_disk_that_fills_at_any_point(self):
        # Names that are longer than rows: where they do not fit, rows would.
        names = "\t".join(name * 100 for name in "abcd")
        self.write("in.txt", f"{names}\n" + "t\tprice\tnumeric\t9\n" * 4)
        whole = {kind: content for kind, _, content in self.run_targets()}
        for limit in (3, 50, 300, 1000, *(len(content) - 1 for content in whole.values())):
            for more in ("", "Globals\nStopOnError=0\n"):
                for kind, ended, content in self.run_targets(more, **limit_files(limit)):
                    if len(whole[kind]) <= limit:
                        continue
                    with self.subTest(kind, limit=limit, more=more):
                        # A target that begins with a failure is not used where the run goes on.
                        self.assert_ends(ended, 0 if more and ended.status == 0 else 2, errors=(
                            b"Could not write to file 'out': File too large\n"))
                        self.assertTrue(whole[kind].startswith(content), content[-500:])

    def test_thousand_columns(self):
        names = "\t".join(f"column{i}" for i in range(1000))
        values = "\t".join(f"value{i};" for i in range(1000))
        self.write("in.txt", f"{names}\n{values}\n{values}\n")
        for kind, ended, content in self.run_targets():
            with self.subTest(kind):
                self.assert_ends(ended)
                found = [content.count(b"value%d;" % i) for i in (0, 500, 999)]
                self.assertEqual(found, [0] * 3 if kind == "DDLScript" else [2] * 3)

    def test_value_of_20_megabytes(self):
        self.write("in.txt", "a\tb\tc\nx\t" + "<'>/" * 5_000_000 + "\tz\n")
        escaped = {"SQLScript": b"<''>/", "JSONFile": b"<'>\\/"} | dict.fromkeys(
            ("XMLFile", "ExcelFile", "HtmlFile"), b"&lt;&apos;&gt;/")
        for kind, ended, content in self.run_targets():
            with self.subTest(kind):
                self.assert_ends(ended)
                self.assertEqual(content.count(escaped.get(kind, b"<'>/")), 5_000_000)


if __name__ == "__main__":
    run_tests(__doc__)
