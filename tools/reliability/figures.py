#!/usr/bin/env python3
"""Runs the commands of a page and puts what they say behind them.

In the page a figure is

    <!-- run: COMMAND -->
    <!-- end -->

COMMAND is a line for bash, run at the root of the sources. What it writes to standard output goes
between the two lines, with the command, the commit and the system: as a block of code, or as it is
when a table is in it. A command that fails, or whose program is not there, leaves its figure as it was
and ends the script with status 1."""
import argparse
import datetime
import os
import pathlib
import platform
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FIGURE = re.compile(r"<!-- run: ([^\n]+) -->\n(.*?)<!-- end -->\n", re.DOTALL)


def say(*arguments):
    return subprocess.run(arguments, cwd=ROOT, check=True, capture_output=True,
                          text=True).stdout.strip()


def place():
    """Where and when a figure was made; "and changes" for a tree that is no commit."""
    commit = say("git", "rev-parse", "--short=10", "HEAD")
    changed = say("git", "status", "--porcelain", "--untracked-files=no", "--", "src", "tests")
    system = platform.freedesktop_os_release()
    return (f"{datetime.date.today()}, commit {commit}{' and changes' if changed else ''}, "
            f"{system['NAME'].split()[0]} {system['VERSION_ID']}, {os.cpu_count()} cores")


def figure(command):
    """The text of a figure, or None when its command fails."""
    print(f"$ {command}", flush=True)
    ended = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=ROOT, check=False,
                           stdout=subprocess.PIPE, text=True)
    print(ended.stdout, end="")
    if ended.returncode != 0 or not ended.stdout.strip():
        print(f"status {ended.returncode}: the figure stays as it was", file=sys.stderr)
        return None
    said = ended.stdout.strip("\n").splitlines()
    if any(line.startswith("|") for line in said):  # a table of Markdown
        return "\n".join(["", f"`{command}`, {place()}:", "", *said, "", ""])
    lines = [f"$ {command}", *said, f"({place()})"]
    return "\n" + "".join(f"    {line}".rstrip() + "\n" for line in lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("words", nargs="*", help="only commands that hold one of these words")
    parser.add_argument("--page", type=pathlib.Path, default=ROOT / "docs/reliability.md")
    options = parser.parse_args()
    failed = found = 0
    for match in FIGURE.finditer(options.page.read_text()):
        command = match[1]
        if options.words and not any(word in command for word in options.words):
            continue
        found += 1
        text = figure(command)
        if text is None:
            failed += 1
            continue
        # Read again: a long command leaves time for an editor.
        head = f"<!-- run: {command} -->\n"
        before, after = options.page.read_text().split(head, 1)
        after = after[after.index("<!-- end -->\n"):]
        options.page.write_text(before + head + text + after)
    print(f"{found - failed} figures made, {failed} left as they were")
    return 1 if failed or not found else 0


if __name__ == "__main__":
    sys.exit(main())
