#!/usr/bin/env python3
"""Compares thumbrender with a bare loop of popen, write and pclose.

    cmake --build --preset release --target thumbrender popen_loop
    bench/driver.py [--palettes N] [--rounds N]

The renderer is cat, which only reads; both write the same scene to it. thumbrender and
the loop take turns, a tenth of the N palettes (10,000) each; the medians of a
palette's wall and processor time, the renderer's with it, are printed with their ratio,
which must be at most 1.3. Then all palettes go through one thumbrender: its peak
of resident memory and its most descriptors, looked at while it runs, must be those of
the run over a tenth, but for the names of the palettes (about 35 bytes each).
"""
import argparse
import os
import shutil
import statistics
import subprocess
import time

from inputs import FOLDER, ROOT

BIN = os.path.join(ROOT, "build", "release", "bin")
PLACE = os.path.join(FOLDER, "driver")
SCENE = os.path.join(PLACE, "scene")
PALETTE = 'ShaderType surface\nVVaskel "v_plastic diff .62 .02 .02 rough .12"\nShopData\n'


def make_place(palettes):
    shutil.rmtree(PLACE, ignore_errors=True)
    os.makedirs(PLACE)
    names = ["p%05d.palette" % i for i in range(palettes)]
    for name in names:
        with open(os.path.join(PLACE, name), "w") as out:
            out.write(PALETTE)
    os.symlink(shutil.which("cat"), os.path.join(PLACE, "vaskel"))
    return names


def memory_and_descriptors(pid):
    """KB at most so far and how many now; zeros for a process that has ended."""
    try:
        with open("/proc/%d/status" % pid) as lines:
            peaks = [line.split()[1] for line in lines if line.startswith("VmHWM")]
        return int(peaks[0]) if peaks else 0, len(os.listdir("/proc/%d/fd" % pid))
    except OSError:
        return 0, 0


def run(command, output=subprocess.DEVNULL):
    """Wall seconds, processor seconds, KB of memory, descriptors."""
    environment = {"PATH": PLACE + ":" + os.environ["PATH"], "HOME": PLACE,
                   "VDX": os.path.join(ROOT, "share")}
    start = time.perf_counter()
    process = subprocess.Popen(command, stdout=output, cwd=PLACE, env=environment)
    memory, descriptors, pid = 0, 0, 0
    while pid == 0:
        now = memory_and_descriptors(process.pid)
        memory, descriptors = max(memory, now[0]), max(descriptors, now[1])
        time.sleep(.01)
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
    process.returncode = os.waitstatus_to_exitcode(status)
    assert process.returncode == 0, command[0]
    seconds = time.perf_counter() - start
    return seconds, usage.ru_utime + usage.ru_stime, memory, descriptors


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--palettes", type=int, default=10000)
    parser.add_argument("--rounds", type=int, default=5)
    arguments = parser.parse_args()
    names = make_place(arguments.palettes)
    few = names[:len(names) // 10]
    thumbrender = os.path.join(BIN, "thumbrender")
    with open(SCENE, "w") as scene:
        run([thumbrender, names[0]], scene)
    loop = [os.path.join(BIN, "popen_loop"), str(len(few)), SCENE, "vaskel"]

    ours, bare = [], []
    for _ in range(arguments.rounds):
        ours.append(run([thumbrender] + few))
        bare.append(run(loop))
    for i, what in enumerate(("wall", "processor")):
        mine, theirs = (statistics.median(r[i] for r in runs) / len(few) * 1e3
                        for runs in (ours, bare))
        print("%-9s ms a palette: thumbrender %.3f, bare loop %.3f, ratio %.2f (at most 1.3)"
              % (what, mine, theirs, mine / theirs), flush=True)
    for count, result in ((len(few), ours[-1]), (len(names), run([thumbrender] + names))):
        print("%6d palettes: %.1f MB, %d descriptors" % (count, result[2] / 1000, result[3]))
    shutil.rmtree(PLACE)


if __name__ == "__main__":
    main()
