"""Faults that were seen once, each by its name: what a stranger's palette or a failing
disk did. A row renders in a place of its own and returns what is wrong, as phrases."""
import concurrent.futures
import itertools
import os
import shutil
import signal
import stat

from place import PALETTE, Place

ROWS = []
ANOTHER = 65534  # nobody
STUDIO = 'picture "x.jpg"\n' "camera\n"


def row(name, **palette):
    """`palette`: what is put into it, see Place."""
    def keep(function):
        ROWS.append((name, palette, function))
        return function
    return keep


def render(place, *more, **options):
    return place.run(["thumbrender", *more, "x.palette"], **options)


def refused(place, run, but=()):
    """There must be a message, and nothing else may have changed."""
    wrong = place.changes(but)
    if run.status is None or run.status < 0:
        wrong.append("hangs" if run.status is None else "ends by signal %d" % -run.status)
    return wrong + ([] if run.err.strip() else ["no message"])


def replaced(place, run, mode):
    """The picture is a new file of its own with that mode, and nothing else changed."""
    picture = place.snapshot()["work/x.jpg"]
    wrong = place.changes(["work/x.jpg"])
    if picture[-1] == place.before["work/x.jpg"][-1] or run.err:
        wrong.append("no new picture: %s" % run.err)
    elif picture[0] != oct(stat.S_IFREG | mode):
        wrong.append("mode %s" % picture[0])
    return wrong


def put(place, make):
    """Something else in the picture's place."""
    os.remove(place.file("x.jpg"))
    make(place.file("x.jpg"))
    place.before = place.snapshot()
    return render(place)


@row("1 another's setuid file stays powerless")
def setuid_of_another(place):
    if os.geteuid() == 0:
        os.chown(place.file("x.jpg"), ANOTHER, ANOTHER)
    os.chmod(place.file("x.jpg"), 0o6777)
    run = render(place)
    return replaced(place, run, 0o644 if os.geteuid() == 0 else 0o777)


@row("1 one's own setuid, setgid and sticky bits go")
def setuid_of_ones_own(place):
    os.chmod(place.file("x.jpg"), 0o7750)
    return replaced(place, render(place), 0o750)


@row("1 one's own permissions stay")
def own_permissions(place):
    return replaced(place, render(place), 0o640)


@row("2 extra text does not choose the file", extra='picture "holiday.jpg"\ncamera\nend\n')
def picture_in_palette(place):
    return refused(place, render(place))


@row("2 nor without an end", extra='picture "holiday.jpg"\n')
def second_picture(place):
    return refused(place, render(place))


@row("3 a link to a file is replaced itself")
def link_to_file(place):
    return replaced(place, put(place, lambda x: os.symlink("holiday.jpg", x)), 0o644)


@row("3 a link to the palette is replaced itself")
def link_to_palette(place):
    return replaced(place, put(place, lambda x: os.symlink("x.palette", x)), 0o644)


@row("3 a dangling link is replaced itself")
def dangling_link(place):
    return replaced(place, put(place, lambda x: os.symlink("../nothing", x)), 0o644)


@row("3 a link to itself is replaced")
def looping_link(place):
    return replaced(place, put(place, lambda x: os.symlink("x.jpg", x)), 0o644)


@row("3 another name of a file is replaced, the file stays")
def hard_link(place):
    return replaced(place, put(place, lambda x: os.link(place.file("holiday.jpg"), x)), 0o644)


@row("3 a FIFO is refused")
def fifo(place):
    return refused(place, put(place, os.mkfifo))


@row("3 a folder is refused")
def folder(place):
    return refused(place, put(place, os.mkdir))


@row("4 an open quote makes no half scene")
def open_quote(place):
    shader = PALETTE.replace('"v_plastic diff .62 .02 .02 rough .12"', "'v_plastic \"diff 1'")
    place.write("x.palette", shader % "")
    place.before = place.snapshot()
    return refused(place, render(place))


def each(place, faults, more=()):
    """Renders with each fault: the right picture, or the old one and a message, which who
    was killed need not give. Ends with the first fault that never comes."""
    wrong = []
    render(place, *more)
    right = place.snapshot()
    place.reset()
    for fault in faults:
        run = place.run_hindered(["thumbrender", *more, "x.palette"], "thumbrender", fault)
        if run.hits == 0:
            break
        found = [] if place.snapshot() == right else \
            place.changes() if run.status == -signal.SIGKILL else refused(place, run)
        wrong += ["%s: %s" % (fault, phrase) for phrase in found]
        if place.changes():
            place.reset()
    return wrong


def every(call, what):
    return ((call, number, what) for number in itertools.count(1))


TEMPLATES = "../share/veldrin/shop/palette/"
BUFFER = 65536


def broken_off(place, name, mark, more=()):
    """EIO behind the file's first bytes, more of them each time; and between two reads of
    a file of more than BUFFER bytes."""
    text = place.read(name)
    call = "read@" + os.path.basename(name)
    wrong = each(place, [(call, 1, "cut 5 %d" % (len(text) * i // 16)) for i in range(16)], more)
    for tail in range(1, len(text), len(text) // 12):
        fill = b"-" * (BUFFER - len(text) + tail - len(mark) - 1)
        place.files[name] = mark + fill + b"\n" + text
        place.reset()
        wrong += each(place, [(call, 2, "error+ 5")], more)
    return wrong


LONG = "# %s\n" % ("-" * 70) * 1000 + "exposure 2\n"


@row("4 nor does a driver that is killed")
def killed_driver(place):
    wrong = []
    for length in range(3700, 4100, 10):  # where the pipe's buffer is full
        place.files["x.palette"] = PALETTE % ("# " + "-" * length + "\n")
        place.reset()
        wrong += each(place, every("write", "signal 9"))
    return wrong


@row("4 nor a pipe that breaks", extra=LONG)
def broken_pipe(place):
    return each(place, every("write", "error+ 5"))


@row("4 a scene without end is not drawn")
def no_end(place):
    place.write("scene", STUDIO)
    place.before = place.snapshot()
    run = place.run(["vaskel", "scene"])
    return refused(place, run) + ([] if run.status == 1 else ["status %s" % run.status])


@row("4 nor one with text behind it")
def text_behind_end(place):
    place.write("scene", STUDIO + "end\nsphere\n")
    place.before = place.snapshot()
    return refused(place, place.run(["vaskel", "scene"]))


@row("5 EIO in the template")
def broken_template(place):
    return broken_off(place, TEMPLATES + "shadeball.ifd", b"//")


@row("5 EIO in its include")
def broken_include(place):
    return broken_off(place, TEMPLATES + "shadeball.inc", b"//")


@row("5 EIO in the palette")
def broken_palette(place):
    return broken_off(place, "x.palette", b"#")


@row("5 EIO in the extra text", extra=LONG)
def broken_extra_text(place):
    return each(place, every("read@x.palette", "error+ 5"))


@row("5 EIO in a RIB template", tiny=True)
def broken_rib(place):
    return broken_off(place, TEMPLATES + "shadeball.rib", b"//", ("-r", "prman"))


@row("5 vcpp tells of a file that cannot be read")
def unreadable_memory(place):
    run = place.run(["vcpp", "-P", "/proc/self/mem"])
    return refused(place, run) + ([] if run.status == 1 else ["status %s" % run.status])


@row("5 vcpp tells of EIO in a file and in an include")
def broken_source(place):
    wrong = []
    for name in ("main.in", "a.h"):
        run = place.run_hindered(["vcpp", "-P", "main.in"], "vcpp", ("read@" + name, 1, "cut 5 9"))
        wrong += refused(place, run) + ([] if run.status == 1 else ["status %s" % run.status])
        wrong += [] if name.encode() in run.err else ["message without the name"]
    return wrong


@row("6 signals leave no temporary file")
def signals(place):
    wrong = []
    for number in (10, 12, 14, 15, 24):
        for call in itertools.count(1, 29):
            run = place.run_hindered(["vaskel", "scene"], "vaskel",
                                     ("any", call, "signal %d" % number))
            if run.hits == 0:
                break
            wrong += ["signal %d at %d: %s" % (number, call, change)
                      for change in place.changes(["work/x.jpg"])]
            place.reset()
    return wrong


def without_memory(place, program, command, step):
    wrong = []
    for number in itertools.count(1, step):
        run = place.run_hindered(command, program, ("memory", "%d+" % number))
        if run.hits == 0:
            return wrong
        if run.status is None or run.status < 0 or b"Aborted" in run.err:
            wrong.append("allocation %d: status %s" % (number, run.status))
        wrong += ["allocation %d: %s" % (number, change)
                  for change in place.changes(["work/x.jpg"])]
        place.reset()


@row("6 nor does vcpp with an output file")
def signals_of_vcpp(place):
    wrong = []
    for number, call in itertools.product((10, 14, 15, 24), range(1, 200, 3)):
        run = place.run_hindered(["vcpp", "-o", "out", "main.in"], "vcpp",
                                 ("any", call, "signal %d" % number))
        if run.hits == 0:
            continue
        wrong += ["signal %d at %d: %s" % (number, call, change)
                  for change in place.changes(["work/out"])]
        place.reset()
    return wrong


@row("6 nor does a renderer without memory")
def renderer_without_memory(place):
    return without_memory(place, "vaskel", ["vaskel", "scene"], 11)


@row("7 vcpp without memory ends with a message")
def vcpp_without_memory(place):
    return without_memory(place, "vcpp", ["vcpp", "main.in"], 11)


@row("7 thumbrender without memory ends with a message")
def thumbrender_without_memory(place):
    return without_memory(place, "thumbrender", ["thumbrender", "x.palette"], 11)


def unmasked(run, starts=None):
    """Bytes of a message that a terminal would obey; a message is one line, unless its lines
    begin in one of these ways."""
    bad = [byte for byte in run.err if (byte < 32 and byte != 10) or byte == 127]
    if not run.err:
        return ["no message"]
    if starts:
        bad += [line for line in run.err.splitlines() if not line.startswith(starts)]
    elif run.err[:-1].count(b"\n") > 1:
        bad.append(run.err)
    return ["raw bytes in %r" % run.err[:90]] if bad else []


EVIL = "a\x1b]0;evil\x07\x7f\rb"


@row("8 unknown shader types are masked")
def evil_type(place):
    place.write("x.palette", 'ShaderType %s\nVVaskel "v_plastic"\n' % EVIL.replace("\r", ""))
    return unmasked(render(place))


@row("8 unknown shaders are masked")
def evil_shader(place):
    place.write("x.palette", 'ShaderType surface\nVVaskel "v_%s"\n' % EVIL.replace("\r", ""))
    return unmasked(render(place))


@row("8 the extra text is masked", extra="camera " + EVIL + "\n" + EVIL + "\n")
def evil_extra(place):
    return unmasked(render(place))


@row("8 file names are masked in every program")
def evil_names(place):
    wrong = []
    for command in (["thumbrender"], ["vcpp"], ["vaskel"]):
        wrong += unmasked(place.run(command + [EVIL + "\n.palette"]))
    return wrong + unmasked(place.run(["thumbrender", "-r", EVIL, EVIL]))


@row("8 directives with odd bytes are masked")
def evil_directives(place):
    # The preprocessor's line, its place, the line of the source, the mark below and a hint.
    starts = (b"# error cpp error: ", b"main.in:", b"#", b" ", b"hint: ")
    place.write("main.in", '#include "%s"\n' % EVIL)
    wrong = unmasked(place.run(["vcpp", "main.in"]), starts)
    for text in ("#error %s\n", "#%s\n", "#if %s\n#endif\n", "#pragma %s\n#error x\n"):
        place.write("main.in", text % EVIL.replace("\r", ""))
        wrong += unmasked(place.run(["vcpp", "main.in"]), starts)
    return wrong


@row("8 a renderer's message names the picture", extra="camera oops\n")
def named_picture(place):
    run = render(place)
    return [] if b"x.jpg" in run.err and b"<stdin>" not in run.err else ["%r" % run.err]


@row("9 size and samples have a bound", extra="size 4096 4096\nsamples 65536\n")
def bound(place):
    return refused(place, render(place))


@row("9 many slow shapes have a bound", extra="size 2000 2000\nsamples 65536\n" +
     "surface v_frosted\nsphere\n" * 40)
def bound_of_shapes(place):
    return refused(place, render(place))


@row("9 vaskel --limit ends what takes longer")
def time_limit(place):
    end = place.read("scene").decode().endswith("end\n")
    place.write("scene", STUDIO + "size 4096 4096\nsamples 65536\nsphere\n" + "end\n" * end)
    place.before = place.snapshot()
    run = place.run(["vaskel", "--limit", "1", "scene"])
    return refused(place, run) + ([] if run.status == 1 else ["status %s" % run.status])


def run_row(folder, programs, name, palette, function):
    place = Place(os.path.join(folder, name.replace("/", " ")), programs, **palette)
    wrong = function(place)
    shutil.rmtree(place.root)
    return wrong


def run_rows(folder, programs, only):
    """Prints the rows; how many are wrong."""
    rows = [row for row in ROWS if not only or any(word in row[0] for word in only)]
    total = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(run_row, folder, programs, *row) for row in rows]
        for (name, _, _), run in zip(rows, runs):
            wrong = run.result()
            total += bool(wrong)
            print("%-53s %s" % (name, "wrong: " + "; ".join(wrong)[:300] if wrong else "good"),
                  flush=True)
    return total
