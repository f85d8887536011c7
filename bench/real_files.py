#!/usr/bin/env python3
"""Times vcpp beside other preprocessors on the largest files of a folder.

    bench/real_files.py [--count N] [--runs N] [--suffix .h] FOLDER

For example an unpacked linux-source package of Debian. The commands take turns; the
least processor time of the rounds counts, since other work only ever adds to it. Prints
a row for each file: milliseconds, and how many times as fast as the fastest peer vcpp
is; the worst rows come last, and a summary ends it.
"""
import argparse
import os
import shutil
import subprocess
import sys

from inputs import VCPP
from preprocess import PEERS


def largest(folder, suffix, count):
    paths = [os.path.join(where, name) for where, _, names in os.walk(folder)
             for name in names if name.endswith(suffix)]
    paths = [path for path in paths if not os.path.islink(path)]
    return sorted(paths, key=os.path.getsize, reverse=True)[:count]


def processor_time(command, path):
    """Seconds in the program and the system for it, None when it fails."""
    process = subprocess.Popen(command + [path], stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = status
    return usage.ru_utime + usage.ru_stime if status == 0 else None


def measure(commands, path, runs):
    times = {name: [] for name in commands}
    for _ in range(runs):
        for name, command in commands.items():
            times[name].append(processor_time(command, path))
    return {name: min(t) for name, t in times.items() if None not in t}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=50)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--suffix", default=".h")
    parser.add_argument("folder")
    arguments = parser.parse_args()
    commands = {"vcpp": [VCPP, "-P"]}
    commands.update({n: c for n, c in PEERS.items() if shutil.which(c[0])})
    rows = []
    for path in largest(arguments.folder, arguments.suffix, arguments.count):
        times = measure(commands, path, arguments.runs)
        if "vcpp" not in times or len(times) < 2:
            sys.exit("%s: vcpp or all peers fail" % path)
        peer = min((t, n) for n, t in times.items() if n != "vcpp")
        rows.append((peer[0] / times["vcpp"], times["vcpp"], peer, path))
    for ratio, own, (time, peer), path in sorted(rows, reverse=True):
        print("%6.2f  vcpp %6.1f ms  %s %6.1f ms  %.1f MB %s" % (
            ratio, own * 1000, peer, time * 1000, os.path.getsize(path) / 1e6,
            os.path.relpath(path, arguments.folder)))
    print("%d files, %d not faster than every peer" % (len(rows), sum(r[0] < 1 for r in rows)))


if __name__ == "__main__":
    main()
