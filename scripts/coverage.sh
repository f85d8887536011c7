#!/usr/bin/env bash
# Runs all tests and prints, for each folder, how much of its code they reached.
# With files as arguments (UT/text/UT_String.cpp), shows their lines with counts instead.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh llvm
cmake --preset coverage >/dev/null
cmake --build --preset coverage
rm -rf build/coverage/profiles
ctest --preset coverage --parallel "$(nproc)"

cd build/coverage
llvm-profdata merge -o all.profdata profiles/*.profraw
programs=(bin/*)
about=("${programs[0]}" "${programs[@]/#/-object=}" -instr-profile=all.profdata)
if [ $# -gt 0 ]; then
    exec llvm-cov show "${about[@]}" "${@/#/../../}"
fi
# Without the outer folders each name begins with its folder. Three columns each tell
# of regions, functions, lines and branches: how many, how many missed, a share.
llvm-cov report "${about[@]}" -ignore-filename-regex='^/usr/|/tests/|/fuzz/' 2>report.log |
    tee report.txt |
    awk -F'[/ ]+' '
        {
            lines[$1] += $9; missed[$1] += $10; branches[$1] += $12; untaken[$1] += $13
        }
        END {
            count = split("UT CPP vcpp thumbnail vaskel", folders)
            for (i = 1; i <= count; i++) {
                folder = folders[i]
                printf "%s %.1f %% lines %.1f %% branches\n", folder,
                       100 - 100 * missed[folder] / lines[folder],
                       100 - 100 * untaken[folder] / branches[folder]
            }
        }'
echo "build/coverage/report.txt has each file"
