#!/usr/bin/env bash
# Checks what packaging/build.sh made.
#   packaging/check.sh FOLDER [CHECK...]
# FOLDER holds the packages. Without names, all of these run:
#   lintian   no errors by Debian's policy
#   linux     the unpacked program runs the unpacked examples
#   windows   so does the one in the zip, under Wine
#   debian    installed in a fresh Debian 12, run there by a plain user, removed without a trace;
#             needs root, and the mirror that this machine's apt uses
set -euo pipefail
export LC_ALL=C.UTF-8
here=$(cd "$(dirname "$0")/.." && pwd)
cd "${1:?usage: check.sh FOLDER [lintian|linux|windows|debian ...]}"
shift
[ $# -gt 0 ] || set -- lintian linux windows debian
sha256sum --quiet -c SHA256SUMS

work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
deb=$PWD/$(sed -n 's/.*  \(.*\.deb\)$/\1/p' SHA256SUMS)

# run_examples FOLDER COMMAND... : whole jobs, compared byte by byte.
run_examples() {
    local examples=$1 job ran=0 fixed=()
    shift
    if [ "$1" = wine ]; then fixed=(--windows); fi
    for job in "$examples"/*/job.qpr; do
        python3 "$here/tests/jobs/run_job.py" "${fixed[@]}" "$(dirname "$job")" "$@" ||
            { echo "$job failed"; return 1; }
        ran=$((ran + 1))
    done
    echo "$ran examples ran"
    [ "$ran" -ge 10 ]
}

check_lintian() {
    lintian --allow-root --fail-on error "$deb"
}

check_linux() {
    dpkg-deb -x "$deb" "$work/linux"
    run_examples "$work/linux/usr/share/doc/quillon/examples" "$work/linux/usr/bin/quillon"
    "$work/linux/usr/bin/quillon" -version | grep -F "Quillon $(dpkg-deb -f "$deb" Version) "
}

check_windows() {
    unzip -q "$(sed -n 's/.*  \(.*\.zip\)$/\1/p' SHA256SUMS)" -d "$work/windows"
    local folder
    folder=$(echo "$work"/windows/*)
    run_examples "$folder/examples" wine "$folder/quillon.exe"
}

# Everything below the root but what the package system and the system itself keep for themselves:
# kind, rights, owner and content.
snapshot() {
    (cd "$1" && find . -xdev \( -path ./var/lib/dpkg -o -path ./var/lib/apt -o -path ./var/cache \
        -o -path ./var/log -o -path ./proc -o -path ./tmp \) -prune \
        -o -printf '%p %y %m %u:%g %l\n' -type f -exec sha256sum {} + | sort)
}

check_debian() {
    local mirror root=$work/root example=usr/share/doc/quillon/examples/query-to-text
    mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Codename: bookworm' 'Component: main' |
        head -n 1)
    echo "a fresh Debian 12 ..."
    debootstrap --variant=minbase bookworm "$root" "$mirror" >"$work/log" 2>&1 ||
        { tail "$work/log"; return 1; }
    inside() {
        # shellcheck disable=SC2016  # for the inner shell
        unshare --mount sh -c 'mount -t proc proc "$0/proc" && exec chroot "$0" "$@"' "$root" "$@"
    }
    quietly() { inside env DEBIAN_FRONTEND=noninteractive "$@" >"$work/log" 2>&1 ||
        { tail "$work/log"; return 1; }; }
    cp "$deb" "$root/tmp/quillon.deb"
    # Once for what the package depends on, once for the comparison.
    quietly apt-get install -y --no-install-recommends /tmp/quillon.deb sqlite3 libsqliteodbc
    quietly dpkg --purge quillon
    snapshot "$root" >"$work/before"
    if grep -i quillon "$work/before"; then echo "left behind"; return 1; fi
    quietly dpkg --install /tmp/quillon.deb
    inside chroot --userspec=nobody / sh -ec "
        cp -r /$example /tmp/job && cd /tmp/job
        sqlite3 data.db <setup.sql
        quillon -config=job.qpr
        cmp customers.csv expected/customers.csv
        quillon -version"
    quietly dpkg --purge quillon
    snapshot "$root" >"$work/after"
    diff "$work/before" "$work/after" && echo "removed without a trace"
}

for name in "$@"; do
    "check_$name"
done
