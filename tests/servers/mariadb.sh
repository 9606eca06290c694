#!/bin/sh
# A private MariaDB server for tests.
#
#     mariadb.sh start DIR   makes and starts a server that lives in DIR, and prints an ODBC connect
#                            string for it
#     mariadb.sh stop DIR    stops it; DIR stays
#
# It reads no configuration of the machine, listens on a free port of 127.0.0.1 only (its socket
# lies in DIR) and trusts whoever comes as "root". A server does not run as root: started by root it
# runs as the user "mysql", who must be able to reach DIR.
set -eu

server_user=mysql
. "$(dirname "$0")/common.sh"

# Starts the server on a port and waits until it takes connections; false when it gives up.
start_on() {
    : >"$dir/server.log"
    # It must not keep the caller's output open: who reads it would wait for its end. Nothing of it
    # needs to outlive a crash of the machine.
    (
        exec </dev/null >>"$dir/server.log" 2>&1
        as_server "$server" --no-defaults --datadir="$dir/data" --bind-address=127.0.0.1 \
            --port="$1" --socket=../socket --pid-file="$dir/server.pid" \
            --init-file="$dir/users.sql" --character-set-server=utf8mb4 --max-allowed-packet=64M \
            --innodb-log-file-size=8M --innodb-buffer-pool-size=32M \
            --innodb-flush-log-at-trx-commit=0 --innodb-fast-shutdown=3
    ) &
    starting=$!
    while ! grep -q "ready for connections" "$dir/server.log"; do
        kill -0 "$starting" 2>/dev/null || return 1
        sleep 0.1
    done
}

start() {
    own_folder
    as_server mariadb-install-db --no-defaults --datadir="$dir/data" --skip-test-db \
        --auth-root-authentication-method=normal --innodb-log-file-size=8M \
        >"$dir/install.log" 2>&1 || fail "mariadb-install-db failed: $(cat "$dir/install.log")"
    cat >"$dir/users.sql" <<-END
	create or replace user root@'127.0.0.1';
	grant all privileges on *.* to root@'127.0.0.1' with grant option;
	create database if not exists quillon;
	END
    chmod a+r "$dir/users.sql"
    for attempt in 1 2 3 4 5 6 7 8; do
        port=$(random_port)
        if start_on "$port"; then
            printf '%s' "Driver=MariaDB Unicode;Server=127.0.0.1;Port=$port;Database=quillon;"
            printf '%s' "Uid=root;Charset=utf8mb4;"
            # Names in double quotes, and backslashes that are nothing but backslashes.
            printf '%s\n' "InitStmt={set sql_mode=concat(@@sql_mode,',ANSI_QUOTES,NO_BACKSLASH_ESCAPES')};"
            return
        fi
    done
    fail "the server did not start: $(cat "$dir/server.log")"
}

stop() {
    if [ ! -f "$dir/server.pid" ]; then return; fi
    running=$(cat "$dir/server.pid")
    kill "$running" 2>/dev/null || return 0
    while kill -0 "$running" 2>/dev/null; do sleep 0.1; done
}

server=$(PATH=$PATH:/usr/sbin command -v mariadbd) ||
    fail "no MariaDB server is installed (Debian's package: mariadb-server)"
case $1 in
    start) start ;;
    stop) stop ;;
    *) fail "usage: $name start|stop DIR" ;;
esac
