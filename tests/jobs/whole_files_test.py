#!/usr/bin/env python3
"""Files that are whole or absent, and rows that are gathered before they are written. Runs on
Linux."""
import fcntl
import os
import pathlib
import random
import resource
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from kills import killed_at_random  # noqa: E402
from program import COMMAND, Scene, run, run_tests  # noqa: E402

ROW = b"123456789\r\n"
OLD = b"old\r\n"
PART = "out.quillon-part"
JOB = ("Globals\nOnFailure=Restore\nWriteBuffer={buffer}\nOverwrite=1\nStep #1\nSource\n"
       "Type=TextFile\nName={source}\nTarget\nType=TextFile\nName={target}\n")
SETS = ('Globals\nEdition={edition}\nStep #1\nSource\nType=Database\n'
        'ConnectString="Driver=SQLite3;Database=data.db"\nTables=$LIST$\nTarget\nType=TextFile\n'
        "Delimiter=,\nOnFailure={mode}\nEncoding=ANSI\nOneFilePerResultSet=1\nEndOfLine=LF\nHeader=0\n")


def limit_files(size):
    """For a process to come: its files can take so many bytes and no more, unlike its messages."""
    return {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE,
            "preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))}


class Killed:
    """A job that is killed again and again, its files before it and after it."""

    def __init__(self, scene, job):
        self.scene, (self.job, *self.names) = scene, job
        self.put_old()
        begin = time.monotonic()
        scene.assert_ends(scene.run_job(self.job), 0, b"")
        self.seconds = time.monotonic() - begin
        self.new = {name: scene.read(name) for name in self.names}
        self.put_old()

    def put_old(self):
        for name in self.names:
            self.scene.write(name, OLD)

    def kill(self, rng):
        self.put_old()
        killed_at_random(lambda: self.scene.start(self.job), self.seconds, rng)
        for name, new in self.new.items():
            found = self.scene.read(name)
            # The file of bad rows grows with them.
            whole = found in (OLD, new) or (name == "bad" and new.startswith(found))
            self.scene.assertTrue(whole, f"{name}: {len(found)} of {len(new)} bytes\n{self.job}")

    def finish(self):
        self.put_old()
        self.scene.assert_ends(self.scene.run_job(self.job), 0, b"")
        self.scene.assertEqual({name: self.scene.read(name) for name in self.names}, self.new)


class WholeFiles(Scene):
    def setUp(self):
        super().setUp()
        self.write("in.txt", "a\n" + "123456789\n" * 1000)

    def job(self, **values):
        return JOB.format(**{"buffer": "1M", "source": "in.txt", "target": "out"} | values)

    def read(self, name="out"):
        return (self.path / name).read_bytes()

    def start(self, job, **options):
        self.write("job.qpr", job)
        process = subprocess.Popen([*COMMAND, "-config=job.qpr", "-silent"],
                                   cwd=self.path, stderr=subprocess.PIPE, **options)
        self.addCleanup(process.__exit__, None, None, None)  # closes its pipes
        self.addCleanup(process.kill)
        return process

    def assert_restored(self, result, message, status=2):
        said = result.output + result.errors
        self.assertEqual(result.status, status, said)
        self.assertIn(message, said)
        self.assertEqual(self.read(), OLD)
        self.assertFalse((self.path / PART).exists())

    def test_success_keeps_rights_and_links(self):
        self.write("real", OLD)
        os.chmod(self.path / "real", 0o640)
        os.symlink("real", self.path / "out")
        self.assert_ends(self.run_job(self.job()), 0, b"")
        self.assertEqual(os.readlink(self.path / "out"), "real")
        self.assertEqual((self.read(), (self.path / "real").stat().st_mode & 0o777),
                         (ROW * 1000, 0o640))
        # Onto its own source, and behind what is there: both read the old file till the end.
        self.assert_ends(self.run_job(self.job(source="out") + "Overwrite=0\n"), 0, b"")
        self.assertEqual(self.read(), ROW * 1999)

    def test_failures_leave_the_old_file(self):
        self.write("out", OLD)
        query = 'Type=DatabaseQuery\nConnectString="Driver=SQLite3;Database=x.db;StepAPI=1"\nQuery='
        failing = ("select 1 union all select abs(x) from (select -9223372036854775807 - 1 as x)"
                   "\nSettings\nOnReadError=Stop\n")
        text = "Type=TextFile\nName=in.txt\n"
        limit = limit_files(5000)
        for source, more, message, options in (
                (query + failing, "", b"integer overflow", {}),
                (query + "select * from none\n", "", b"no such table", {}),
                (text + "Transform\nType=ChangeDataType\nApplyTo=x\n", "", b"", {}),
                (text, "", b"Could not write to file 'out': File too large", limit),
                (text, "Overwrite=0\n", b"Could not write to file 'out': File too large", limit),
                (text, "WriteBuffer=100\n", b"File too large", limit),
                (text, "WriteBuffer=0\n", b"File too large", limit)):
            with self.subTest(source=source, more=more):
                job = self.job().replace(text, source)
                self.assert_restored(self.run_job(job + more, **options), message)

    def test_refused_where_no_part_file_can_be(self):
        self.write("out", OLD)
        os.link(self.path / "out", self.path / "other")
        keep = b". OnFailure=Keep writes without one.\n"
        self.assert_restored(self.run_job(self.job()), b"Could not make the part file '" +
                             PART.encode() + b"': the file has several hard links" + keep)
        os.unlink(self.path / "other")
        name = "n" * 250
        self.write(name, OLD)
        result = self.run_job(self.job(target=name))
        self.assertIn(b"': File name too long" + keep, result.output)
        os.mkdir(self.path / PART)
        self.assertIn(b"': Is a directory" + keep, self.run_job(self.job()).output)
        os.rmdir(self.path / PART)
        # Not for root, who may do anything.
        who = {"user": 65534, "group": 65534} if os.geteuid() == 0 else {}
        self.write("job.qpr", self.job())
        os.chmod(self.path / "out", 0o666)
        os.chmod(self.path, 0o555)
        self.addCleanup(os.chmod, self.path, 0o755)
        self.assert_restored(self.run_job(None, **who), b"': Permission denied" + keep)
        os.chmod(self.path / "out", 0o444)
        self.assert_restored(self.run_job(None, **who),
                             b"Could not open file for writing: Permission denied\n")

    def test_others_than_regular_files_are_written_themselves(self):
        """A name that leads into a process stands for what is open there, even a regular file."""
        self.assert_ends(self.run_job(self.job(target="/dev/stdout")), 0, ROW * 1000)
        os.mkfifo(self.path / "out")
        with subprocess.Popen(["cat", "out"], cwd=self.path, stdout=subprocess.PIPE) as reader:
            self.assert_ends(self.run_job(self.job()), 0, b"")
            self.assertEqual(reader.stdout.read(), ROW * 1000)
        self.assertEqual(sorted(os.listdir(self.path)), ["in.txt", "job.qpr", "out"])

    def test_part_file_that_is_left_or_held(self):
        self.write("out", OLD)
        self.write(PART, b"left by a killed run")
        with (self.path / PART).open("ab") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            result = self.run_job(self.job())
            self.assert_ends(result, 2,
                             b"The part file '" + PART.encode() + b"' is in use by another run.\n")
            self.assertEqual((self.read(), self.read(PART)), (OLD, b"left by a killed run"))
        self.assert_ends(self.run_job(self.job()), 0, b"")
        self.assertEqual(self.read(), ROW * 1000)

    def feed(self, **values):
        """A run that has read a few rows and waits for more."""
        process = self.start(self.job(source="CONSOLE", **values), stdin=subprocess.PIPE)
        process.stdin.write(b"a\n" + b"123456789\n" * 3)
        process.stdin.flush()
        return process

    def wait_for(self, condition):
        deadline = time.monotonic() + 60
        while not condition():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)

    def test_signals_remove_the_part_file(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                self.write("out", OLD)
                process = self.feed()
                self.wait_for((self.path / PART).exists)
                process.send_signal(number)
                self.assertEqual(process.wait(timeout=60), -number)
                self.assertEqual((self.read(), (self.path / PART).exists()), (OLD, False))

    def test_rows_arrive_when_input_pauses(self):
        process = self.feed(buffer="1M", target="kept\nOnFailure=Keep")
        self.wait_for(lambda: (self.path / "kept").exists() and self.read("kept") == ROW * 3)
        process.stdin.write(b"4\n")
        process.stdin.close()
        self.assertEqual(process.wait(timeout=60), 0)
        self.assertEqual(self.read("kept"), ROW * 3 + b"4\r\n")

    def test_kills_at_random_moments(self):
        """QUILLON_KILLS: how many, QUILLON_SEED: at which moments."""
        kills, seed = (int(os.environ.get(f"QUILLON_{name}", default))
                       for name, default in (("KILLS", 60), ("SEED", 20)))
        rng = random.Random(seed)
        self.write("in.txt", "a\n" + "123456789\n" * 20_000)
        self.write("in.csv", "a,b\n" + "1,2\n3\n" * 20_000)
        tables = "".join(f"create table {name}(x); insert into {name} with recursive n(i) as (select 1 "
                         "union all select i + 1 from n where i < 9999) select i from n;"
                         for name in ("a", "b", "c"))
        subprocess.run(["sqlite3", "data.db"], cwd=self.path, check=True, input=tables.encode())
        strict = self.job(buffer="4K").replace("Globals\n", "Globals\nEdition=2\n")
        runs = [Killed(self, job) for job in (
            (self.job(buffer="4K"), "out"), (self.job(buffer="4K") + "Overwrite=0\n", "out"),
            (strict.replace("in.txt", "in.csv\nOnBadRow=Reject\nMaxRejects=50000\nRejectFile=bad"),
             "out", "bad"),
            (SETS.format(edition=2, mode="Restore").replace("$LIST$", "a,b,c") +
             "WriteBuffer=1K\nName=$TABLE$.txt\n", "a.txt", "b.txt", "c.txt"),
            *((strict.replace("Target\nType=TextFile", f"Target\nType={kind}"), "out")
              for kind in ("JSONFile", "XMLFile")))]
        for number in range(kills):
            runs[number % len(runs)].kill(rng)
        for each in runs:
            each.finish()
        self.assertEqual([name for name in os.listdir(self.path) if name.endswith("part")], [])

    def test_several_files_are_renamed_together(self):
        subprocess.run(["sqlite3", "data.db"], cwd=self.path, check=True,
                       input=b"create table a(x); insert into a values (1);"
                             b"create table b(x); insert into b values (2);"
                             b"create view slow as with recursive n(i) as (select 1 union all "
                             b"select i + 1 from n where i < 5000000) select max(i) from n;")
        sets = SETS.format(edition=2, mode="Restore").replace("$LIST$", "a,b")
        self.write("a.txt", OLD)
        self.assert_ends(self.run_job(sets + "Name=$TABLE$.txt\n"), 0, b"")
        self.assertEqual((self.read("a.txt"), self.read("b.txt")), (b"1\n", b"2\n"))
        missing = sets.replace("a,b", "a,b,none")
        self.write("a.txt", OLD)
        result = self.run_job(missing + "Name=$TABLE$.txt\n")
        self.assertEqual((result.status, self.read("a.txt")), (2, OLD))
        self.assertEqual([n for n in os.listdir(self.path) if n.endswith("part")], [])
        # A name that is taken by a folder while the rows are still moved cannot be renamed onto.
        os.unlink(self.path / "b.txt")
        process = self.start(sets.replace("a,b", "a,b,slow") + "Name=$TABLE$.txt\n")
        self.wait_for((self.path / "b.txt.quillon-part").exists)
        os.mkdir(self.path / "b.txt")
        self.assertIn(b"Could not replace file 'b.txt': Is a directory. Replaced before: 'a.txt'.",
                      process.communicate()[1])
        self.assertEqual((process.returncode, self.read("a.txt")), (2, b"1\n"))
        self.assertEqual([n for n in os.listdir(self.path) if "slow" in n or "part" in n], [])
        for mode in ("Keep", "Restore"):
            with self.subTest(mode):
                one = SETS.format(edition=2, mode=mode).replace("$LIST$", "a,b") + "Name=out\n"
                result = self.run_job(one)
                self.assertEqual(result.status, 2)
                self.assertIn(b"Two result sets would make the file 'out'. Overwrite=0 puts one "
                              b"behind the other.\n", result.errors)
                (self.path / "out").unlink(missing_ok=True)
                self.assertEqual(self.run_job(one + "Overwrite=0\n").status, 0)
                self.assertEqual(self.read(), b"1\n2\n")
                (self.path / "out").unlink()

    def test_full_disk_leaves_whole_rows_of_the_buffer(self):
        for buffer in ("0", "100", "1M"):
            for limit in (1, 11, 4096 + 5):
                with self.subTest(buffer=buffer, limit=limit):
                    result = self.run_job(
                        self.job(buffer=buffer, target="kept\nOnFailure=Keep"),
                        **limit_files(limit))
                    self.assertEqual(result.status, 2)
                    self.assertEqual(result.errors,
                                     b"Could not write to file 'kept': File too large\n")
                    self.assertEqual(self.read("kept"), ROW * (limit // len(ROW)))

    def test_standard_output_holds_data_alone(self):
        job = self.job(target="stdout\nHeader=1").replace("Globals\n", "Globals\nEdition=2\n"
                                                "MessagesTo=Output\nEncoding=ANSI\n")
        self.write("in.txt", "a\n100%%\n")
        self.write("job.qpr", job)
        result = run(self.path, "-config=job.qpr")
        self.assertEqual((result.status, result.output), (0, b"a\r\n100%%\r\n"), result)
        self.assertRegex(result.errors, rb"^Quillon .*\n\nStep #0: 1 items done")


if __name__ == "__main__":
    run_tests(__doc__)
