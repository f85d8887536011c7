#!/usr/bin/env bash
# Renders the example palettes anew as the small pictures that tests compare with, and
# writes a page that shows each as it was, as it is, and where they differ (eight times
# as bright): build/pictures/index.html. Look at it before committing.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset release >/dev/null
cmake --build --preset release --target thumbrender vaskel
. build/release/env.sh
kept=tests/vaskel/pictures
rm -rf build/pictures
mkdir -p build/pictures/old "$kept"
find "$kept" -name '*.jpg' -exec mv {} build/pictures/old/ \;
scripts/render-small.sh "$kept"
cp -r "$kept" build/pictures/new

{
    cat <<'HEAD'
<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Pictures: old, new, difference</title>
<style>
body { font: 14px sans-serif; background: #ececec }
.row { display: inline-block; margin: 8px }
.row > * { display: inline-block; width: 192px; height: 192px; image-rendering: pixelated }
.both { position: relative; isolation: isolate; filter: brightness(8); background: #000 }
.both img { position: absolute; width: 100%; height: 100% }
.both img + img { mix-blend-mode: difference }
</style></head><body>
HEAD
    for picture in build/pictures/new/*.jpg; do
        name=$(basename "$picture")
        echo "<figure class=\"row\"><img src=\"old/$name\" alt=\"none\"><img src=\"new/$name\" alt=\"none\">"
        echo "<div class=\"both\"><img src=\"old/$name\" alt=\"\"><img src=\"new/$name\" alt=\"\"></div>"
        echo "<figcaption style=\"display:block;height:auto\">${name%.jpg}</figcaption></figure>"
    done
    echo '</body></html>'
} >build/pictures/index.html
echo "build/pictures/index.html"
