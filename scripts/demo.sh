#!/usr/bin/env bash
# Renders the example palettes with one thumbrender call and writes a page
# that shows the pictures: build/demo/index.html.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset release >/dev/null
cmake --build --preset release --target thumbrender vaskel vcpp
. build/env.sh
mkdir -p build/demo
rm -f build/demo/*
cp examples/*.palette build/demo/
cd build/demo
thumbrender ./*.palette

{
    echo '<!DOCTYPE html><html lang="en"><head><meta charset="utf-8"><title>Palettes</title>'
    echo '<style>body{font:14px sans-serif;background:#f4f4f4}figure{display:inline-block;margin:12px}'
    echo 'img{display:block;width:256px;height:256px}</style></head><body>'
    for palette in *.palette; do
        name=${palette%.palette}
        echo "<figure><img src=\"$name.jpg\" alt=\"$name\"><figcaption>$name</figcaption></figure>"
    done
    echo '</body></html>'
} >index.html

missing=0
for palette in *.palette; do
    picture=${palette%.palette}.jpg
    if [ -s "$picture" ]; then
        echo "build/demo/$picture"
    else
        echo "build/demo/$picture is missing" >&2
        missing=1
    fi
done
echo "build/demo/index.html"
exit $missing
