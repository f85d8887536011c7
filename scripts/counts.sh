#!/usr/bin/env bash
# Counts vcpp's instructions for a byte of each input, beside the kept counts; fails
# where one grew by more than 10 %. With --renew the new counts are kept.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh valgrind python3
cmake --preset release >/dev/null
cmake --build --preset release --target vcpp
exec bench/counts.py "$@"
