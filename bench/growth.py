#!/usr/bin/env python3
"""Shows how the time and the memory of vcpp grow with its input.

    bench/growth.py [--largest F] [CASE...]

Each case runs at several sizes, each ten times the one before. A row has

    ms      processor time, the least of several runs (other work only adds to it)
    ns for  that, less the time for an empty input, for an item: a byte, a line, or a
            macro times the logarithm of their number
    grew    the same as a multiple of the row before; "-" where that was mostly start-up
    MB      peak of resident memory. The first MB are the interpreter's, before it
            becomes vcpp: see the empty input.
    limit   20 MB, the longest line, and the macros with 300 bytes each
    status  of vcpp, with its first message

"!" marks more than 10 % growth for an item, and memory above the limit. Texts go
through a pipe and are never in one piece; include files are made under build/bench/ and
deleted. --largest .1 leaves the largest size of each case out.
"""
import argparse
import math
import os
import random
import subprocess
import threading

from inputs import FOLDER, MB, VCPP, short_lines

NEST = os.path.join(FOLDER, "nest")
MACRO_BYTES = 300


def repeated(piece, count):
    """`count` times the piece, in chunks of about 64 KB."""
    block = max(1, 65536 // len(piece))
    for _ in range(count // block):
        yield piece * block
    yield piece * (count % block)


def short_text(n):
    return repeated(short_lines(random.Random(1), 10000)[:9999] + "\n", n // 10000)


def macros(n):
    for i in range(n):
        yield "#define MACRO%d value%d\n" % (i, i)
    for i in range(n):  # in another order: 999983 is prime
        yield "MACRO%d%s" % (i * 999983 % n, "\n" if i % 10 == 9 else " ")


def one_line(n):
    yield from repeated("12.3456 ", n // 8)
    yield "\n"


def parentheses(n):
    yield "#define F(x) x\nF("
    yield from repeated("(", n)
    yield from repeated(")", n)
    yield ")\n"


def continuations(n):
    yield from repeated("word\\\n", n)
    yield "end\n"


def conditionals(n):
    return repeated("#if 1\n", n)


def includes(n):
    os.makedirs(NEST, exist_ok=True)
    for i in range(n):
        with open(os.path.join(NEST, "%d.h" % i), "w") as out:
            out.write('#include "%d.h"\n' % (i + 1) if i + 1 < n else "deepest\n")
    yield '#include "nest/0.h"\n'


def delete_includes():
    if os.path.isdir(NEST):
        for name in os.listdir(NEST):
            os.remove(os.path.join(NEST, name))
        os.rmdir(NEST)


def comment(n):
    yield "/*"
    yield from repeated("word " * 15 + "\n", n // 76)
    yield "*/\n"


def comment_line(n):
    yield "/*"
    yield from repeated("word ", n // 5)
    yield "*/\n"


CASES = {  # name: text, sizes, item, what it may keep in memory for a size, in bytes
    "short lines": (short_text, [MB, 10 * MB, 100 * MB, 1000 * MB], "byte", lambda n: 0),
    "macros": (macros, [100, 1000, 10000, 100000, 1000000], "n log n", lambda n: MACRO_BYTES * n),
    "one line": (one_line, [MB, 10 * MB, 100 * MB], "byte", lambda n: n),
    "nested parentheses": (parentheses, [10000, 100000, 1000000], "pair", lambda n: 2 * n),
    "continuation lines": (continuations, [1000, 10000, 100000], "line", lambda n: 4 * n),
    "open conditionals": (conditionals, [1000, 10000, 100000], "one", lambda n: 4 * n),
    "nested includes": (includes, [100, 1000, 10000], "file", lambda n: 0),
    "comment": (comment, [10 * MB, 100 * MB, 1000 * MB], "byte", lambda n: 0),
    "comment, one line": (comment_line, [MB, 10 * MB, 100 * MB], "byte", lambda n: n),
}


def feed(pipe, pieces):
    with pipe:
        for piece in pieces:
            pipe.write(piece.encode())


def run(pieces):
    """Seconds of processor time, MB of peak memory, the status and the first message."""
    process = subprocess.Popen([VCPP, "-P", "-"], stdin=subprocess.PIPE, cwd=FOLDER,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    feeder = threading.Thread(target=feed, args=(process.stdin, pieces))
    feeder.start()
    message = process.stderr.readline().decode().strip()
    while process.stderr.read(65536):
        pass
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    feeder.join()
    seconds = usage.ru_utime + usage.ru_stime
    return seconds, usage.ru_maxrss * 1024 / MB, process.returncode, message


def measure(make, n):
    """The least of several runs, the more the shorter they are."""
    results, total = [], 0
    while not results or (total < 1 and len(results) < 15):
        results.append(run(make(n)))
        total += results[-1][0]
    return min(results)


def show(name, start_up, largest):
    make, sizes, item, kept = CASES[name]
    before = None
    for n in sizes:
        if n > largest * sizes[-1]:
            continue
        seconds, memory, status, message = measure(make, n)
        net = max(seconds - start_up, 0)
        cost = net * 1e9 / (n * math.log2(n) if item == "n log n" else n)
        growth = "%.2f%s" % (cost / before, "!" if cost > 1.1 * before else "") if before else "-"
        limit = 20 + kept(n) / MB
        print("%-18s %10d %8.1f %8.2f %-8s%5s %7.1f%s %6.1f %5d %s"
              % (name, n, seconds * 1000, cost, item, growth, memory,
                 "!" if memory > limit else " ", limit, status, message[:80]), flush=True)
        before = cost if net > start_up else None
    delete_includes()


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--largest", type=float, default=1)
    parser.add_argument("cases", nargs="*", default=list(CASES))
    arguments = parser.parse_args()
    os.makedirs(FOLDER, exist_ok=True)
    start_up, memory, _, _ = measure(lambda n: [], 0)
    print("an empty input: %.2f ms, %.1f MB" % (start_up * 1000, memory))
    print("%-18s %10s %8s %8s %-8s%5s %7s  %6s %5s"
          % ("", "size", "ms", "ns for", "a", "grew", "MB", "limit", "status"))
    for name in arguments.cases:
        show(name, start_up, arguments.largest)


if __name__ == "__main__":
    main()
