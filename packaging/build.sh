#!/usr/bin/env bash
# Builds the packages from the last commit: quillon_VERSION_amd64.deb for Debian and
# quillon-VERSION-windows-x64.zip, with SHA256SUMS. The same commit gives the same bytes, in
# whatever folder it is built.
#   packaging/build.sh [--native] [FOLDER]
#       --native   leave Windows out
#       FOLDER     where the packages go; build/packages without it
set -euo pipefail
export LC_ALL=C.UTF-8 TZ=UTC
umask 022
cd "$(dirname "$0")/.."

windows=true
if [ "${1:-}" = --native ]; then windows=false; shift; fi
out=$(realpath -m "${1:-build/packages}")

numbers=$(sed -nE 's/^project\(quillon VERSION ([0-9]+)\.([0-9]+)\.([0-9]+) .*/\1 \2 \3/p' CMakeLists.txt)
# shellcheck disable=SC2086  # three numbers
version=$(printf '%d.%02d.%02d' $numbers)
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source=$work/quillon-$version
log=$work/log
mkdir -p "$source" "$out"
git archive HEAD | tar -x -C "$source"

# quietly COMMAND... : shows what a command says only when it fails.
quietly() {
    "$@" >"$log" 2>&1 || { cat "$log"; return 1; }
}

build_debian() {
    cp -r "$source/packaging/debian" "$source/debian"
    printf 'quillon (%s) unstable; urgency=medium\n\n  * CHANGELOG.md tells what is new.\n\n -- %s  %s\n' \
        "$version" "$(sed -n 's/^Maintainer: //p' "$source/debian/control")" \
        "$(date -R -d "@$SOURCE_DATE_EPOCH")" >"$source/debian/changelog"
    (cd "$source" && DEB_BUILD_OPTIONS="noautodbgsym parallel=$(nproc)" \
        quietly dpkg-buildpackage --build=binary --no-sign)
    packages+=("quillon_${version}_amd64.deb")
    cp "$work/${packages[-1]}" "$out/"
}

build_windows() {
    local folder=quillon-$version-windows-x64
    (cd "$source" &&
        quietly cmake --preset windows -DQUILLON_TESTS=OFF -DCMAKE_INSTALL_PREFIX="$work/$folder" \
            -DCMAKE_CXX_FLAGS="-ffile-prefix-map=$source=." \
            -DCMAKE_EXE_LINKER_FLAGS=-Wl,--no-insert-timestamp &&
        quietly cmake --build --preset windows &&
        quietly cmake --install build/windows --strip)
    # The compiler's runtime is part of the program; its licence asks to be handed on.
    install -D -m 644 /usr/share/doc/mingw-w64-x86-64-dev/copyright \
        "$work/$folder/licences/mingw-w64.txt"
    find "$work/$folder" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
    packages+=("$folder.zip")
    rm -f "$out/$folder.zip"
    (cd "$work" && find "$folder" -type f | sort | quietly zip -X -9 -@ "$out/$folder.zip")
}

packages=()
build_debian
if $windows; then build_windows; fi
(cd "$out" && sha256sum "${packages[@]}" | tee SHA256SUMS)
