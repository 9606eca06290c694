#!/bin/sh
# A private PostgreSQL server for tests.
#
#     postgres.sh start DIR   makes and starts a server that lives in DIR, and prints an ODBC connect
#                             string for it
#     postgres.sh stop DIR    stops it; DIR stays
#
# It listens on a free port of 127.0.0.1 only, on no socket in the file system, and trusts whoever
# comes. A server does not run as root: started by root it runs as the user "postgres", who must be
# able to reach DIR.
set -eu

server_user=postgres
. "$(dirname "$0")/common.sh"

find_programs() {
    for programs in $(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -Vr); do
        if [ -x "$programs/initdb" ]; then return; fi
    done
    fail "no PostgreSQL server is installed (Debian's package: postgresql)"
}

start() {
    own_folder
    as_server "$programs/initdb" -D "$dir/data" -A trust -U postgres -E UTF8 --locale=C \
        --no-sync >"$dir/initdb.log" 2>&1 || fail "initdb failed: $(cat "$dir/initdb.log")"
    for attempt in 1 2 3 4 5 6 7 8; do
        port=$(random_port)
        # The server must not keep the caller's output open: who reads it would wait for its end.
        if as_server "$programs/pg_ctl" start -w -s -t 60 -D "$dir/data" -l "$dir/server.log" \
            -o "-h 127.0.0.1 -p $port -k '' -F" >"$dir/start.log" 2>&1; then
            printf '%s' "Driver=PostgreSQL Unicode;Server=127.0.0.1;Port=$port;"
            printf '%s\n' "Database=postgres;Uid=postgres;"
            return
        fi
    done
    fail "the server did not start: $(cat "$dir/server.log")"
}

stop() {
    if [ ! -f "$dir/data/postmaster.pid" ]; then return; fi
    as_server "$programs/pg_ctl" stop -s -m immediate -D "$dir/data"
}

find_programs
case $1 in
    start) start ;;
    stop) stop ;;
    *) fail "usage: $name start|stop DIR" ;;
esac
