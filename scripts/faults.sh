#!/usr/bin/env bash
# Lets memory, files and the system fail under the programs and judges what they do, see
# tests/faults/faults.py, which takes the arguments.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh python3
cmake --preset release >/dev/null
cmake --build --preset release --target vcpp thumbrender vaskel thumbmake faults faults_trace
exec tests/faults/faults.py "$@"
