#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test: natively, under the sanitizers
# and, for the Windows program, under Wine. The last line counts them all: "N passed, N failed".
#   --native   leave Windows out
set -uo pipefail
export LC_ALL=C.UTF-8  # texts of programs and of the system in English, file names in UTF-8
cd "$(dirname "$0")" || exit 1
. scripts/packages.sh

windows=true
case "${1:-}" in
    "") ;;
    --native) windows=false ;;
    *) echo "usage: $0 [--native]" >&2; exit 1 ;;
esac

passed=0
failed=0

# check NAME COMMAND... : counts as one test.
check() {
    local name=$1
    shift
    echo "== $name"
    if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAILED: $name"; fi
}

# run_tests PRESET : runs what a preset built and adds up the results.
run_tests() {
    local log="build/$1/tests.log" run bad skipped
    ctest --preset "$1" 2>&1 | tee "$log" | grep -vE 'Start +[0-9]+:| Passed +[0-9.]+ sec'
    run=$(sed -nE 's/.* tests failed out of ([0-9]+)$/\1/p' "$log")
    bad=$(sed -nE 's/.* ([0-9]+) tests failed out of [0-9]+$/\1/p' "$log")
    skipped=$(grep -cE '\*\*\*Skipped' "$log")
    if [ -z "$run" ] || [ "$run" -eq 0 ]; then
        failed=$((failed + 1))
        echo "FAILED: preset $1 ran no test"
        return
    fi
    passed=$((passed + run - bad - skipped))
    failed=$((failed + bad))
    [ "$skipped" -eq 0 ] || echo "SKIPPED under $1: $skipped"
}

build() {
    cmake --preset "$1" -DQUILLON_TESTS=ON "${@:2}" >"build/$1.log" 2>&1 &&
        cmake --build --preset "$1" >>"build/$1.log" 2>&1 && return
    tail -n 60 "build/$1.log"
    return 1
}

start_servers() {
    QUILLON_TEST_POSTGRES=$(tests/servers/postgres.sh start "$postgres_folder") &&
        QUILLON_TEST_MARIADB=$(tests/servers/mariadb.sh start "$mariadb_folder") &&
        export QUILLON_TEST_POSTGRES QUILLON_TEST_MARIADB
}

start_wine() {
    export WINEPREFIX=$PWD/build/wine-prefix WINEDEBUG=-all
    mkdir -p "$WINEPREFIX"
    # A server that stays spares every program its start.
    wineserver -p && wineboot -i && wine cmd /c exit
} >/dev/null 2>&1

# The packages of the last commit, built twice: the second time from another folder, and without a
# cache of compiled files.
build_packages() {
    packaging/build.sh "${package_options[@]}" build/packages &&
        CCACHE_DISABLE=1 packaging/build.sh "${package_options[@]}" build/packages-again &&
        cmp build/packages/SHA256SUMS build/packages-again/SHA256SUMS
}

stop_servers() {
    tests/servers/postgres.sh stop "$postgres_folder" >/dev/null 2>&1
    tests/servers/mariadb.sh stop "$mariadb_folder" >/dev/null 2>&1
    rm -rf "$postgres_folder" "$mariadb_folder"
    if $windows; then wineserver -k >/dev/null 2>&1; fi
}

packages=("${program_packages[@]}" libgtest-dev googletest libbenchmark-dev python3 strace
    jq parallel libxml2-utils odbc-postgresql postgresql odbc-mariadb mariadb-server clang-format
    clang-tidy clang libclang-rt-14-dev debhelper lintian debootstrap)
package_options=(--native)
if $windows; then
    packages+=(g++-mingw-w64-x86-64-posix wine wine64 zip unzip)
    package_options=()
fi
install_packages "${packages[@]}" || { echo "0 passed, 1 failed"; exit 1; }

mkdir -p build
postgres_folder=$(mktemp -d)
mariadb_folder=$(mktemp -d)
trap stop_servers EXIT

check "format" scripts/check_format.sh
check "build linux" build linux -DQUILLON_BENCHMARKS=ON
check "build linux-asan" build linux-asan
$windows && check "build windows" build windows
check "lint" scripts/lint.sh build/linux
check "fault proof" tools/fault-proof/fault_proof.py build/linux/quillon --short
check "fuzz" fuzz/run.sh 10 2
check "start PostgreSQL and MariaDB" start_servers
run_tests linux
run_tests linux-asan
if $windows; then
    check "start Wine" start_wine
    run_tests windows
fi

check "packages: the same bytes from two folders" build_packages
check "packages: lintian" packaging/check.sh build/packages lintian
check "packages: the unpacked program" packaging/check.sh build/packages linux
$windows && check "packages: the unzipped program" packaging/check.sh build/packages windows
if [ "$(id -u)" -eq 0 ]; then
    check "packages: a fresh Debian" packaging/check.sh build/packages debian
else
    echo "SKIPPED: a fresh Debian needs root"
fi

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
