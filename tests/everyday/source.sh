#!/usr/bin/env bash
# A clone in a path with a blank that cannot be written to, built by another user without a
# home: with shared libraries into a prefix, which a program finds by find_package and by
# pkg-config; and inside another project.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tests/everyday/install/draw.sh
scripts/install-deps.sh pkg-config

as_other=(env -i PATH=/usr/bin:/bin)
[ "$(id -u)" -ne 0 ] || as_other=(setpriv --reuid 65534 --regid 65534 --clear-groups "${as_other[@]}")
work=$(mktemp -d)
trap 'chmod -R u+w "$work" && rm -rf "$work"' EXIT
chmod 755 "$work"
source="$work/our source"
mkdir "$source"
git ls-files -z | tar --null --files-from=- -cf - | tar -xf - -C "$source"
chmod -R a+rX,a-w "$source"
mkdir -m 777 "$work/built"
cd "$work/built"

# quietly COMMAND...: as the other user; what it says, only when it fails.
quietly()
{
    "${as_other[@]}" "$@" >log 2>&1 || { tail -n 30 log >&2; fail "$*"; }
}

echo "a build from a source that cannot be written to"
quietly cmake -G Ninja -S "$source" -B tree -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
    -DBUILD_TESTING=OFF -DCMAKE_INSTALL_PREFIX="$work/built/first"
quietly cmake --build tree
quietly cmake --install tree
mv first moved
draws_a_picture "$work/built/moved/bin" "$work"

# shows EXPAND: the example's scene has the shape that was asked for.
shows()
{
    "${as_other[@]}" HOME="$work/built" VDX="$work/built/moved/share" LD_LIBRARY_PATH=moved/lib \
        "$1" shop/palette/shadeball.ifd GEO_TEAPOT 2>/dev/null | grep -qx teapot || fail "$1"
}

echo "a program that stands on the libraries"
example=moved/share/doc/veldrin-thumbnail/doc/library
quietly cmake -G Ninja -S "$example" -B package -DCMAKE_PREFIX_PATH="$work/built/moved"
quietly cmake --build package
shows package/expand
# shellcheck disable=SC2046 # words of their own
c++ -std=c++17 "$example/expand.cpp" -o expand \
    $(PKG_CONFIG_PATH=moved/lib/pkgconfig pkg-config --cflags --libs veldrin-cpp)
shows ./expand
for header in moved/include/veldrin/*/*.h; do
    echo "#include <${header#moved/include/veldrin/}>"
done >all.cpp
c++ -std=c++17 -fsyntax-only -Imoved/include/veldrin all.cpp

echo "a part of another project"
mkdir outer
cat >outer/CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.24)
project(outer CXX)
add_subdirectory("$source" veldrin)
add_executable(expand "$source/doc/library/expand.cpp")
target_link_libraries(expand PRIVATE Veldrin::CPP)
END
quietly cmake -G Ninja -S outer -B inner -DVELDRIN_BUILD_VASKEL=OFF
quietly cmake --build inner
shows inner/expand
[ "$(ls outer)" = CMakeLists.txt ] || fail "files appeared in the outer project's source"
[ ! -e inner/veldrin/tests ] || fail "another project got our tests"
quietly cmake --install inner --prefix none
[ ! -e none ] || fail "another project installs our files"
