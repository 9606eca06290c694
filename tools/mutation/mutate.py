#!/usr/bin/env python3
"""Puts small faults into the sources, one at a time, and sees whether the tests notice.

    mutate.py [--count N] [--seed N] [--jobs N] [--list] [--again]

Works on a copy of the tracked files under build/mutation, which is built once and then anew for each
mutant. What has been tried stands in build/mutation/tried.jsonl, and is not tried again. Prints a
Markdown summary. README.md says more."""
import argparse
import collections
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FOLDER = ROOT / "build" / "mutation"
TREE, BUILD, TRIED = FOLDER / "tree", FOLDER / "build", FOLDER / "tried.jsonl"
EQUIVALENTS = pathlib.Path(__file__).with_name("equivalents.tsv")
# More than a second: asked only about what the others let pass.
SLOW = r"^(engines|readers|crash|run)\.|^jobs\.(robustness|whole_files|http|nightly|code_pages)$"

OPPOSITE = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||",
            "||": "&&", "true": "false", "false": "true", "+": "-", "-": "+"}
CALL = re.compile(r"^ +(?!return\b|if\b|for\b|while\b|switch\b|case\b|else\b|do\b|using\b|throw\b)"
                  r"[a-z_][\w.:>\[\]*-]*(\(.*\)|(\+\+|--)| [+*|-]?= .*);$")


def code_of(text):
    """The text with comments and literals blanked out, so that places stay the same."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match[0])
    return re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', blank, text,
                  flags=re.S)


def condition_end(line, start):
    """Where the parenthesis at `start` closes; -1 when that is on another line."""
    depth = 0
    for i in range(start, len(line)):
        depth += {"(": 1, ")": -1}.get(line[i], 0)
        if depth == 0:
            return i
    return -1


def changes(line):
    """All changes of a line of code: what is done, from where to where, and what stands there then."""
    if line.lstrip().startswith(("#", "static_assert", "template", "using ")):
        return
    for match in re.finditer(r" (==|!=|<=|>=|<|>) ", line):
        yield "comparison", match.start(1), match.end(1), OPPOSITE[match[1]]
    for match in re.finditer(r" (&&|\|\|) ", line):
        yield "and, or", match.start(1), match.end(1), OPPOSITE[match[1]]
    for match in re.finditer(r"\w (\+|-) \w", line):
        yield "sign", match.start(1), match.end(1), OPPOSITE[match[1]]
    for match in re.finditer(r"(?<![\w.'])(\d+)(?![\w.'])", line):
        yield "constant", match.start(1), match.end(1), str(int(match[1]) + 1)
    for match in re.finditer(r"\breturn (true|false);", line):
        yield "result", match.start(1), match.end(1), OPPOSITE[match[1]]
    for match in re.finditer(r"\b(?:if|while) (\()", line):
        end = condition_end(line, match.start(1))
        if end > 0 and ";" not in line[match.start(1):end]:
            inside = slice(match.start(1) + 1, end)
            yield "condition", inside.start, inside.stop, f"!({line[inside]})"
    if CALL.match(line):
        start = len(line) - len(line.lstrip())
        yield "statement", start, len(line), ";"


class Mutant:
    def __init__(self, path, number, kind, start, end, text, line, same):
        self.path, self.number, self.kind = path, number, kind
        self.start, self.end, self.text = start, end, text
        self.before = line.strip()
        # Stays the same when other lines are added. same: lines above with the same text
        self.name = hashlib.sha1(
            f"{path}|{self.before}|{same}|{kind}|{start}".encode()).hexdigest()[:10]
        # A condition is changed around its literals, which `text` has blanked out.
        inner = f"!({line[start:end]})" if kind == "condition" else text
        self.after = (line[:start] + inner + line[end:]).strip()
        self.line = line[:start] + inner + line[end:]

    def apply(self):
        path = TREE / self.path
        self.was = path.read_text("utf-8")
        lines = self.was.split("\n")
        lines[self.number] = self.line
        path.write_text("\n".join(lines), "utf-8")

    def undo(self):
        (TREE / self.path).write_text(self.was, "utf-8")


def all_mutants():
    for path in sorted(ROOT.glob("src/**/*.cpp")):
        name = path.relative_to(ROOT).as_posix()
        if "/windows/" in name:
            continue
        text = path.read_text("utf-8")
        seen = collections.Counter()
        for number, (code, line) in enumerate(zip(code_of(text).split("\n"), text.split("\n"))):
            for kind, start, end, other in changes(code):
                yield Mutant(name, number, kind, start, end, other, line, seen[line])
            seen[line] += 1


def draw(mutants, count, seed):
    """Most of those drawn stay the same when the sources change elsewhere."""
    return sorted(mutants, key=lambda mutant: hashlib.sha1(
        f"{seed} {mutant.name}".encode()).digest())[:count]


def limit_files():
    """A mutant may write without an end."""
    resource.setrlimit(resource.RLIMIT_FSIZE, (2 << 30, 2 << 30))


def run(*command, seconds=1800):
    """Whether a command succeeds in time. All that it has started ends with it."""
    with subprocess.Popen([str(word) for word in command], cwd=TREE, start_new_session=True,
                          preexec_fn=limit_files, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL) as process:
        try:
            return process.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return False


def prepare(jobs):
    """The copy, built and tested without a mutant."""
    names = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, capture_output=True, check=True,
                           text=True).stdout.split("\0")
    for name in filter(None, names):
        if not (ROOT / name).is_file():
            continue
        (TREE / name).parent.mkdir(parents=True, exist_ok=True)
        if not (TREE / name).exists() or (ROOT / name).read_bytes() != (TREE / name).read_bytes():
            shutil.copy(ROOT / name, TREE / name)  # with a new time, so that it is built anew
    # Compiled in less time than what is released; asserts count as tests.
    configured = run("cmake", "-G", "Ninja", "-S", TREE, "-B", BUILD, "-DCMAKE_BUILD_TYPE=None",
                     "-DCMAKE_CXX_FLAGS=-O1 -w -D_GLIBCXX_ASSERTIONS", "-DQUILLON_TESTS=ON")
    if not configured or not build(jobs) or not test(jobs):
        sys.exit("The sources fail without a mutant.")


def build(jobs):
    """Not all: the manual page is made by the program, which a mutant may keep from ending."""
    return run("cmake", "--build", BUILD, "-j", jobs, "--target", "quillon", "quillon_tests",
               "quillon_crash", "quillon_test_driver", "quillon_faults")


def test(jobs):
    return all(run("ctest", "--test-dir", BUILD, "-j", jobs, "--stop-on-failure", which, SLOW,
                   seconds=seconds) for which, seconds in (("-E", 180), ("-R", 600))) and run(
        TREE / "tools/fault-proof/fault_proof.py", BUILD / "quillon", "--short")


def fate(mutant, jobs):
    mutant.apply()
    try:
        return "not compiling" if not build(jobs) else "survived" if test(jobs) else "killed"
    finally:
        mutant.undo()


def summary(tried, equivalents):
    fates = collections.Counter(
        "equivalent" if each["name"] in equivalents and each["fate"] == "survived"
        else each["fate"] for each in tried)
    print("| Fate | Mutants |\n|---|---:|")
    for name in ("killed", "survived", "equivalent", "not compiling"):
        print(f"| {name} | {fates[name]} |")
    counted = fates["killed"] + fates["survived"]
    print(f"\n{100 * fates['killed'] / max(counted, 1):.0f} % of {counted} killed\n")
    print("| Survivor | Where | Was | Became |\n|---|---|---|---|")
    for each in tried:
        if each["fate"] != "survived":
            continue
        note = equivalents.get(each["name"])
        kind = each["kind"] + (f"; equivalent: {note}" if note else "")
        was, became = (each[key].replace("|", "\\|") for key in ("before", "after"))
        print(f"| {each['name']}: {kind} | {each['path']}:{each['line']} | `{was}` | `{became}` |")


def parse():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=200, help="mutants to be drawn")
    parser.add_argument("--seed", type=int, default=1, help="what is drawn")
    parser.add_argument("--jobs", type=int, default=2, help="compilers and tests at a time")
    parser.add_argument("--again", action="store_true", help="try those that survived once more")
    parser.add_argument("--list", action="store_true", help="show what would be drawn")
    return parser.parse_args()


def main():
    options = parse()
    mutants = list(all_mutants())
    drawn = draw(mutants, options.count, options.seed)
    if options.list:
        for mutant in drawn:
            print(f"{mutant.path}:{mutant.number + 1}: {mutant.kind}: {mutant.after}")
        print(f"{len(mutants)} in all")
        return
    FOLDER.mkdir(parents=True, exist_ok=True)
    known = {}
    if TRIED.exists():
        known = {each["name"]: each for each in map(json.loads, TRIED.read_text().splitlines())
                 if not (options.again and each["fate"] == "survived")}
    if any(mutant.name not in known for mutant in drawn):
        prepare(options.jobs)
    for number, mutant in enumerate(drawn, 1):
        if mutant.name in known:
            continue
        start = time.monotonic()
        known[mutant.name] = {"name": mutant.name, "path": mutant.path, "line": mutant.number + 1,
                              "kind": mutant.kind, "before": mutant.before, "after": mutant.after,
                              "fate": fate(mutant, options.jobs)}
        with TRIED.open("a") as tried:
            tried.write(json.dumps(known[mutant.name]) + "\n")
        print(f"{number}/{len(drawn)} {known[mutant.name]['fate']} {mutant.path}:"
              f"{mutant.number + 1} {time.monotonic() - start:.0f} s", file=sys.stderr, flush=True)
    equivalents = {}
    if EQUIVALENTS.exists():
        equivalents = dict(line.split("\t", 1) for line in EQUIVALENTS.read_text().splitlines())
    summary([known[mutant.name] for mutant in drawn], equivalents)


if __name__ == "__main__":
    main()
