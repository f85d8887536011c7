#!/usr/bin/env bash
# Builds and runs the benchmarks of the hot routines; arguments go to the program,
# --benchmark_filter=expand for example.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh libbenchmark-dev
cmake --preset release >/dev/null
cmake --build --preset release --target benchmarks
exec build/release/bin/benchmarks --benchmark_min_time=0.1 "$@"
