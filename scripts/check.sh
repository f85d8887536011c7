#!/usr/bin/env bash
# Builds every preset and runs all tests in each; stops at the first failure.
set -euo pipefail
cd "$(dirname "$0")/.."

for preset in release sanitize m32; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel 2
done
ln -sf release/env.sh build/env.sh
