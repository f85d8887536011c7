"""Hostile palettes, signals at random moments, crowds, full disks and narrow limits."""
import concurrent.futures
import itertools
import os
import random
import resource
import shlex
import signal
import subprocess
import threading
import time

from place import ROOT, SMALL, Place

MOST_MEMORY = 400  # MB at the peak of one run, the renderer with it
FEW_DESCRIPTORS = 24
# A renderer's picture is small and its time short, whatever the palette asks for.
CALM = '#!/bin/sh\nexec %s --limit 5 --samples 1 --quality draft\n'
WORDS = (b"#include <", b'"', b"'", b"\\", b"\n", b"\0", b"\r", b"BeginIfdExtra\n", b"EndIfdExtra\n",
         b"ShaderType ", b"VVaskel ", b"ShopData", b"default ", b"end\n", b"picture ", b"size 9 9\n",
         b"../", b"/etc/passwd", b"\x1b[2J", b"\xff", b"$HOME", b"`id`", b"OUTPUT_PICTURE", b"1e38",
         b"-1", b"99999999999999999999", b"(", b")", b",", b"//", b"/*", b" scale 0 0 0\n", b"# 1 ")


def mutated(text, chance):
    """One to twenty pieces of a text replaced, doubled or removed."""
    for _ in range(chance.choice((1, 1, 2, 4, 20))):
        at, length = chance.randrange(len(text) + 1), chance.choice((0, 1, 2, 8, 60))
        piece = chance.choice((b"", chance.choice(WORDS), bytes([chance.randrange(256)]),
                               text[at:at + length] * 2, chance.choice(WORDS) * 300))
        text = text[:at] + piece + text[at + length:]
    return text


def seeds():
    folder = os.path.join(ROOT, "examples")
    for name in sorted(n for n in os.listdir(folder) if n.endswith(".palette")):
        with open(os.path.join(folder, name), "rb") as palette:
            text = palette.read()
        if b"BeginIfdExtra\n" not in text:
            text = text.replace(b"ShopData", b"BeginIfdExtra\nEndIfdExtra\nShopData")
        yield text.replace(b"BeginIfdExtra\n", b"BeginIfdExtra\n" + SMALL.encode())


def measured(place, command):
    """Status, messages and MB of memory of a run with few descriptors."""
    limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (FEW_DESCRIPTORS,) * 2)
    with open(place.report, "wb+") as err:
        process = place.start(command, preexec_fn=limit, stdout=subprocess.DEVNULL, stderr=err)
        timer = threading.Timer(len(command) * 6, os.killpg, (process.pid, signal.SIGKILL))
        timer.start()
        _, status, usage = os.wait4(process.pid, 0)
        timer.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        err.seek(0)
        return process.returncode, err.read(), usage.ru_maxrss / 1000


def judge_batch(place, names, status, err, memory):
    pictures = {"work/" + name.replace(".palette", ".jpg") for name in names}
    wrong = place.changes(pictures | {"work/" + name for name in names})
    if status != 0:
        wrong.append("status %d" % status)
    wrong += [word.decode() for word in (b"Abort", b"Segm", b"Bus err", b"Illegal", b"Floating",
                                         b"Killed", b"core dumped") if word in err]
    if memory > MOST_MEMORY:
        wrong.append("%d MB" % memory)
    for name in pictures:
        path = os.path.join(place.root, name)
        if os.path.exists(path) and not is_whole(open(path, "rb").read()):
            wrong.append("half a picture")
    # The last palette is a good one.
    if not os.path.exists(place.file(names[-1].replace(".palette", ".jpg"))):
        wrong.append("nothing works behind it")
    return wrong


def is_whole(picture):
    return picture[:2] == b"\xff\xd8" and picture[-2:] == b"\xff\xd9"


def hostile_batch(folder, programs, seed, count):
    chance = random.Random(seed)
    texts = list(seeds())
    place = Place(os.path.join(folder, "hostile%d" % seed), programs)
    os.remove(place.file("../bin/vaskel"))
    place.write("../bin/vaskel", CALM % shlex.quote(os.path.join(programs.bin, "vaskel")))
    os.chmod(place.file("../bin/vaskel"), 0o755)
    place.before = place.snapshot()
    names = []
    for i in range(count):
        names.append("p%02d.palette" % i)
        place.write(names[-1], mutated(chance.choice(texts), chance))
    place.write("z.palette", place.read("x.palette"))
    shape = chance.choice(([], ["-g", "teapot"], ["-b", "-s"], ["-r", "vaskel", "-g", "grid"]))
    names.append("z.palette")
    wrong = judge_batch(place, names, *measured(place, ["thumbrender"] + shape + names))
    return ["seed %d: %s" % (seed, phrase) for phrase in wrong]


def hostile(folder, programs, quick):
    batches, size = (2, 50) if quick else (200, 50)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(hostile_batch, folder, programs, seed, size) for seed in range(batches)]
        return batches * size, list(itertools.chain(*(run.result() for run in runs)))


def random_signals(folder, programs, quick):
    """To the whole group as a terminal does, or to one of the programs."""
    chance, wrong = random.Random(1), []
    place = Place(os.path.join(folder, "signals"), programs)
    place.run(["thumbrender", "x.palette"])
    right = place.snapshot()
    count = 30 if quick else 300
    for i in range(count):
        place.reset()
        number = chance.choice((signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT,
                                signal.SIGPIPE, signal.SIGALRM, signal.SIGUSR1, signal.SIGUSR2,
                                signal.SIGXCPU, signal.SIGXFSZ, signal.SIGABRT))
        process = place.start(["thumbrender", "x.palette"], {"VELDRIN_MAXTHREADS": "2"})
        time.sleep(chance.random() * .05)
        send = chance.choice((os.killpg, os.kill))
        try:
            send(process.pid if send is os.killpg else newest(process.pid), number)
        except ProcessLookupError:
            pass
        process.communicate()  # its output is open until all have ended
        if place.snapshot() != right:
            wrong += ["run %d, signal %d: %s" % (i, number, change) for change in place.changes()]
    return count, wrong


def newest(group):
    """The youngest process of a group."""
    members = [int(pid) for pid in os.listdir("/proc") if pid.isdigit() and group_of(pid) == group]
    return max(members, default=group)


def group_of(pid):
    try:
        return os.getpgid(int(pid))
    except ProcessLookupError:
        return None


def crowd(folder, programs, quick):
    """Ten at once on one palette, while somebody looks at the picture."""
    place = Place(os.path.join(folder, "crowd"), programs)
    old = place.read("x.jpg")
    place.run(["thumbrender", "x.palette"])
    right, after = place.read("x.jpg"), place.snapshot()
    place.reset()
    wrong, count = set(), 1 if quick else 20
    for _ in range(count):
        runs = [place.start(["thumbrender", "x.palette"]) for _ in range(10)]
        while any(run.poll() is None for run in runs):
            if place.read("x.jpg") not in (old, right):
                wrong.add("half a picture")
        wrong |= {"message %r" % err for err in (run.communicate()[1] for run in runs) if err}
    if place.snapshot() != after:
        wrong |= set(place.changes())
    return count * 10, sorted(wrong)


def judged(place, command, allow=(), **options):
    """Right, or a message and the old picture; `allow`: how else it may end."""
    run = place.run(command, **options)
    changes = place.changes(["work/x.jpg"])
    good = run.status == 0 and not run.err and run.out == place.right[1] and \
        (command[0] == "vcpp" or place.snapshot()["work/x.jpg"] == place.right[0])
    if not good:
        changes = place.changes()
        if run.status is None or (run.status < 0 and -run.status not in allow):
            changes.append("status %s" % run.status)
        elif not run.err and not (run.status and "stderr" in options) and -run.status not in allow:
            changes.append("no message, status %d" % run.status)
    if changes or place.changes():
        place.reset()
    return changes


COMMANDS = (["vcpp", "main.in"], ["thumbrender", "x.palette"], ["vaskel", "scene"])


def with_right(folder, programs, command):
    place = Place(os.path.join(folder, command[0]), programs)
    run = place.run(command)
    place.right = (place.snapshot()["work/x.jpg"], run.out)
    place.reset()
    return place


def limits(folder, programs, quick):
    """ulimit -v, -n, -f and -t from little to much."""
    kinds = {"v": range(1000, 300000, 20000 if quick else 2900), "n": range(3, 16),
             "f": range(0, 3), "t": range(0, 2)}
    count, wrong = 0, []
    for command in COMMANDS:
        place = with_right(folder, programs, command)
        for kind, values in kinds.items():
            for value in values:
                count += 1
                line = "ulimit -%s %d && exec %s" % (kind, value, " ".join(command))
                found = judged(place, ["sh", "-c", line] if command[0] != "vcpp" else
                               ["sh", "-c", line], (signal.SIGXCPU, signal.SIGXFSZ, signal.SIGKILL,
                                                    signal.SIGSEGV if kind == "v" else 0))
                wrong += ["%s: %s" % (line, phrase) for phrase in found]
    return count, wrong


def closed(folder, programs, quick):
    """Without some of the three standard descriptors; output to a full device."""
    count, wrong = 0, []
    for command in COMMANDS:
        place = with_right(folder, programs, command)
        for which in ("<&-", ">&-", "2>&-", "<&- >&-", "<&- 2>&-", ">&- 2>&-", "<&- >&- 2>&-",
                      ">/dev/full", "2>/dev/full", "</dev/full", "<."):
            count += 1
            line = " ".join(command) + " " + which
            run = place.run(["sh", "-c", line])
            picture = place.snapshot()["work/x.jpg"]
            wrong += ["%s: %s" % (line, change) for change in place.changes(["work/x.jpg"])]
            if picture not in (place.right[0], place.before["work/x.jpg"]):
                wrong.append("%s: neither old nor right picture" % line)
            if run.status is None or run.status < 0 or run.status >= 128:
                wrong.append("%s: status %s" % (line, run.status))
            if command[0] == "vcpp" and ">" in which[:3] and which[0] != "2" and run.status != 1:
                wrong.append("%s: lost output, status %s" % (line, run.status))
            place.reset()
    return count, wrong


def full_disk(folder, programs, quick):
    """On a disk with room for less than a picture, if we may make one."""
    disk = os.path.join(folder, "disk")
    os.makedirs(disk)
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=8k", "tmpfs", disk],
                      capture_output=True).returncode != 0:
        return 0, []
    wrong = []
    try:
        place = with_right(folder, programs, COMMANDS[2])
        scene = place.read("scene").replace(b"x.jpg", os.path.join(disk, "x.jpg").encode())
        place.write("scene", scene.replace(b"size 8 8", b"size 300 300"))
        for fill in range(3):
            with open(os.path.join(disk, "filler"), "wb") as out:
                try:
                    out.write(b"-" * 4096 * fill)
                except OSError:
                    pass
            run = place.run(["vaskel", "scene"])
            left = sorted(os.listdir(disk))
            if run.status != 1 or not run.err or left != ["filler"]:
                wrong.append("status %s, %s lies there" % (run.status, left))
    finally:
        subprocess.run(["umount", disk], check=True)
    return 3, wrong


TESTS = (("mutated palettes", hostile), ("renders with random signals", random_signals),
         ("ten at once and a reader", crowd), ("limits", limits),
         ("closed descriptors, full devices", closed), ("full disk", full_disk))


def run_all(folder, programs, quick, only):
    """Prints a row for each; how many are wrong."""
    total = 0
    for name, test in TESTS:
        if only and not any(word in name for word in only):
            continue
        count, wrong = test(folder, programs, quick)
        print("%-37s %6d %5d" % (name, count, len(wrong)), flush=True)
        print("".join("    %s\n" % phrase for phrase in wrong[:20]), end="", flush=True)
        total += len(wrong)
    return total
