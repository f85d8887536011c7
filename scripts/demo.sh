#!/usr/bin/env bash
# Renders the example palettes, each with the shape that its comment asks for, and
# writes a page that shows the pictures by type: build/demo/index.html.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset release >/dev/null
cmake --build --preset release --target thumbrender vaskel vcpp
ln -sf release/env.sh build/env.sh
. build/env.sh
mkdir -p build/demo
rm -f build/demo/*
cp examples/*.palette build/demo/
cd build/demo

missing=0
for palette in *.palette; do
    picture=${palette%.palette}.jpg
    # shellcheck disable=SC2046 # an option and its value, or nothing
    thumbrender $(../../scripts/shape-of.sh "$palette") "$palette"
    if [ -s "$picture" ]; then
        echo "build/demo/$picture"
    else
        echo "build/demo/$picture is missing" >&2
        missing=1
    fi
done

# section TYPE HEADING: the pictures of all palettes of a type.
section() {
    local palette name words
    echo "<h2>$2</h2><div class=\"row\">"
    grep -l "^ShaderType $1\$" ./*.palette | while read -r palette; do
        name=$(basename "$palette" .palette)
        words=$(sed -n 's/^VVaskel "\(.*\)"$/\1/p' "$palette")
        echo "<figure><a href=\"$name.palette\"><img src=\"$name.jpg\" alt=\"$name\"></a>"
        echo "<figcaption><b>${name//_/ }</b><br><code>$words</code></figcaption></figure>"
    done
    echo '</div>'
}

{
    cat <<'HEAD'
<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Example palettes</title>
<style>
body { font: 14px/1.45 system-ui, sans-serif; color: #222; background: #ececec; margin: 2em auto; max-width: 1160px }
h1 { font-weight: 600; margin: 0 10px }
h2 { font-weight: 600; margin: 1.6em 10px .2em; border-bottom: 1px solid #ccc }
p { margin: .4em 10px }
.row { display: grid; grid-template-columns: repeat(auto-fill, minmax(270px, 1fr)) }
figure { margin: 10px; background: #fff; border-radius: 6px; overflow: hidden; box-shadow: 0 1px 3px #0003 }
img { display: block; width: 100%; aspect-ratio: 1 }
figcaption { padding: 8px 10px 10px }
code { font-size: 12px; color: #666 }
</style></head><body>
<h1>Example palettes</h1>
<p>A picture leads to its palette. The line below a name is the shader as the palette has it.</p>
HEAD
    section surface 'Surfaces'
    section displace 'Displacements'
    section light 'Lights'
    section shadow 'Shadows'
    section fog 'Fog'
    echo '</body></html>'
} >index.html

echo "build/demo/index.html"
exit $missing
