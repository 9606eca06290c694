#!/usr/bin/env bash
# Builds the fuzzers and runs each for some seconds, from the inputs in corpus/. A line for each of
# them; what it found is kept under build/linux-fuzz/findings/. Ends with 1 when there is a finding.
#   run.sh [SECONDS [AT_ONCE]]   10 seconds without a number; so many fuzzers at a time, or one
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1
export seconds=${1:-10} build=$PWD/build/linux-fuzz  # whole, as some fuzzers go to another folder

mkdir -p build
if ! { cmake --preset linux-fuzz && cmake --build --preset linux-fuzz; } >build/linux-fuzz.log 2>&1; then
    tail -n 40 build/linux-fuzz.log
    exit 1
fi

# fuzz NAME : one fuzzer, with a copy of its corpus, which grows.
fuzz() {
    local found=$build/findings/$1 log=$build/$1.log corpus runs count
    corpus=$(mktemp -d)
    rm -rf "$found" && mkdir -p "$found"
    cp "fuzz/corpus/$1/"* "$corpus"
    # A minute of the clock: beside other work an input has little of the processor.
    "$build/fuzz/$1_fuzzer" -max_total_time="$seconds" -timeout=60 -report_slow_units=60 -rss_limit_mb=4096 \
        -print_final_stats=1 -artifact_prefix="$found/" "$corpus" >"$log" 2>&1
    local status=$?
    runs=$(sed -nE 's/^stat::number_of_executed_units: +//p' "$log")
    count=$(find "$found" -type f | wc -l)
    [ "$status" -eq 0 ] || [ "$count" -gt 0 ] || count=1
    echo "$1: ${runs:-0} runs, $count findings"
    rm -rf "$corpus"
    [ "$count" -eq 0 ] && return
    grep -E 'ERROR|SUMMARY|runtime error|deadly signal' "$log"
    return 1
}

export -f fuzz
find fuzz/corpus -mindepth 1 -maxdepth 1 -printf '%f\n' | sort |
    xargs -P "${2:-1}" -I{} bash -c 'fuzz {}' || exit 1
