#!/usr/bin/env bash
# render-small.sh FOLDER: renders the example palettes into a folder, small and rough,
# each with the shape that its comment asks for. Takes thumbrender and vaskel from PATH.
set -euo pipefail
mkdir -p "$1"
folder=$(cd "$1" && pwd)
cd "$(dirname "$0")/.."
export folder VELDRIN_MAXTHREADS=1

render() {
    local small
    small=$folder/$(basename "$1")
    # In front of all else, so that the palette's own extra text follows.
    { printf 'BeginIfdExtra\nsize 64 64\nsamples 16\nEndIfdExtra\n'; cat "$1"; } >"$small"
    # shellcheck disable=SC2046 # an option and its value, or nothing
    thumbrender $(scripts/shape-of.sh "$small") "$small"
    rm "$small"
}
export -f render

cp examples/*.osl "$folder"
printf '%s\0' examples/*.palette | xargs -0 -P "$(nproc)" -I{} bash -c 'render {}'
rm "$folder"/*.osl
