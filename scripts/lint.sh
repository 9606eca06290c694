#!/usr/bin/env bash
# Runs clang-tidy over what the build in the given folder compiled, once for each changed content:
# a file that passed is not looked at again until it, a header or the configuration changes.
cd "$(dirname "$0")/.." || exit 1
build=${1:?usage: lint.sh BUILD_FOLDER}
state=$(git ls-files -z '*.cpp' '*.h' '*.cmake' '*CMakeLists.txt' .clang-tidy | xargs -0 cat | sha256sum)
[ "$(cat "$build/lint.passed" 2>/dev/null)" = "$state" ] && exit 0
run-clang-tidy -quiet -j "$(nproc)" -p "$build" "^$PWD/(src|tests|bench)/" >"$build/lint.log" 2>/dev/null
result=$?
if [ $result -ne 0 ]; then grep -E 'error:|warning:' "$build/lint.log" | sort -u; else echo "$state" >"$build/lint.passed"; fi
exit $result
