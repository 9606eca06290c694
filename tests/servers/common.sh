# What the private servers of the tests share; for sourcing.
#
# Before it: server_user, whom a server runs as when root starts it. `dir`, the server's folder, is
# set below from the arguments "start|stop DIR".

name=${0##*/}

fail() {
    echo "$name: $*" >&2
    exit 1
}

# Runs a server program as a user who may, in a folder that this user can be in.
as_server() {
    if [ "$(id -u)" = 0 ]; then
        (cd "$dir" && exec setpriv --reuid="$server_user" --regid="$server_user" --init-groups "$@")
    else
        (cd "$dir" && exec "$@")
    fi
}

own_folder() {
    if [ "$(id -u)" = 0 ]; then chown "$server_user:" "$dir"; fi
}

# A port that nobody listens on now. Somebody else may take it before the server does, so the
# caller tries again.
random_port() {
    echo $((20000 + $(od -An -N2 -tu2 /dev/urandom) % 12000))
}

[ $# -eq 2 ] || fail "usage: $name start|stop DIR"
mkdir -p "$2"
dir=$(cd "$2" && pwd)
