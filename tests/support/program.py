"""What the test scripts share: their command line, and runs of the program under test.

    SCRIPT [--windows] [-k PATTERN] COMMAND...

COMMAND is the program, with its launcher if it needs one; --windows says that it is the Windows
one; -k selects tests by a part of their name."""
import argparse
import os
import pathlib
import subprocess
import sys
import tempfile
import typing
import unittest

WINDOWS = "--windows" in sys.argv
COMMAND = []
# What drivers lose is none of the program's business.
LEAKS = f"suppressions={pathlib.Path(__file__).with_name('driver_leaks.txt')}:print_suppressions=0"


class Ended(typing.NamedTuple):
    """A program that has ended."""
    status: int
    output: bytes
    errors: bytes


def parse(description, *folders):
    """Reads the command line, which may name folders in front of the command."""
    parser = argparse.ArgumentParser(description=description,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    for folder in folders:
        parser.add_argument(folder, type=pathlib.Path)
    parser.add_argument("command", nargs="+", help="the program, with its launcher if it needs one")
    parser.add_argument("--windows", action="store_true", help="the program is the Windows one")
    parser.add_argument("-k", action="append", default=[], help="only tests of such names")
    options = parser.parse_args()
    COMMAND[:] = [*options.command[:-1], os.path.abspath(options.command[-1])]
    return options


def run_tests(description):
    """Runs the tests of the script that calls."""
    selected = [word for pattern in parse(description).k for word in ("-k", pattern)]
    unittest.main(argv=[sys.argv[0], *selected])


def run(folder, *arguments, environment=None, **options):
    """Runs the program in a folder. Options are those of subprocess.run."""
    if "input" not in options:
        options.setdefault("stdin", subprocess.DEVNULL)
    # Through files: a launcher's background process may hold on to a pipe for long.
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
        ended = subprocess.run(  # system messages in English
            [*COMMAND, *arguments], cwd=folder, timeout=120,
            env=os.environ | {"LC_ALL": "C.UTF-8", "LSAN_OPTIONS": LEAKS} | (environment or {}),
            **{"stdout": output, "stderr": errors} | options)
        output.seek(0)
        errors.seek(0)
        return Ended(ended.returncode, ended.stdout or output.read(), ended.stderr or errors.read())


class Scene(unittest.TestCase):
    """A scratch folder, and jobs that run in it."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = pathlib.Path(folder.name)

    def write(self, name, data="text"):
        path = self.path / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data if isinstance(data, bytes) else data.encode())
        return path

    def run_job(self, job, *arguments, **options):
        """Runs a job; text gets a byte-order mark, None leaves the job file as it is."""
        if job is not None:
            self.write("job.qpr", job if isinstance(job, bytes) else job.encode("utf-8-sig"))
        return run(self.path, "-config=job.qpr", "-silent", *arguments, **options)

    def assert_ends(self, ended, status=0, output=b"", errors=b""):
        self.assertEqual(ended, (status, output, errors))
