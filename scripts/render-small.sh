#!/usr/bin/env bash
# render-small.sh FOLDER: renders the example palettes into a folder, small, each with
# the shape that its comment asks for. Takes thumbrender and vaskel from PATH.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

mkdir -p "$1"
for palette in "$here"/../examples/*.palette; do
    small=$1/$(basename "$palette")
    # In front of all else, so that the palette's own extra text follows.
    { printf 'BeginIfdExtra\nsize 64 64\nEndIfdExtra\n'; cat "$palette"; } >"$small"
    # shellcheck disable=SC2046 # an option and its value, or nothing
    thumbrender $("$here"/shape-of.sh "$small") "$small"
    rm "$small"
done
