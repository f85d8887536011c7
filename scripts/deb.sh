#!/usr/bin/env bash
# Makes the Debian packages from the files that git tracks, as they are now: build/deb/*.deb
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh debhelper dpkg-dev fakeroot lintian
rm -rf build/deb
mkdir -p build/deb/source
git ls-files -z | tar --null --files-from=- -cf - | tar -xf - -C build/deb/source
(cd build/deb/source && dpkg-buildpackage --build=binary --no-sign) >build/deb/log 2>&1 ||
    { tail -n 20 build/deb/log | cut -c 1-300 >&2; exit 1; }
lintian --allow-root --fail-on error,warning build/deb/*.changes
ls build/deb/*.deb
