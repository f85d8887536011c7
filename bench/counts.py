#!/usr/bin/env python3
"""Counts the instructions that vcpp takes for a byte of each kind of input.

    bench/counts.py [--renew] [INPUT...]

The inputs of bench/inputs.py, made small, go through `vcpp -P` under callgrind.
Instructions for an input byte are printed beside those of bench/counts.txt; the exit
status is 1 when one grew by more than 10 %. Counts hardly vary from run to run, but do
with the compiler and the C library. --renew keeps the new counts in bench/counts.txt.
build/bench/INPUT.callgrind is for callgrind_annotate.
"""
import argparse
import os
import re
import subprocess
import sys

from inputs import FOLDER, INPUTS, OPTIONS, ROOT, VCPP, make_input

KEPT = os.path.join(ROOT, "bench", "counts.txt")
TOLERANCE = 1.1
SCALE = .1
WHOLE = ("scene-4KB",)  # its size is what counts


def instructions_per_byte(name):
    path = make_input(name, 1 if name in WHOLE else SCALE)
    profile = os.path.join(FOLDER, name + ".callgrind")
    # A bare environment: what a user has set costs instructions at the start.
    subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=" + profile,
                    VCPP, "-P", *OPTIONS.get(name, []), os.path.basename(path)], check=True, cwd=FOLDER,
                   env={"PATH": os.environ["PATH"], "HOME": FOLDER},
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    with open(profile) as lines:
        total = re.search(r"^totals: (\d+)", lines.read(), re.MULTILINE).group(1)
    return int(total) / os.path.getsize(path)


def read_kept():
    if not os.path.exists(KEPT):
        return {}
    with open(KEPT) as lines:
        return {name: float(count) for name, count in map(str.split, lines)}


def write_kept(counts):
    with open(KEPT, "w") as out:
        out.writelines("%-18s %10.2f\n" % (n, counts[n]) for n in INPUTS if n in counts)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--renew", action="store_true")
    parser.add_argument("inputs", nargs="*", default=list(INPUTS))
    arguments = parser.parse_args()
    kept = read_kept()
    grown, new = [], {}
    print("%-18s %10s %10s" % ("instructions/byte", "now", "kept"))
    for name in arguments.inputs:
        new[name] = instructions_per_byte(name)
        before = kept.get(name)
        if before and new[name] > before * TOLERANCE:
            grown.append(name)
        print("%-18s %10.2f %10s%s" % (name, new[name], "%.2f" % before if before else "-",
                                       "  grew" if name in grown else ""), flush=True)
    if arguments.renew:
        write_kept({**kept, **new})
    elif grown:
        sys.exit("More than 10 % more instructions: " + ", ".join(grown))


if __name__ == "__main__":
    main()
