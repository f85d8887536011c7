#!/usr/bin/env python3
"""Fits what work takes (vk_Work in vaskel/base/vk_Stats.h, and vk_World::rayCost()) again.

    bench/costs.py [--runs N] [EXAMPLE...]

Draws the examples, N times each (3), and takes the least processor time. Printed are weights of
least squares, in steps of shaders' programs; beside them those that are kept, and how far the
examples' times are off what both say. The kept ones are rounded, and count a little less for
rays: steps of some programs take longer than the mean, and no picture shall take much longer
than another. thumbrender must have been built.
"""
import argparse
import math
import os
import re
import resource
import shutil
import subprocess
import tempfile

import pictures

NAMES = ["CAMERA_RAY", "SCATTERED_RAY", "SHADOW_RAY", "ROUGH_GLASS"]
PATTERN = re.compile(r"rays +(\d+) camera, (\d+) scattered, (\d+) shadow\n"
                     r"glass +(\d+) rough vertices\n"
                     r"shaders +(\d+) steps of programs\n"
                     r"meshes +(\d+) corners\n")


def number(file, name):
    with open(os.path.join(pictures.ROOT, file)) as text:
        return float(re.search(r"\b%s = ([.\d]+)" % name, text.read()).group(1))


def measure(scene, folder, runs):
    """Processor seconds, and the amounts of each kind of work in millions."""
    least = math.inf
    for _ in range(runs):
        before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
        said = subprocess.run(["vaskel", "--stats"], cwd=folder, env=pictures.environment(),
                              check=True, input=scene.encode(),
                              stderr=subprocess.PIPE).stderr.decode()
        least = min(least, resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before)
    counts = [int(count) for count in PATTERN.search(said).groups()]
    few = number("vaskel/trace/vk_World.cpp", "FEW")
    deeper = math.log2(max(counts[5], few) / few)
    return least, [count / 1e6 for count in counts[:5]] + [sum(counts[:3]) * deeper / 1e6]


def solve(rows, values):
    """Least squares, by the normal equations and Gaussian elimination; 0 where nothing tells."""
    size = len(rows[0])
    matrix = [[sum(r[i] * r[j] for r in rows) for j in range(size)] +
              [sum(r[i] * v for r, v in zip(rows, values))] for i in range(size)]
    for i in range(size):
        pivot = max(range(i, size), key=lambda k: abs(matrix[k][i]))
        matrix[i], matrix[pivot] = matrix[pivot], matrix[i]
        for k in range(size):
            if k != i and matrix[i][i] != 0:
                factor = matrix[k][i] / matrix[i][i]
                matrix[k] = [a - factor * b for a, b in zip(matrix[k], matrix[i])]
    return [row[size] / row[i] if row[i] != 0 else 0 for i, row in enumerate(matrix)]


def main():
    options = argparse.ArgumentParser(description="See the file.")
    options.add_argument("--runs", type=int, default=3)
    options.add_argument("examples", nargs="*", metavar="EXAMPLE")
    chosen = options.parse_args()
    examples = chosen.examples or sorted(
        name[:-len(".palette")] for name in os.listdir(pictures.EXAMPLES)
        if name.endswith(".palette"))
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(pictures.EXAMPLES, folder, dirs_exist_ok=True)
        measured = [measure(pictures.scene_of(name, folder), folder, chosen.runs)
                    for name in examples]
    # Errors of long times weigh more than those of short ones, but not by as much as they differ.
    weights = [1 / math.sqrt(time) for time, _ in measured]
    fitted = solve([[w * x for x in work] for w, (_, work) in zip(weights, measured)],
                   [w * time for w, (time, _) in zip(weights, measured)])
    step = fitted[4] or 1
    kept = [number("vaskel/base/vk_Stats.h", name) for name in NAMES]
    mean = sum(kept[:3]) / 3
    kept += [1, number("vaskel/trace/vk_World.cpp", "STEP") * mean]
    print("%-16s %8s %8s" % ("steps", "fitted", "kept"))
    for name, a, b in zip(NAMES + ["step", "ray, doubling"], fitted, kept):
        print("%-16s %8.1f %8.1f" % (name, a / step, b))
    print("a step takes %.1f ns" % (step * 1e3))
    said = [[sum(a * b for a, b in zip(work, by)) for _, work in measured]
            for by in (fitted, kept)]
    scale = sum(t for t, _ in measured) / sum(said[1])
    print("\n%-20s %7s %7s %7s" % ("seconds", "took", "fitted", "kept"))
    for name, (time, _), a, b in sorted(zip(examples, measured, *said), key=lambda r: -r[1][0]):
        print("%-20s %7.2f %7.2f %7.2f" % (name, time, a, b * scale))


if __name__ == "__main__":
    main()
