#!/usr/bin/env python3
"""Times thumbmake on libraries of palettes in nested folders.

    cmake --build --preset release
    bench/library.py [--palettes N] [--large N] [--quality Q]

The library is made of the examples, each copied as often as it takes for N palettes (300);
folders hold twenty. Printed are, with what they must be:
  - the wall time of a first run over the time that the pictures need: the processor time
    of one thumbrender a palette, over the number of processors (at most 1.1);
  - the wall time of a second run, which finds all up to date (under .2 s);
  - what a run makes after one that was killed in the middle;
  - the wall time and the peak of resident memory of thumbmake and what it starts on the
    large library (10,000) of small pictures that are up to date (1 s, 50 MB).
"""
import argparse
import os
import resource
import shutil
import signal
import subprocess
import sys
import time

from inputs import FOLDER, ROOT

BIN = os.path.join(ROOT, "build", "release", "bin")
PLACE = os.path.join(FOLDER, "library")
EXAMPLES = os.path.join(ROOT, "examples")
ENVIRONMENT = {"PATH": BIN + ":/usr/bin:/bin", "HOME": PLACE, "LANG": "C.UTF-8",
               "VDX": os.path.join(ROOT, "share")}
PER_FOLDER = 20


def make_library(name, count):
    """A fresh folder of count palettes; returns it and the palettes."""
    folder = os.path.join(PLACE, name)
    shutil.rmtree(folder, ignore_errors=True)
    shutil.rmtree(os.path.join(PLACE, ".cache"), ignore_errors=True)
    files = sorted(os.listdir(EXAMPLES))
    examples = [each for each in files if each.endswith(".palette")]
    palettes = []
    for i in range(count):
        inside = os.path.join(folder, "set %d" % (i // PER_FOLDER // 10), "%03d" % (i // PER_FOLDER))
        if i % PER_FOLDER == 0:
            os.makedirs(inside)
            for each in files:
                if each.endswith(".osl"):
                    shutil.copy(os.path.join(EXAMPLES, each), inside)
        palettes.append(os.path.join(inside, "%04d %s" % (i, examples[i % len(examples)])))
        shutil.copy(os.path.join(EXAMPLES, examples[i % len(examples)]), palettes[-1])
    return folder, palettes


def pictures_of(palettes):
    return [each[:-len("palette")] + "jpg" for each in palettes]


def run(*command):
    """Wall seconds, processor seconds, last line; all children counted."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.perf_counter()
    done = subprocess.run(command, env=ENVIRONMENT, capture_output=True, text=True)
    wall = time.perf_counter() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if done.returncode:
        sys.exit("%s:\n%s%s" % (command[0], done.stdout[-2000:], done.stderr[-2000:]))
    cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return wall, cpu, (done.stdout.strip().splitlines() or [""])[-1]


def peak_memory(command):
    """MB of thumbmake and what it starts together, at most."""
    process = subprocess.Popen(command, env=ENVIRONMENT, stdout=subprocess.DEVNULL)
    most = 0
    while process.poll() is None:
        most = max(most, sum(resident(pid) for pid in family(process.pid)))
        time.sleep(.002)
    return most / 1024


def family(pid):
    found = [pid]
    for each in found:
        try:
            with open("/proc/%d/task/%d/children" % (each, each)) as children:
                found += [int(child) for child in children.read().split()]
        except OSError:
            pass
    return found


def resident(pid):
    try:
        with open("/proc/%d/status" % pid) as lines:
            return sum(int(line.split()[1]) for line in lines if line.startswith("VmRSS"))
    except OSError:
        return 0


def row(what, figure, limit):
    print("%-58s %8.2f   %s" % (what, figure, limit), flush=True)


def small_library(count):
    folder, palettes = make_library("small", count)
    cores = len(os.sched_getaffinity(0))
    alone = sum(run("thumbrender", each)[1] for each in palettes)
    for each in pictures_of(palettes):
        if os.path.exists(each):
            os.unlink(each)
    wall, cpu, summary = run("thumbmake", folder)
    row("%d palettes: wall seconds (%s)" % (count, summary), wall, "")
    row("the same over pictures' processor time (%.1f s) / %d" % (alone, cores),
        wall * cores / alone, "<= 1.1")
    wall, cpu, summary = run("thumbmake", folder)
    row("second run: seconds (%s)" % summary, wall, "<  .2")


def killed_library(count):
    folder, palettes = make_library("killed", count)
    process = subprocess.Popen(["thumbmake", folder], env=ENVIRONMENT, stdout=subprocess.DEVNULL,
                               start_new_session=True)
    while process.poll() is None and sum(map(os.path.exists, pictures_of(palettes))) < count // 2:
        time.sleep(.05)
    os.killpg(process.pid, signal.SIGKILL)
    process.wait()
    made = sum(map(os.path.exists, pictures_of(palettes)))
    print("killed with %d of %d made; then: %s" % (made, count, run("thumbmake", folder)[2]))


def large_library(count):
    folder, _ = make_library("large", count)
    command = ["thumbmake", "--size", "8", "--quality", "draft", folder]
    row("%d palettes of 8 pixels: first run, seconds" % count, run(*command)[0], "")
    walls = sorted(run(*command)[0] for _ in range(5))
    row("up to date: seconds, median of 5", walls[2], "<  1")
    row("up to date: MB, thumbmake and ninja together", peak_memory(command), "<  50")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--palettes", type=int, default=300, help="0: without them")
    parser.add_argument("--large", type=int, default=10000, help="0: without them")
    parser.add_argument("--quality", default="default", help="of the pictures: draft saves minutes")
    options = parser.parse_args()
    ENVIRONMENT["VELDRIN_VASKEL_OPTIONS"] = "--quality " + options.quality
    os.makedirs(PLACE, exist_ok=True)
    if options.palettes:
        small_library(options.palettes)
        killed_library(max(20, options.palettes // 5))
    if options.large:
        large_library(options.large)


if __name__ == "__main__":
    main()
