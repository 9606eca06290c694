#!/bin/sh
# Joins the parts to sale.csv when each of them holds the rows that the plan counted. Otherwise it
# tells the parts to run again and leaves sale.csv as it is.
set -eu
cd "$(dirname "$0")"

# counted REPORT ROWS : whether a run succeeded and wrote so many rows, all that it read.
counted() {
    jq -e --argjson rows "$2" \
        '.status == 0 and .steps[0].rows_read == $rows and .steps[0].rows_written == $rows' \
        "$1" >/dev/null 2>&1
}

plan=$(tail -n +2 plan.csv)
total=0
again=
while IFS=, read -r part low high planned; do
    total=$((total + planned))
    if [ ! -f "parts/$part.csv" ] || ! counted "parts/$part.json" "$planned"; then
        again="$again $part"
    fi
done <<END
$plan
END
if [ -n "$again" ]; then
    echo "Run again:$again" >&2
    exit 2
fi

{
    head -n 1 parts/1.csv
    echo "$plan" | while IFS=, read -r part low high planned; do
        tail -n +2 "parts/$part.csv"
    done
} | "${QUILLON:-quillon}" -config=join.qpr -silent -report=joined.json
if ! counted joined.json "$total"; then
    echo "joined.csv does not hold the $total rows of the plan." >&2
    exit 2
fi
mv joined.csv sale.csv
echo "sale.csv: $total rows"
