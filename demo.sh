#!/usr/bin/env bash
# Shows Quillon at work: installs what is missing, builds the program, makes a SQLite database of
# some thousand rows, exports it with one job of three steps and with one command line, and shows
# the first lines of what came out. Everything it makes is under build/.
set -euo pipefail
cd "$(dirname "$0")"
. scripts/packages.sh
install_packages "${program_packages[@]}"

mkdir -p build
echo "Building build/linux/quillon ..."
cmake --preset linux -DQUILLON_TESTS=OFF -DQUILLON_BENCHMARKS=OFF >build/demo.log 2>&1 &&
    cmake --build --preset linux --target quillon >>build/demo.log 2>&1 ||
    { cat build/demo.log; exit 1; }
quillon=$PWD/build/linux/quillon

rm -rf build/demo
cp -r examples/demo build/demo
cd build/demo
sqlite3 data.db <setup.sql

show() {
    echo
    echo "---- $1, first lines:"
    sed -n '1,6p' "$1"
}

echo
echo "---- quillon -config=job.qpr"
# The third step writes its rows to standard output, messages go to standard error.
"$quillon" -config=job.qpr >rows.txt
sed -n '1,4p' rows.txt
echo "..."
show orders.csv
show orders-fixed.txt

echo
echo "---- the same query by switches alone"
"$quillon" -config=quick.qpr -Type=DatabaseQueryToTextFile \
    -DSN="Driver=SQLite3;Database=data.db;StepAPI=1" \
    -Query="select city, count(*) as orders, round(sum(total), 2) as total from orders group by city" \
    -Output=cities.txt
show cities.txt

echo
echo "---- a job with two mistakes, quillon -config=wrong.qpr -check"
sed 's/^FixedWidth=1/FixdWidth=yess\nHeader=yess/' job.qpr >wrong.qpr
status=0
"$quillon" -config=wrong.qpr -check -silent || status=$?
echo "exit status $status"
