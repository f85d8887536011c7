#!/usr/bin/env python3
"""Times vcpp beside other preprocessors, as whole processes into a drained pipe.

    bench/preprocess.py [--runs N] [--scale F] [INPUT...]

Each input is made once under build/bench/, the same bytes each time. The commands
take turns, N rounds (5); the medians are printed in milliseconds, then how many
times as fast as the fastest peer vcpp is, beside what we must and want to reach.
A peer that is not installed, or that fails on an input, shows as "-". --scale .1
makes the inputs a tenth as large.
"""
import argparse
import os
import random
import shutil
import statistics
import subprocess
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "build", "bench")
VCPP = os.path.join(ROOT, "build", "release", "bin", "vcpp")

PEERS = {
    "cpp": ["cpp", "-P"],
    "cpp-trad": ["cpp", "-traditional-cpp", "-P"],
    "clang": ["clang", "-E", "-P", "-x", "c"],
    "tcc": ["tcc", "-E", "-P"],
    "mcpp": ["mcpp", "-P"],
    "ucpp": ["ucpp", "-l"],
}


def text_of(size, make_piece):
    """Pieces, by their number, until they have `size` characters."""
    pieces, total = [], 0
    while total < size:
        pieces.append(make_piece(len(pieces)))
        total += len(pieces[-1])
    return "".join(pieces)


def number(rng):
    return "%d.%04d" % (rng.randrange(100), rng.randrange(10000))


def short_lines(rng, size):
    return text_of(size, lambda i: " ".join(number(rng) for _ in range(4)) + "\n")


def long_lines(rng, size):
    return text_of(size, lambda i: text_of(1 << 20, lambda k: number(rng) + " ") + "\n")


def many_macros(rng, size):
    def word(i):
        return "M%d" % rng.randrange(10000) if i % 5 == 0 else "word%d" % rng.randrange(10000)
    defines = "".join("#define M%d value%d\n" % (i, i) for i in range(10000))
    return defines + text_of(size, lambda i: " ".join(word(k) for k in range(10)) + "\n")


def nested_macros(rng, size):
    defines = "#define F0(x,y) (x+y)\n" + "".join(
        "#define F%d(x,y) F%d(y,F%d(x,1))\n" % (i, i - 1, i - 1) for i in range(1, 3))
    return defines + text_of(
        size, lambda i: "v F%d(a%d, F%d(b, c))\n" % (rng.randrange(3), i, rng.randrange(2)))


def skipped(rng, size):
    return text_of(size, lambda i: "#if 0\n%s#else\nkept %d\n#endif\n" % (short_lines(rng, 4000), i))


def comments(rng, size):
    def group(_):
        note = " ".join("note%d" % rng.randrange(100) for _ in range(60))
        kept = " ".join(number(rng) for _ in range(40))
        return "/* %s\n%s */ kept\n// %s\n%s\n" % (note, note, note[:80], kept)
    return text_of(size, group)


def headers(rng, count):
    for i in range(int(count)):
        with open(os.path.join(FOLDER, "guarded%d.h" % i), "w") as out:
            out.write("#ifndef GUARD%d\n#define GUARD%d\n%s#endif\n" % (i, i, short_lines(rng, 500)))
    return "".join('#include "guarded%d.h"\n' % i for _ in range(5) for i in range(int(count)))


MB = 1000000
INPUTS = {  # name: maker, size, what we must be against the fastest peer, what we want
    "short-lines-50MB": (short_lines, 50 * MB, 2, 4),
    "long-lines-50MB": (long_lines, 50 * MB, 2, 4),
    "macros-20MB": (many_macros, 20 * MB, 1.5, 3),
    "nested-5MB": (nested_macros, 5 * MB, 1.2, 2),
    "skipped-20MB": (skipped, 20 * MB, 1, 1.2),
    "comments-20MB": (comments, 20 * MB, 1, 1.2),
    "headers-2000x5": (headers, 2000, 1, 1.2),
    "scene-4KB": (short_lines, 4000, 1, 1),
}


def make_input(name, scale):
    path = os.path.join(FOLDER, "%s-%g.in" % (name, scale))
    if not os.path.exists(path):
        maker, size, _, _ = INPUTS[name]
        with open(path, "w") as out:
            out.write(maker(random.Random(name), size * scale))
    return path


def run(command, path):
    """Seconds of wall time, or None when the command fails."""
    start = time.perf_counter()
    process = subprocess.Popen(command + [path], stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, cwd=FOLDER)
    while process.stdout.read(1 << 20):
        pass
    return time.perf_counter() - start if process.wait() == 0 else None


def measure(path, runs):
    commands = {"vcpp": [VCPP, "-P"], "cat": ["cat"]}
    commands.update({name: c for name, c in PEERS.items() if shutil.which(c[0])})
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
    os.makedirs(FOLDER, exist_ok=True)

    columns = ["cat", "vcpp"] + list(PEERS)
    print("%-18s" % "ms" + "".join("%9s" % c for c in columns) + "   ratio  must  aim")
    for name in arguments.inputs:
        medians = measure(make_input(name, arguments.scale), arguments.runs)
        peers = [medians[p] for p in PEERS if medians.get(p)]
        cells = "".join("%9s" % ("%.1f" % (1000 * medians[c]) if medians.get(c) else "-")
                        for c in columns)
        ratio = "%.2f" % (min(peers) / medians["vcpp"]) if peers and medians["vcpp"] else "-"
        print("%-18s%s %7s %5g %4g" % (name, cells, ratio, INPUTS[name][2], INPUTS[name][3]),
              flush=True)


if __name__ == "__main__":
    main()
