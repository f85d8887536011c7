#!/usr/bin/env bash
# Renders the example palettes, each with the shape that its comment asks for, and
# writes a page that shows the pictures: build/demo/index.html. What is up to date stays.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset release >/dev/null
cmake --build --preset release --target thumbmake thumbrender vaskel vcpp
ln -sf release/env.sh build/env.sh
. build/env.sh
export XDG_CACHE_HOME=$PWD/build/cache
mkdir -p build/demo

# The examples with their dates, and nothing else that an earlier run left.
for old in build/demo/*.palette; do
    [ -e "examples/${old##*/}" ] || rm -f "$old" "${old%.palette}.jpg"
done
cp -p examples/*.palette examples/*.osl build/demo/
cd build/demo

failed=0
for shape in '' $(printf '%s\n' *.palette | xargs -d '\n' -n 1 ../../scripts/shape-of.sh | sed 's/^-g //' | sort -u); do
    palettes=()
    for palette in *.palette; do
        [ "$(../../scripts/shape-of.sh "$palette")" != "${shape:+-g $shape}" ] || palettes+=("$palette")
    done
    thumbmake ${shape:+-g "$shape"} "${palettes[@]}" || failed=1
done
thumbmake -q -n --page . . || failed=1
echo "build/demo/index.html"
exit $failed
