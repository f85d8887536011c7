"""The inputs that the measurements of vcpp share, the same bytes each time."""
import os
import random

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "build", "bench")
VCPP = os.path.join(ROOT, "build", "release", "bin", "vcpp")
MB = 1000000


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


def definitions(rng, size):
    """As in the register headers of drivers: long names in columns."""
    def line(i):
        name = "UNIT%d_REGISTER_%d__%s_MASK" % (i % 7, i, rng.choice(("ENABLE", "STATUS_BITS", "ID")))
        return "#define %-60s 0x%08XL\n" % (name, rng.randrange(1 << 32))
    return text_of(size, line)


def skipped_definitions(rng, size):
    return "#ifdef NOT_HERE\n%s#endif\n" % definitions(rng, size)


def documented_definitions(rng, size):
    def group(i):
        note = " ".join("note%d" % rng.randrange(100) for _ in range(8))
        return "/* %s\n * %s\n */\n#define NAME_%d %d /* %s */\n" % (note, note, i, i, note[:20])
    return text_of(size, group)


def elifs(rng, size):
    return "#if 1\nkept\n%s#endif\n" % text_of(
        size, lambda i: "#elif defined(NAME%d) && VALUE%d > %d\n" % (i % 1000, i % 77, i % 13))


def headers(rng, count, name="guarded"):
    for i in range(int(count)):
        with open(os.path.join(FOLDER, "%s%d.h" % (name, i)), "w") as out:
            out.write("#ifndef GUARD%d\n#define GUARD%d\n%s#endif\n" % (i, i, short_lines(rng, 500)))
    name = os.path.basename(name)
    return "".join('#include "%s%d.h"\n' % (name, i) for _ in range(5) for i in range(int(count)))


def searched_headers(rng, count):
    """Found in the second folder of OPTIONS."""
    for folder in ("empty", "searched"):
        os.makedirs(os.path.join(FOLDER, folder), exist_ok=True)
    return headers(rng, count, "searched/there")


INPUTS = {  # name: maker, size, how fast we must be, and want to be
    "short-lines-50MB": (short_lines, 50 * MB, 2, 4),
    "long-lines-50MB": (long_lines, 50 * MB, 2, 4),
    "macros-20MB": (many_macros, 20 * MB, 1.5, 3),
    "nested-5MB": (nested_macros, 5 * MB, 1.2, 2),
    "skipped-20MB": (skipped, 20 * MB, 1, 1.2),
    "comments-20MB": (comments, 20 * MB, 1, 1.2),
    "headers-2000x5": (headers, 2000, 1, 1.2),
    "definitions-20MB": (definitions, 20 * MB, 1, 1.5),
    "skipped-defs-20MB": (skipped_definitions, 20 * MB, 1, 1.5),
    "documented-5MB": (documented_definitions, 5 * MB, 1, 1.5),
    "elifs-7MB": (elifs, 7 * MB, 1, 1.2),
    "searched-2000x5": (searched_headers, 2000, 1, 1.5),
    "scene-4KB": (short_lines, 4000, 1 / 2, 1 / 1.5),
}


OPTIONS = {  # beside -P; every peer takes them
    "searched-2000x5": ["-Iempty", "-Isearched"],
}


def make_input(name, scale):
    """The path of an input, made when it is not there. Some peers want the suffix."""
    os.makedirs(FOLDER, exist_ok=True)
    path = os.path.join(FOLDER, "%s-%g.c" % (name, scale))
    if not os.path.exists(path):
        maker, size, _, _ = INPUTS[name]
        with open(path, "w") as out:
            out.write(maker(random.Random(name), size * scale))
    return path
