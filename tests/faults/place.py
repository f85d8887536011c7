"""A folder to render in, and what a run may and may not do to it."""
import collections
import os
import shutil
import signal
import stat
import subprocess
import threading

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
SECONDS = 60  # what a run may take

SMALL = "size 8 8\nsamples 1\n"
PALETTE = ('ShaderType surface\nVVaskel "v_plastic diff .62 .02 .02 rough .12"\n'
           "RIB '\"plastic\" \"Kd\" [.8]'\n" 'BeginIfdExtra\n' + SMALL + "%sEndIfdExtra\nShopData\n")
SCENE = 'picture "x.jpg"\n' + SMALL + ("camera\nenvironment v_studio\nfloor v_checker\n"
         "surface v_plastic diff 1 0 0 rough .2\nsphere\n")
# A renderer for drivers: its picture is the scene, if that is whole.
TINY = {"vaskel": "picture", "render": "Display"}
TINY_SCRIPT = """#!/bin/sh
set -f
while read -r word name rest; do
    scene="$scene$word $name $rest|"
    last=$word
    [ "$word" != %s ] || { name=${name#?}; picture=${name%%?}; }
done
case $last in end | WorldEnd) ;; *) exit 1 ;; esac
echo "$scene" >"$picture"
"""


class Programs:
    """Where the programs under test are, and the templates that they use."""

    def __init__(self, build, share):
        self.bin = os.path.join(build, "bin")
        self.share = share


# The command's status (negative: a signal, None: it hung), its output and messages; how
# many calls were hindered, the first one's name and argument.
Run = collections.namedtuple("Run", "status out err hits call argument")


def tools(folder):
    """The tracer and the preloaded library: always those of this tree. The library is copied
    to the folder, since a blank in its path would end its name for the loader."""
    build = os.environ.get("FAULTS_TOOLS", os.path.join(ROOT, "build", "release"))
    library = os.path.join(folder, "libfaults.so")
    if not os.path.exists(library):
        whole = "%s-%d" % (library, threading.get_ident())
        shutil.copy(os.path.join(build, "lib", "libfaults.so"), whole)
        os.replace(whole, library)
    return os.path.join(build, "bin", "faults_trace"), library


def state(path):
    """All that must not change of a file."""
    status = os.lstat(path)
    about = (oct(status.st_mode), status.st_uid, status.st_gid)
    if stat.S_ISLNK(status.st_mode):
        return about + (os.readlink(path),)
    if stat.S_ISREG(status.st_mode):
        with open(path, "rb") as content:
            return about + (content.read(),)
    return about


class Place:
    """work/ holds the palette, its old picture and files of others; the programs start
    there. home/, share/ and bin/ are the user's, the templates and the programs."""

    def __init__(self, root, programs, extra="", tiny=False):
        self.root, self.programs, self.tiny = root, programs, tiny
        self.files = {"x.palette": PALETTE % extra}  # what is not as always
        self.work = os.path.join(root, "work")
        self.report = root + ".report"
        self.cache = root + ".cache"  # what thumbmake remembers
        self.reset()

    def reset(self):
        for folder in (self.root, self.cache):
            shutil.rmtree(folder, ignore_errors=True)
        for folder in ("work", "home/veldrin9.0", "bin"):
            os.makedirs(os.path.join(self.root, folder))
        shutil.copytree(self.programs.share, os.path.join(self.root, "share"))
        self.write("scene", SCENE + self.end())
        self.write("main.in", '#include "a.h"\nDOUBLE(X) __FILE__\n' * 3)
        self.write("a.h", "#define DOUBLE(n) n n\n// a comment\nA TEXT\n")
        self.write("holiday.jpg", "of somebody else")
        self.write("x.jpg", "the old picture")
        os.chmod(self.file("x.jpg"), 0o640)
        for program in os.listdir(self.programs.bin):
            os.symlink(os.path.join(self.programs.bin, program), self.file("../bin/" + program))
        for name, word in TINY.items() if self.tiny else ():
            self.write("../bin/" + name + ".new", TINY_SCRIPT % word)
            os.chmod(self.file("../bin/" + name + ".new"), 0o755)
            os.rename(self.file("../bin/" + name + ".new"), self.file("../bin/" + name))
        for name, content in self.files.items():
            self.write(name, content)
        self.before = self.snapshot()

    def end(self):
        """`end` is asked for where the templates have it."""
        template = os.path.join(self.programs.share, "veldrin/shop/palette/shadeball.ifd")
        with open(template) as lines:
            return "end\n" if lines.read().endswith("\nend\n") else ""

    def file(self, name):
        return os.path.join(self.work, name)

    def write(self, name, content):
        with open(self.file(name), "wb") as out:
            out.write(content if isinstance(content, bytes) else content.encode())

    def read(self, name):
        with open(self.file(name), "rb") as content:
            return content.read()

    def snapshot(self):
        found = {}
        for folder, _, files in os.walk(self.root):
            for name in [""] + files:
                path = os.path.join(folder, name)
                found[os.path.relpath(path, self.root)] = state(path)
        return found

    def environment(self):
        return {"PATH": os.path.join(self.root, "bin") + ":/usr/bin:/bin",
                "HOME": os.path.join(self.root, "home"), "VELDRIN_MAXTHREADS": "1",
                "XDG_CACHE_HOME": self.cache, "VDX": os.path.join(self.root, "share")}

    def start(self, command, more=None, **options):
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE,
                   "stderr": subprocess.PIPE, "start_new_session": True, **options}
        return subprocess.Popen(command, cwd=self.work,
                                env={**self.environment(), **(more or {})}, **options)

    def run(self, command, more=None, seconds=SECONDS, **options):
        """Runs a command to its end, and all that it has started."""
        process = self.start(command, more, **options)
        try:
            out, err = process.communicate(timeout=seconds)
            status = process.returncode
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            out, err = process.communicate()
            status = None
        return Run(status, out or b"", err or b"", 0, "-", -1)

    def run_hindered(self, command, program, fault, **options):
        """`fault`: ("memory", "N" or "N+") or a call, its number and what happens to it."""
        tracer, library = tools(os.path.dirname(self.root))
        if os.path.exists(self.report):
            os.remove(self.report)
        more = {"LD_PRELOAD": library, "FAULTS_PROGRAM": program}
        if fault[0] == "memory":
            more.update({"FAULTS_ALLOCATION": fault[1], "FAULTS_HIT": self.report})
            run = self.run(command, more, **options)
            return run._replace(hits=int(os.path.exists(self.report)))
        trace = [tracer, self.report] + [str(word) for word in fault]
        # The library goes to the command: the tracer's own calls are nobody's business.
        run = self.run(trace + ["/usr/bin/env"] + ["%s=%s" % pair for pair in more.items()]
                       + command, **options)
        if run.status != 0:
            return run
        hits, call, argument, status, number = open(self.report).read().split()
        return run._replace(status=-int(number) if number != "0" else int(status),
                            hits=int(hits), call=call, argument=int(argument))

    def changes(self, but=()):
        """What of the files is no longer as it was, as phrases."""
        after = self.snapshot()
        names = sorted(set(after) | set(self.before))
        changed = [name for name in names if after.get(name) != self.before.get(name)]
        return [("leaves " if name not in self.before else "loses " if name not in after
                 else "changes ") + name for name in changed if name not in but]
