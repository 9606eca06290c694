#!/bin/sh
# Joins the parts to sale.csv when each of them holds the rows that the plan counted. Otherwise it
# tells the parts to run again and leaves sale.csv as it is.
set -eu
cd "$(dirname "$0")"

# "FILE,ROWS" of each report of a run that succeeded and wrote all that it read.
written() {
    jq -r 'select(.status == 0) | .steps[0] | select(.rows_read == .rows_written) |
        "\(.target.name),\(.rows_written)"' "$@"
}

plan=$(tail -n +2 plan.csv)
reports=$(written parts/*.json || true)
total=0
again=
while IFS=, read -r part low high planned; do
    total=$((total + planned))
    [ -f "parts/$part.csv" ] && case "
$reports
" in *"
parts/$part.csv,$planned
"*) continue ;; esac
    again="$again $part"
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
if [ "$(written joined.json)" != "joined.csv,$total" ]; then
    echo "joined.csv does not hold the $total rows of the plan." >&2
    exit 2
fi
mv joined.csv sale.csv
echo "sale.csv: $total rows"
