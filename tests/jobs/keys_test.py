#!/usr/bin/env python3
"""What the program makes of its tables of keys: the committed page and completion scripts are
what it prints, and no good job raises a finding."""
import pathlib
import shutil
import subprocess
import sys

TESTS = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TESTS / "support"))
from program import Scene, run, run_tests  # noqa: E402

ROOT = TESTS.parent
# Whole jobs that are right in all their parts, beside the examples.
GOOD = ("database-content", "database-metadata", "edition2-job-file", "html", "json", "no-rows",
        "query-values", "standard-input", "text-fixed-width", "text-quotation")


# What their comments say to give along, beside what "args" holds.
GIVEN = {"nightly-files": ("$HOST$=localhost", "$PORT$=80", "$DATE$=day", "$OLD$=day"),
         "copy-to-sqlite": ("$SALES_DB$=DSN=sales",),
         "quick": ("-Type=DatabaseQueryToTextFile", "-DSN=sales", "-Query=select 1", "-Output=o")}


class Keys(Scene):
    def test_committed_pages_are_those_that_the_program_prints(self):
        for word, path in (("keys", "docs/keys.md"), ("bash", "completion/quillon.bash"),
                           ("powershell", "completion/quillon.ps1")):
            with self.subTest(path):
                self.assert_ends(run(self.path, f"-help={word}"), 0, (ROOT / path).read_bytes())

    def test_good_jobs_raise_no_finding(self):
        jobs = list((ROOT / "examples").glob("*/*.qpr")) + [
            TESTS / "jobs" / name / "job.qpr" for name in GOOD]
        self.assertGreaterEqual(len(jobs), 20)
        for job in jobs:
            with self.subTest(job.parent.name):
                folder = self.path / job.parent.name
                shutil.copytree(job.parent, folder, dirs_exist_ok=True)
                arguments = job.parent / "args"
                lines = arguments.read_text().splitlines() if arguments.exists() else []
                given = GIVEN.get(job.stem, GIVEN.get(job.parent.name, ()))
                self.assert_ends(
                    run(folder, f"-config={job.name}", "-check", "-silent", *given, *lines))

    def test_completion_offers_switches_and_words(self):
        script = (ROOT / "completion/quillon.bash").read_text()
        for typed, offered in (("-che", "-check -check=connect"), ("-help=JSON", "JSONFile"),
                               ("-help=Copy", "CopyFile CopyFolder"), ("-conf", "-config=")):
            line = f"quillon {typed}"
            said = subprocess.run(
                ["bash", "-c", f'{script}\ncompopt() {{ :; }}\nCOMP_LINE="{line}"\n'
                 f'COMP_POINT={len(line)}\n_quillon\necho "${{COMPREPLY[*]}}"'],
                capture_output=True, check=True, text=True).stdout
            self.assertEqual(said.strip(), offered)


if __name__ == "__main__":
    run_tests(__doc__)
