# Installs what is missing of Debian packages; for sourcing.
#
# install_packages NAME... : nothing happens, and no rights are needed, when all are there.
install_packages() {
    local name missing=() as_root=()
    for name in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
            --no-install-recommends "${missing[@]}" >/dev/null
}

# What the program is built with, and the SQLite driver that the demo and the examples use.
program_packages=(g++ cmake ninja-build unixodbc-dev libcurl4-openssl-dev libsqliteodbc sqlite3)
