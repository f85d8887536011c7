#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, and those named
# as arguments. Quiet when nothing is missing; otherwise says what it installs.
# Needs root (or sudo) only when something is missing.
set -euo pipefail

install_missing() {
    local package status missing=()
    for package in "$@"; do
        status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$status" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    echo "Installing: ${missing[*]}"
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    if ! { "${as_root[@]}" apt-get update && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
           apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1
    then
        cat "$log" >&2
        exit 1
    fi
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT

install_missing cmake ninja-build make g++ g++-multilib clang libclang-rt-14-dev clang-format \
    googletest libembree-dev libtbb-dev libjpeg62-turbo-dev libpng-dev libpugixml-dev zlib1g-dev lib32z1-dev python3 "$@"

# Where the kernel does not run 32-bit programs, their tests need an emulator.
/lib/ld-linux.so.2 --version >/dev/null 2>&1 || install_missing qemu-user
