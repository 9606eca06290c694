#!/bin/sh
# Exports part N of the plan: part.sh N
# Its file is whole or absent, so a part that failed is run again, and changes nothing else.
set -eu
cd "$(dirname "$0")"
row=$(sed -n "$(($1 + 1))p" plan.csv)
if [ -z "$row" ]; then
    echo "The plan has no part $1." >&2
    exit 4
fi
IFS=, read -r part low high planned <<END
$row
END
exec "${QUILLON:-quillon}" -config=part.qpr -silent -report="parts/$part.json" \
    "\$PART\$=$part" "\$LOW\$=$low" "\$HIGH\$=$high"
