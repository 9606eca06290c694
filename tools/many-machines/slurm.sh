#!/usr/bin/env bash
# Runs examples/partitioned-export as a Slurm job array, with Slurm's own daemons on this machine:
# one part fails, is run again alone, and the result is joined.
#   tools/many-machines/slurm.sh PROGRAM [PARTS]
# By hand, as root; Debian packages: slurmctld slurmd slurm-client munge libsqliteodbc sqlite3 jq.
set -euo pipefail
program=$(realpath "${1:?usage: slurm.sh PROGRAM [PARTS]}")
parts=${2:-4}
here=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
daemons=()
stop() {
    for pid in "${daemons[@]}"; do kill "$pid" 2>/dev/null && wait "$pid" || true; done
    rm -rf "$work"
}
trap stop EXIT

chmod 755 "$work"
mkdir "$work/state" "$work/spool" "$work/munge"
dd if=/dev/urandom of="$work/munge/key" bs=1024 count=1 status=none
chmod 400 "$work/munge/key"
host=$(hostname -s)
cat >"$work/slurm.conf" <<END
ClusterName=one
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=26817
SlurmdPort=26818
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$work/munge/socket
CryptoType=crypto/munge
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
MaxArraySize=1001
ReturnToService=2
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=$host Default=YES MaxTime=INFINITE State=UP
END
export SLURM_CONF=$work/slurm.conf

start() {
    "$@" >>"$work/daemons.log" 2>&1 &
    daemons=("$!" "${daemons[@]}")
}
start munged --foreground --force --key-file="$work/munge/key" --socket="$work/munge/socket" \
    --pid-file="$work/munge/pid" --log-file="$work/munge/log" --seed-file="$work/munge/seed"
until [ -S "$work/munge/socket" ]; do sleep 0.2; done
start slurmctld -D
start slurmd -D
for ((i = 0; i < 60; i++)); do
    [ "$(sinfo -h -o %t 2>/dev/null)" = idle ] && break
    sleep 1
done
sinfo || { cat "$work/daemons.log"; exit 1; }

cp -r "$here/examples/partitioned-export" "$work/export"
cd "$work/export"
sqlite3 data.db <setup.sql
export QUILLON=$program SALES_DB="Driver=SQLite3;Database=data.db;StepAPI=1"
./plan.sh "$parts"

mkdir parts/2.csv # in the way of part 2
sbatch --wait --array="1-$parts" slurm.sh && { echo "part 2 should have failed"; exit 1; }
before=$(stat -c '%n %i %y' parts/*.csv)
again=$(./join.sh 2>&1) && { echo "joined in spite of part 2"; exit 1; }
echo "$again"
[ "$again" = "Run again: 2" ]

rmdir parts/2.csv
sbatch --wait --array=2 slurm.sh
diff <(grep -v '^parts/2.csv ' <<<"$before") <(stat -c '%n %i %y' parts/*.csv | grep -v '^parts/2.csv ')
joined=$(./join.sh)
echo "$parts parts, part 2 failed and ran again alone; $joined"
