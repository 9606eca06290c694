#!/usr/bin/env python3
"""What the built program does when the world is against it: hostile job files, full disks, closed
pipes, strange arguments. Runs on Linux; usage: robustness_test.py PROGRAM [unittest arguments]."""
import os
import pathlib
import resource
import signal
import subprocess
import sys
import tempfile
import unittest

PROGRAM = None
COPY = "Step 1\nSource\nType=TextFile\nName={source}\nTarget\nType=TextFile\nName={target}\n"


class Scene(unittest.TestCase):
    """A scratch folder and jobs that run in it."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name)

    def write(self, name, data):
        (self.path / name).write_bytes(data if isinstance(data, bytes) else data.encode())

    def run_job(self, job, *arguments, **options):
        if job is not None:
            self.write("job.qpr", job)
        environment = options.pop("env", os.environ | {"LC_ALL": "C.UTF-8"})
        return subprocess.run([PROGRAM, "-config=job.qpr", "-silent", *arguments], cwd=self.path,
                              capture_output=True, timeout=120, env=environment, **options)

    def assert_ends(self, result, status, output):
        self.assertEqual((result.returncode, result.stdout), (status, output), result.stderr)


class Robustness(Scene):
    def test_job_file_missing_or_unusable(self):
        missing = (b"Could not find or load configuration file 'job.qpr'. Use -config command line "
                   b"switch to define it. Default name is 'quillon.qpr'.\n")
        self.assert_ends(self.run_job(None), 2, missing)
        self.assert_ends(self.run_job(""), 0, b"")
        os.mkdir(self.path / "folder")
        self.assert_ends(self.run_job(None, "-config=folder"), 2,
                         b"Error loading configuration file: Could not open file for reading: "
                         b"Is a directory\n")

    def test_binary_and_odd_job_files(self):
        start = b"Incorrect configuration file. 'Step #' clause expected.\n"
        self.assert_ends(self.run_job(bytes(range(256)) * 50), 2, start)
        self.assert_ends(self.run_job(b"\0Step 1\nSource\n"), 2, start)
        # Lone carriage returns do not end a line, so all is one step head.
        self.assert_ends(self.run_job(b"Step 1\rSource\rType=TextFile\r"), 2,
                         b"Incorrect type for source ''.\n")
        self.write("in.txt", "a\n1\n")
        job = COPY.format(source="in.txt", target="out.txt")
        self.assert_ends(self.run_job(job + "Note=" + "x" * 1_000_000 + "\n"), 0, b"")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"1\r\n")

    def test_huge_job_file_is_read_to_its_limit(self):
        self.write("in.txt", "a\n1\n")
        filler = "; a comment that fills the file\n" * 3_200_000
        result = self.run_job(COPY.format(source="in.txt", target="out.txt") + filler)
        self.assert_ends(result, 0, b"")
        # The comment is 32 characters long: 16 MiB hold the job and 524 thousand of them.
        self.assertRegex(result.stderr, rb"^Warning: 'job.qpr' was read up to line 52429\d\. "
                                        rb"26757\d\d lines after it were left out\.\n$")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"1\r\n")

    def test_includes_of_itself_and_of_a_folder(self):
        self.assert_ends(self.run_job("Globals\n@include job.qpr\n"), 2,
                         b"Incorrect configuration file item: 'Globals'. name=value format "
                         b"expected. Line 2.\n")
        self.write("in.txt", "a\n1\n")
        os.mkdir(self.path / "folder")
        job = "@include folder\n" + COPY.format(source="in.txt", target="out.txt")
        self.assert_ends(self.run_job(job), 0, b"")

    def test_source_is_a_folder(self):
        job = COPY.format(source=".", target="out.txt")
        self.assert_ends(self.run_job(job), 2,
                         b"Could not open file for reading: Is a directory\n")
        self.assertFalse((self.path / "out.txt").exists())

    def test_source_is_a_pipe(self):
        job = COPY.format(source="/dev/stdin", target="out.txt")
        self.assert_ends(self.run_job(job, input=b"a\n1\n22\n"), 0, b"")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"1\r\n22\r\n")

    def test_full_disk(self):
        self.write("in.txt", "a\n1\n")
        result = self.run_job(COPY.format(source="in.txt", target="/dev/full"))
        self.assert_ends(result, 2, b"")
        self.assertEqual(result.stderr,
                         b"Could not write to file '/dev/full': No space left on device\n")

    def start_job(self, job, **options):
        """Runs a job beside the test; a run that never ends is ended with it."""
        self.write("job.qpr", job)
        process = subprocess.Popen([PROGRAM, "-config=job.qpr", "-silent"], cwd=self.path,
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
                result = self.run_job(job.format(source="in.txt", target="/dev/stdout"))
                self.assert_ends(result, 0, rows)
                # The job waits for the reader, who comes late.
                writer = self.start_job(job.format(source="in.txt", target="fifo"))
                self.assertRaises(subprocess.TimeoutExpired, writer.wait, 0.3)
                self.assertEqual((self.path / "fifo").read_bytes(), rows)
                self.assertEqual(writer.wait(timeout=60), 0)

    def test_target_that_is_standard_output_in_a_file(self):
        self.write("in.txt", "a\n1\n")
        self.write("out.txt", "old\r\n")
        with (self.path / "out.txt").open("ab") as out:
            process = self.start_job(COPY.format(source="in.txt", target="/dev/stdout"), stdout=out)
            self.assertEqual(process.wait(timeout=60), 0)
        self.assertEqual((self.path / "out.txt").read_bytes(), b"old\r\n1\r\n")

    def test_reader_of_the_target_that_stops_ends_the_run(self):
        self.write("in.txt", "a\n" + "123456789\n" * 200_000)
        process = self.start_job(COPY.format(source="in.txt", target="/dev/stdout"),
                                 stdout=subprocess.PIPE)
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual(process.wait(timeout=60), 2)
        self.assertEqual(process.stderr.read(),
                         b"Could not write to file '/dev/stdout': Broken pipe\n")

    def test_target_whose_end_cannot_be_found_is_not_written(self):
        self.write("in.txt", "a\n1\n")
        self.assert_ends(self.run_job(COPY.format(source="in.txt", target="/proc/self/mem")), 2,
                         b"dFile::CheckUnicode could not read the file [5].\n"
                         b"Could not open file for writing: Invalid argument\n")

    def test_disk_that_fills_leaves_whole_lines(self):
        self.write("in.txt", "a\n" + "123456789\n" * 1000)
        limit = 4096 + 5
        result = self.run_job(COPY.format(source="in.txt", target="out.txt"), preexec_fn=lambda:
                              resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
        self.assertEqual(result.returncode, 2)
        line = b"123456789\r\n"
        self.assertEqual((self.path / "out.txt").read_bytes(), line * (limit // len(line)))

    def test_read_only_target(self):
        self.write("in.txt", "a\n1\n")
        self.write("out.txt", "kept")
        os.chmod(self.path / "out.txt", 0o444)
        os.chmod(self.path, 0o755)
        job = COPY.format(source="in.txt", target="out.txt")
        if os.geteuid() == 0:  # root may write anything: run as somebody who may not
            self.write("job.qpr", job)
            result = self.run_job(None, user=65534, group=65534)
        else:
            result = self.run_job(job)
        self.assert_ends(result, 2, b"Could not open file for writing: Permission denied\n")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"kept")

    def test_closed_output_pipe_ends_the_run_quietly(self):
        self.write("in.txt", "a\n" + "123456789\n" * 200_000)
        self.write("job.qpr", COPY.format(source="in.txt", target="CONSOLE"))
        # A parent that ignores nothing: the program itself must see to it.
        with subprocess.Popen([PROGRAM, "-config=job.qpr"], cwd=self.path, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, preexec_fn=lambda:
                              signal.signal(signal.SIGPIPE, signal.SIG_DFL)) as process:
            process.stdout.readline()
            process.stdout.close()
            self.assertEqual(process.wait(timeout=120), 2)
            self.assertEqual(process.stderr.read(), b"")

    def test_arguments_that_are_not_utf8_name_files(self):
        self.write(b"in-\xff.txt".decode("utf-8", "surrogateescape"), "a\n1\n")
        self.write("job.qpr", "Step 1\nSource\nType=TextFile\nName=in.txt\nTarget\n"
                              "Type=TextFile\nName=$OUT$\n")
        self.write("in.txt", "a\n1\n")
        result = subprocess.run([PROGRAM.encode(), b"-config=job.qpr", b"-silent",
                                 b"$OUT$=out-\xff\xc3.txt", b"-Log=log-\xfe.txt"],
                                cwd=self.path, capture_output=True, timeout=120)
        self.assertEqual(result.returncode, 0, result.stdout)
        names = os.listdir(os.fsencode(self.path))
        self.assertIn(b"out-\xff\xc3.txt", names)
        self.assertIn(b"log-\xfe.txt", names)

    def test_query_without_columns(self):
        job = ("Step 1\nSource\nType=DatabaseQuery\n"
               'ConnectString="Driver=SQLite3;Database=data.db"\nQuery=create table t(a)\n'
               "Target\nType=TextFile\nName=out.txt\n")
        result = self.run_job(job)
        self.assert_ends(result, 0, b"")
        self.assertEqual(result.stderr, b"")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"")

    def test_fixed_width_from_a_pipe_loses_nothing(self):
        job = COPY.format(source="/dev/stdin", target="out.txt") + "FixedWidth=1\n"
        self.assert_ends(self.run_job(job, input=b"a\tb\n1\t2\n3\t4\n"), 0, b"")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"12\r\n34\r\n")

    def test_job_file_from_a_pipe(self):
        self.write("in.txt", "a\n1\n")
        job = COPY.format(source="in.txt", target="out.txt").encode()
        self.assert_ends(self.run_job(None, "-config=/dev/stdin", input=job), 0, b"")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"1\r\n")

    def test_two_writers_of_one_file(self):
        self.write("in.txt", "a\n1\n")
        job = COPY.format(source="in.txt", target="out.txt") + "Settings\nLog=out.txt\n"
        self.assert_ends(self.run_job(job), 2, b"")
        self.assertRegex((self.path / "out.txt").read_bytes(),
                         rb"> Could not open file for writing: Resource temporarily unavailable")

    def test_reading_that_fails_is_told_of(self):
        job = ("Step 1\nSource\nType=DatabaseQuery\n"
               'ConnectString="Driver=SQLite3;Database=data.db;StepAPI=1"\n'
               "Query=select abs(x) from (select 1 as x union all "
               "select -9223372036854775807 - 1)\nTarget\nType=TextFile\nName=out.txt\n")
        result = self.run_job(job)
        self.assert_ends(result, 0, b"")
        self.assertRegex(result.stderr, rb"^Warning: reading from the database failed: .*overflow")
        self.assertEqual((self.path / "out.txt").read_bytes(), b"1\r\n")

    def test_lists_of_drivers_and_data_sources(self):
        # What the system knows is in the way; the drivers are always those of the system.
        self.write("odbc.ini", "[Sales]\nDriver=SQLite3\n[Under]\nDriver=Own driver\n")
        job = ("Globals\nOverwrite=1\nSystem=0\nStep 1\nSource\nType=ODBCDataSourcesList\n"
               "Target\nType=TextFile\nEncoding=UTF8\nName=sources.txt\n"
               "Step 2\nSource\nType=ODBCDriverList\nTarget\nType=TextFile\nName=drivers.txt\n")
        environment = os.environ | {"LC_ALL": "C.UTF-8", "ODBCINI": str(self.path / "odbc.ini")}
        self.assert_ends(self.run_job(job, env=environment), 0, b"")
        self.assertEqual((self.path / "sources.txt").read_text("utf-8-sig").splitlines(),
                         ["Sales\tUser\tSQLite3", "Under\tUser\tOwn driver"])
        drivers = {line.split("\t")[0]: line.split("\t")[1:]
                   for line in (self.path / "drivers.txt").read_text().splitlines()}
        library, version, attributes = drivers["SQLite3"]
        self.assertRegex(library, r"libsqlite3odbc\.so$")
        self.assertRegex(version, r"^0\.\d+$")
        self.assertIn(f"Driver={library};", attributes)

    def test_values_beyond_the_basic_plane_stay_in_their_literals(self):
        # The low bytes of U+19C20 are a quote and a blank, should a driver manager cut them off.
        job = ('Globals\nConnectString="Driver=SQLite3;Database=data.db"\nEncoding=UTF8\n'
               "Step 1\nSource\nType=DatabaseQuery\nQuery=create table t as select "
               "char(128512) || char(105504) || '||(select 1)||' || char(105504) as a, 1 as b\n"
               "Step 2\nSource\nType=DatabaseTable\nTable=t\n"
               "Target\nType=DatabaseTable\nTable=t\n"
               "Step 3\nSource\nType=DatabaseTable\nTable=t\n"
               "Target\nType=TextFile\nName=out.txt\n")
        self.assertEqual(self.run_job(job).returncode, 0)
        value = "\U0001F600\U00019C20||(select 1)||\U00019C20\t1"
        self.assertEqual((self.path / "out.txt").read_text("utf-8-sig").splitlines(), [value] * 2)

    def test_long_lines_of_percent_signs(self):
        self.write("in.txt", "a\n" + "%" * 4_000_000 + "\n")
        result = self.run_job(COPY.format(source="in.txt", target="CONSOLE"))
        self.assert_ends(result, 0, b"%" * 2_000_000 + b"\r\n")


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

    def run_targets(self, source, **options):
        """Runs a job of one step for each kind and yields its kind, result and file content."""
        for kind, settings in self.KINDS.items():
            result = self.run_job(f"Step 1\nSource\n{source}Target\nType={kind}\nName=out\n"
                                  f"Overwrite=1\n{settings}", **options)
            yield kind, result, (self.path / "out").read_bytes()

    def test_disk_that_fills_at_any_point(self):
        self.write("in.txt", "t\tname\ttype\tsize\n" + "t\tprice\tnumeric\t9\n" * 4)
        source = "Type=TextFile\nName=in.txt\n"
        whole = {kind: content for kind, result, content in self.run_targets(source)}
        for limit in (3, 50, 300, 1000, *(len(content) - 1 for content in whole.values())):
            options = {"preexec_fn": lambda limit=limit:
                       resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))}
            for kind, result, content in self.run_targets(source, **options):
                if len(whole[kind]) <= limit:
                    continue
                with self.subTest(kind, limit=limit):
                    self.assert_ends(result, 2, b"")
                    self.assertEqual(result.stderr,
                                     b"Could not write to file 'out': File too large\n")
                    self.assertTrue(whole[kind].startswith(content))

    def test_no_columns(self):
        query = ('Type=DatabaseQuery\nConnectString="Driver=SQLite3;Database=data.db"\n'
                 "Query=create table if not exists t(a)\n")
        for kind, result, content in self.run_targets(query):
            with self.subTest(kind):
                self.assert_ends(result, 0, b"")
                self.assertEqual(result.stderr, b"")

    def test_thousand_columns(self):
        names = "\t".join(f"column{i}" for i in range(1000))
        values = "\t".join(f"value{i};" for i in range(1000))
        self.write("in.txt", f"{names}\n{values}\n{values}\n")
        for kind, result, content in self.run_targets("Type=TextFile\nName=in.txt\n"):
            with self.subTest(kind):
                self.assert_ends(result, 0, b"")
                found = [content.count(b"value%d;" % i) for i in (0, 500, 999)]
                self.assertEqual(found, [0] * 3 if kind == "DDLScript" else [2] * 3)

    def test_value_of_20_megabytes(self):
        self.write("in.txt", "a\tb\tc\nx\t" + "<'>/" * 5_000_000 + "\tz\n")
        escaped = {"SQLScript": b"<''>/", "JSONFile": b"<'>\\/"} | dict.fromkeys(
            ("XMLFile", "ExcelFile", "HtmlFile"), b"&lt;&apos;&gt;/")
        for kind, result, content in self.run_targets("Type=TextFile\nName=in.txt\n"):
            with self.subTest(kind):
                self.assert_ends(result, 0, b"")
                self.assertEqual(content.count(escaped.get(kind, b"<'>/")), 5_000_000)


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
