#!/usr/bin/env python3
"""Measures what each target needs to compose a row, and prints a markdown table.

bench_target times a whole row into the null device, and the encoding and writing of the same text
alone; the difference is composing. Of several runs, taken in turns, the fastest counts.
"""

import argparse
import json
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
AIM = 2.5  # times what the text target needs


def fastest(program, repeat):
    """Nanoseconds and counters of each benchmark's fastest run."""
    command = [program, "--benchmark_format=json", f"--benchmark_repetitions={repeat}",
               "--benchmark_min_time=0.05", "--benchmark_enable_random_interleaving=true"]
    result = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True)
    runs = {}
    for run in json.loads(result.stdout)["benchmarks"]:
        known = runs.get(run["name"])
        if run["run_type"] == "iteration" and (not known or run["cpu_time"] < known["cpu_time"]):
            runs[run["name"]] = run
    return runs


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, default=ROOT / "build" / "linux",
                        help="build folder (default build/linux)")
    parser.add_argument("--repeat", type=int, default=15)
    arguments = parser.parse_args()
    runs = fastest(arguments.build / "bench" / "bench_target", arguments.repeat)
    composing = {name.removeprefix("row/"): run["cpu_time"] - runs["bytes/" + name[4:]]["cpu_time"]
                 for name, run in runs.items() if name.startswith("row/")}
    print("| Target | bytes a row | composing, ns | encoding and writing, ns | ratio | aim |")
    print("|---|--:|--:|--:|--:|---|")
    for name, nanoseconds in sorted(composing.items(), key=lambda item: item[1]):
        ratio = nanoseconds / composing["TextFile"]
        print(f"| {name} | {runs['row/' + name]['bytes']:,.0f} | {nanoseconds:.0f} | "
              f"{runs['bytes/' + name]['cpu_time']:.0f} | **{ratio:.2f}** | "
              f"{AIM:.2f}, {'met' if ratio <= AIM else 'MISSED'} |")


if __name__ == "__main__":
    main()
