#!/bin/sh
# Plans an export in N parts anew: plan.sh N
set -eu
cd "$(dirname "$0")"
rm -f parts/*.csv parts/*.json
exec "${QUILLON:-quillon}" -config=plan.qpr -silent "\$PARTS\$=$1"
