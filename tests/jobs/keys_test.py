#!/usr/bin/env python3
"""What the program makes of its tables of keys: the committed page and completion scripts are
what it prints, and no good job raises a finding."""
import pathlib
import re
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
QUICK = ("-Type=DatabaseQueryToTextFile", "-DSN=sales", "-Query=select 1", "-Output=o")
GIVEN = {"nightly-files": ("$HOST$=localhost", "$PORT$=80", "$DATE$=day", "$OLD$=day"),
         "plan": ("$SALES_DB$=DSN=sales", "$PARTS$=4"),
         "part": ("$SALES_DB$=DSN=sales", "$PART$=1", "$LOW$=1", "$HIGH$=2"),
         "copy-to-sqlite": ("$SALES_DB$=DSN=sales",),
         "quick": QUICK}


class Keys(Scene):
    def test_committed_pages_are_those_that_the_program_prints(self):
        for word, path in (("keys", "docs/keys.md"), ("bash", "completion/quillon.bash"),
                           ("powershell", "completion/quillon.ps1")):
            with self.subTest(path):
                self.assert_ends(run(self.path, f"-help={word}"), 0, (ROOT / path).read_bytes())

    def test_every_key_stands_in_the_manual_page(self):
        page = run(self.path, "-help=man").output.decode().replace("\\-", "-")
        keys = set(re.findall(r"^\| `(\S+)` ", (ROOT / "docs/keys.md").read_text(), re.MULTILINE))
        self.assertEqual(keys, set(re.findall(r"^\.TP\n\\fB(\S+?)\\fR", page, re.MULTILINE)))
        # A line that a value begins with a control character would be taken for a request.
        requests = set(re.findall(r"^['.]\S*", page, re.MULTILINE))
        self.assertLessEqual(requests, {".TH", ".SH", ".SS", ".TP", ".B", ".br"})

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

    def test_old_job_keeps_its_bytes_on_its_way_to_edition_2(self):
        example = ROOT / "examples" / "old-job"
        expected = {path.name: path.read_bytes() for path in (example / "expected").iterdir()}
        for job in sorted(example.glob("*.qpr")):
            with self.subTest(job.name):
                folder = self.path / job.stem
                shutil.copytree(example, folder)
                subprocess.run(["sqlite3", "data.db"], cwd=folder, check=True,
                               input=(example / "setup.sql").read_bytes())
                self.assert_ends(run(folder, f"-config={job.name}", "-silent"))
                self.assertEqual({name: (folder / name).read_bytes() for name in expected}, expected)

    def test_switches(self):
        step = "Step\nSystem\nCommand=WriteFile\nText=x\nFile="
        self.write("job.qpr", f"Globals\nEdition=2\n{step}1\n{step}2\n{step}3\n")
        names = {"1", "2", "3"}
        no_steps = "'{}' names no steps of this job, which has 3.\n"
        for arguments, status, said, made in (
                (["-only=2"], 0, "", {"2"}), (["-only=3, 1-2"], 0, "", names),
                (["-from=2"], 0, "", {"2", "3"}), (["-only=0"], 4, no_steps.format(0), set()),
                (["-only=2-4"], 4, no_steps.format("2-4"), set()),
                (["-only=2-1"], 4, no_steps.format("2-1"), set()),
                (["-from=4"], 4, no_steps.format(4), set()),
                (["-from=x"], 4, "'x' is no value of '-from'. It takes a whole number.\n",
                 set()),
                (["-only=1", "-from=1"], 4, "'-only' and '-from' exclude each other.\n", set()),
                (["-onyl=1"], 4, "'-onyl' is not a switch. Did you mean '-only'?\n", set()),
                (["-x"], 4, "'-x' is not a switch.\n", set()),
                (["-q"], 4, "'-q' is not a switch. Did you mean '-Q'?\n", set()),
                (["-Edition=1", "-onyl=1"], 0, "", names),
                (["-Edition=3"], 2, "Edition '3' is not known. Known are 1 and 2.\n", set()),
                (["-check"], 0, "", set())):
            with self.subTest(arguments):
                ended = run(self.path, "-config=job.qpr", "-silent", *arguments)
                there = {path.name for path in self.path.iterdir()} & names
                told = (ended.output + ended.errors).decode().replace("\r\n", "\n")
                self.assertEqual((ended.status, told, there), (status, said, made))
                for name in there:
                    (self.path / name).unlink()
        for arguments, status, start in (
                (["-version"], 0, b"Quillon 1."), (["-help", "-silent"], 0, b"quillon [SWITCH"),
                (["-help=jsonfile"], 0, b"Target JSONFile\n"),
                (["-help=TextFil"], 4, b"There is no help on 'TextFil'. Did you mean 'TextFile'?"),
                (["-help=the command line"], 4, b"There is no help on 'the command line'.\n"),
                # A job without a file, of edition 2 only
                ([*QUICK, "-check", "-silent"], 2, b"Could not find or load configuration file"),
                ([*QUICK, "-check", "-silent", "-Edition=2"], 0, b""),
                ([*QUICK, "-Edition=2", "-silent", "-Type=Other"], 2, b"Unsupported value 'Other'"),
                ([*QUICK, "-Edition=2", "-silent", "-config=gone"], 2, b"Could not find or load")):
            ended = run(self.path, *arguments)
            self.assertEqual(ended.status, status)
            self.assertTrue((ended.output + ended.errors).startswith(start), arguments)

    def test_what_edition_2_refuses_and_where_it_says_so(self):
        """Globals, keys of source and target, sections, switches; status and what is said."""
        self.write("in.csv", "a,b\n1,2\n")
        self.write("again.inc", "Edition=2\n")
        self.write("STDOUT")
        data, reject = "a,b\n1,2\n", "OnBadRow=Reject\nRejectFile=r\n"
        step = "Step\nSource\nType=TextFile\nName=in.csv\n{}Target\nType=TextFile\nName={}\n{}"
        for job, arguments, status, output, errors in (
                (step.format("", "o", "Settings\nLog=no/x\n"), [], 2, "",
                 "Step 1 (job.qpr:3): Could not open log file 'no/x' for writing [Could not open"),
                (step.format("", "o", ""), ["-report=no/r"], 2, "",
                 "The report 'no/r' could not be written: Could not open file for writing: "),
                ("Edition=1\n" + step.format("", "o", ""), [], 2,
                 "job.qpr:3: 'Edition' stands twice; line 2 has it already.\n", ""),
                ("@include again.inc\n" + step.format("", "o", ""), [], 2, "",
                 "again.inc:1: 'Edition' stands twice; job.qpr:2 has it already.\n"),
                (step.format("", "o", "Transform\nType=RemoveColumn\nApplyTo=1,3\n"), [], 2, "",
                 "Step 1 (job.qpr:3), transformer 1 RemoveColumn: There is no column 3; the result "
                 "set has 2.\n"),
                (2 * step.format(reject, "o", ""), [], 2, "",
                 "job.qpr:17: The RejectFile 'r' is that of the Source of step 1, too.\n"),
                (reject + step.format("", "o", "") + step.format("OnBadRow=Stop\n", "o", ""), [],
                 0, "", ""),
                (step.format("", "STDOUT", "Overwrite=0\n"), [], 0, data, ""),
                ("MessagesTo=Output\n" + step.format("", "o", ""), ["-Output=STDOUT", "-Q"], 0, data,
                 "Step #0\n  source.Type=TextFile\n  source.Name=in.csv\n"
                 "  target.Type=TextFile\n  target.Name=o\n"),
                ("MessagesTo=Output\n" + step.format("", "o", "") + step.format("", "STDOUT", ""),
                 ["-silent", "-only=1", "-Q=off"], 0, "", "")):
            with self.subTest(job=job, arguments=arguments):
                self.write("job.qpr", "Globals\nEdition=2\n" + job)
                ended = run(self.path, "-config=job.qpr", "-silent", *arguments)
                said = [text.decode().replace("\r\n", "\n") for text in ended[1:]]
                self.assertEqual((ended.status, said[0]), (status, output))
                self.assertTrue(said[1].startswith(errors) and bool(errors) == bool(said[1]), said)

    def test_files_of_several_uses_are_refused_and_left_alone(self):
        data = "a,b\n1,2\n"
        reject = "OnBadRow=Reject\nRejectFile={}\n"
        step = "Step\nSource\nType=TextFile\nName=in.csv\n{}Target\nType=TextFile\nName={}\n{}"
        good = step.format("", "o", "")
        load = (step.format("", "o", reject).replace("Type=TextFile\nName=o", "Type=DatabaseTable\n"
                                                     "DSN=x\nTable=t"))
        for job, switches, said in (
                (step.format(reject.format("o"), "./o", ""), [],
                 "job.qpr:8: The RejectFile 'o' is the Name of the Target of step 1, too."),
                (step.format(reject.format("./x/../job.qpr"), "o", ""), [],
                 "job.qpr:8: The RejectFile './x/../job.qpr' is the job file, too."),
                (step.format(reject.format("r"), "o", "") +
                 step.format(reject.format("./r"), "p", ""), [],
                 "job.qpr:17: The RejectFile './r' is that of the Source of step 1, too."),
                (load.format("in.csv"), [],
                 "job.qpr:12: The RejectFile 'in.csv' is the Name of the Source of step 1, too."),
                (step.format(reject.format("r"), "o", "Settings\nLog=./r\n"), [],
                 "job.qpr:8: The RejectFile 'r' is the Log of the Settings of step 1, too."),
                (step.format("", "o", "Settings\nLog=o\n"), [],
                 "job.qpr:11: The Log 'o' is the Name of the Target of step 1, too."),
                (step.format("", "job.qpr", ""), [],
                 "job.qpr:9: The Name 'job.qpr' is the job file, too."),
                (step.format(reject.format("r"), "o", ""), ["-report=./r"],
                 "The report './r' is the RejectFile of the Source of step 1, too."),
                (good, ["-report=in.csv"],
                 "The report 'in.csv' is the Name of the Source of step 1, too."),
                (good, ["-report=o"],
                 "The report 'o' is the Name of the Target of step 1, too."),
                (good, ["-report=job.qpr"], "The report 'job.qpr' is the job file, too."),
                (good, ["-report=l", "-Log=l"], "The report 'l' is the log, too."),
                # Other mistakes come first; the files stay all the same.
                (good, ["-report=in.csv", "-nonsense"], "'-nonsense' is not a switch."),
                ("Nonsense\n" + good, ["-report=job.qpr"],
                 "job.qpr:3: Incorrect configuration file item: 'Nonsense'. name=value format "
                 "expected. Line 3."),
                # A later step may read what an earlier one has written.
                (step.format(reject.format("r"), "o", "Settings\nLog=l\n") +
                 good.replace("in.csv", "r").replace("=o", "=p") +
                 good.replace("in.csv", "l").replace("=o", "=q"), ["-check"], "")):
            with self.subTest(job=job, switches=switches):
                job = "Globals\nEdition=2\n" + job
                for name, text in (("in.csv", data), ("job.qpr", job)):
                    self.write(name, text)
                ended = run(self.path, "-config=job.qpr", "-silent", *switches)
                first = ended.errors.decode().replace("\r\n", "\n").split("\n")[0]
                self.assertEqual((ended.status != 0, first.split(" Did you")[0]), (bool(said), said))
                left = {path.name: path.read_text() for path in self.path.iterdir()}
                self.assertEqual(left, {"in.csv": data, "job.qpr": job})

    def test_what_a_step_makes_is_there_for_the_next(self):
        self.write("in.csv", "a,b\n1,2\n")
        self.write("job.qpr", """Globals
Edition=2
Step
Source
Type=TextFile
Name=in.csv
OnBadRow=Reject
RejectFile=r.csv
Target
Type=TextFile
Name=./o
Settings
Log=made.log
""" + "".join(f"Step\nSystem\nCommand=MoveFile\nFrom={name}\nTo=./{number}\n"
              for number, name in enumerate(("r.csv", "o", "made.log", "1", "all.log"))))
        missing = "job.qpr:37: There is no file 'all.log', which 'From' names.\n"
        for switches, status, said in (([], 2, missing), (["-Log=./all.log"], 0, "")):
            ended = run(self.path, "-config=job.qpr", "-silent", "-check", *switches)
            self.assertEqual((ended.status, ended.errors.decode().replace("\r\n", "\n")),
                             (status, said))

    def test_completion_offers_switches_and_words(self):
        script = (ROOT / "completion/quillon.bash").read_text()
        for typed, offered in (("-che", "-check -check=connect"), ("-help=JSON", "JSONFile"),
                               ("-help=Copy", "CopyFile CopyFolder"), ("-conf", "-config="),
                               ("-Q", "-Q -Query="), ("-report=docs/run-report.s",
                                              "docs/run-report.schema.json")):
            line = f"quillon {typed}"
            said = subprocess.run(
                ["bash", "-c", f'{script}\ncompopt() {{ :; }}\nCOMP_LINE="{line}"\n'
                 f'COMP_POINT={len(line)}\n_quillon\necho "${{COMPREPLY[*]}}"'],
                capture_output=True, check=True, text=True, cwd=ROOT).stdout
            self.assertEqual(said.strip(), offered)


if __name__ == "__main__":
    run_tests(__doc__)
