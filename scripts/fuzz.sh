#!/usr/bin/env bash
# Lets each fuzz target (or those named, such as CPP_Manager) search for faults
# for FUZZ_SECONDS, one target a core. New inputs are kept in build/fuzz/corpus;
# a finding is named, and makes the run fail.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
[ $# -gt 0 ] || set -- $(cd build/fuzz/bin && printf '%s\n' fuzz_* | sed 's/^fuzz_//')

# A shader without end runs to its budget, which takes a hundred times as long when each
# comparison is traced.
seconds() {
    case $1 in OSL_Shader | osl_Machine) echo 120 ;; *) echo 10 ;; esac
}
search() {
    local found=build/fuzz/corpus/$1 findings=build/fuzz/findings/$1
    mkdir -p "$found" "$findings"
    if "build/fuzz/bin/fuzz_$1" -max_total_time="${FUZZ_SECONDS:-60}" -timeout="$(seconds "$1")" -max_len=4096 \
        -artifact_prefix="$findings/" "$found" "fuzz/corpus/$1" </dev/null >"$findings.log" 2>&1
    then
        echo "$1: $(tail -n 1 "$findings.log"), no finding"
    else
        echo "$1: a finding, see $findings.log" >&2
        return 1
    fi
}
export -f seconds search
printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} bash -c 'search {}'
