#!/usr/bin/env bash
# Runs every script beside this one: what people meet every day, on a real system. Takes
# minutes; goes on after a failure and tells at the end.
set -uo pipefail
cd "$(dirname "$0")/../.."

failed=()
for script in tests/everyday/*.sh; do
    [ "$script" != tests/everyday/run.sh ] || continue
    echo "== $script"
    "$script" || failed+=("$script")
done
[ ${#failed[@]} -eq 0 ] || { printf 'failed: %s\n' "${failed[@]}" >&2; exit 1; }
