#!/usr/bin/env python3
"""Times vcpp beside other preprocessors, as whole processes into a drained pipe.

    bench/preprocess.py [--runs N] [--scale F] [INPUT...]

Each input is made once under build/bench/, the same bytes each time. The commands
take turns, N rounds (5); the medians are printed in milliseconds, then how many
times as fast as the fastest peer vcpp is, beside what we must and want to reach; a
short scene is all start-up and compared with cat.
A peer that is not installed, or that fails on an input, shows as "-". --scale .1
makes the inputs a tenth as large.
"""
import argparse
import shutil
import statistics
import subprocess
import time

from inputs import FOLDER, INPUTS, OPTIONS, VCPP, make_input

PEERS = {
    "cpp": ["cpp", "-P"],
    "cpp-trad": ["cpp", "-traditional-cpp", "-P"],
    "clang": ["clang", "-E", "-P", "-x", "c"],
    "tcc": ["tcc", "-E", "-P", "-xc"],
    "mcpp": ["mcpp", "-P"],
    "ucpp": ["ucpp", "-l"],
}


def run(command, path):
    """Seconds of wall time, or None when the command fails."""
    start = time.perf_counter()
    process = subprocess.Popen(command + [path], stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, cwd=FOLDER)
    while process.stdout.read(1 << 20):
        pass
    return time.perf_counter() - start if process.wait() == 0 else None


def measure(name, path, runs):
    options = OPTIONS.get(name, [])
    commands = {"vcpp": [VCPP, "-P"] + options, "cat": ["cat"]}
    commands.update({name: c + options for name, c in PEERS.items() if shutil.which(c[0])})
    times = {name: [] for name in commands}
    for _ in range(runs):
        for name, command in commands.items():
            times[name].append(run(command, path))
    return {name: None if None in t else statistics.median(t) for name, t in times.items()}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--scale", type=float, default=1)
    parser.add_argument("inputs", nargs="*", default=list(INPUTS))
    arguments = parser.parse_args()
    columns = ["cat", "vcpp"] + list(PEERS)
    print("%-18s" % "ms" + "".join("%9s" % c for c in columns) + "   ratio  must  aim")
    for name in arguments.inputs:
        medians = measure(name, make_input(name, arguments.scale), arguments.runs)
        rivals = ["cat"] if name.startswith("scene") else PEERS
        peers = [medians[p] for p in rivals if medians.get(p)]
        cells = "".join("%9s" % ("%.1f" % (1000 * medians[c]) if medians.get(c) else "-")
                        for c in columns)
        ratio = "%.2f" % (min(peers) / medians["vcpp"]) if peers and medians["vcpp"] else "-"
        print("%-18s%s %7s %5.2g %5.2g" % (name, cells, ratio, INPUTS[name][2], INPUTS[name][3]),
              flush=True)


if __name__ == "__main__":
    main()
