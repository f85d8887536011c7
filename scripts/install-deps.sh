#!/usr/bin/env bash
# Installs the Debian packages that building and testing need. Quiet when
# nothing is missing; otherwise says what it installs. Needs root (or sudo)
# only when something is missing.
set -euo pipefail

packages=(
    cmake ninja-build make g++ g++-multilib clang libclang-rt-14-dev clang-format
    googletest libembree-dev libtbb-dev libjpeg62-turbo-dev libpng-dev
    zlib1g-dev lib32z1-dev
)

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${as_root[@]}" apt-get update && \
       "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1
then
    cat "$log" >&2
    exit 1
fi
