"""Lets every allocation and every system call of small jobs fail, one at a time."""
import collections
import concurrent.futures
import errno
import itertools
import os
import signal
import threading

from place import Place

# What is hindered in each kind of call; the errors are those that fit.
CALLS = {
    "open": "EACCES EMFILE ENOMEM EINTR EIO ENOSPC ENOENT EOPNOTSUPP", "read": "EIO EINTR",
    "write": "EIO ENOSPC EINTR EPIPE", "close": "EIO EINTR", "rename": "EIO ENOSPC EACCES",
    "link": "EIO ENOSPC EPERM", "unlink": "EIO EACCES", "stat": "EIO EACCES",
    "access": "EIO EACCES", "mmap": "ENOMEM", "brk": "ENOMEM", "mprotect": "ENOMEM",
    "munmap": "ENOMEM", "madvise": "EINVAL", "clone": "EAGAIN ENOMEM", "exec": "ENOMEM EACCES",
    "pipe": "EMFILE", "dup": "EBUSY EINTR", "wait": "EINTR ECHILD", "truncate": "EIO ENOSPC",
    "sync": "EIO ENOSPC", "chmod": "EPERM EIO", "chown": "EPERM", "mkdir": "EACCES ENOSPC",
    "getdents": "EIO", "readlink": "EIO", "getcwd": "ENOENT", "chdir": "EACCES",
    "lseek": "ESPIPE", "ioctl": "EIO", "fcntl": "EMFILE", "timer": "EAGAIN", "poll": "EINTR",
    "affinity": "EINVAL", "random": "ENOSYS EINTR", "sigaction": "EINVAL", "memfd": "EMFILE",
}
SHORT = ("read", "write")
# Without KILL: nobody can tidy up behind it while the picture is being written.
SIGNALS = "INT TERM HUP QUIT PIPE ALRM USR1 USR2 XCPU XFSZ ABRT SEGV"
# A template whose include is not there goes on without it, and says so. vaskel does not
# draw what is left; others may.
INCOMPLETE = b"Unable to include"

# What one machine of a farm does, with the list that the asking one wrote.
CHUNK = ('thumbmake --submit parallel x.palette >/dev/null && '
         'thumbmake --chunk 1/1 "$XDG_CACHE_HOME"/veldrin/thumbmake/lists/*/list')

# A command whose `program` is hindered; `picture` is what it makes (names between blanks),
# None for its output.
Job = collections.namedtuple("Job", "name program command picture stdin tiny")
JOBS = [
    Job("vcpp", "vcpp", ["vcpp", "-DX=1", "main.in"], None, None, False),
    Job("vcpp -", "vcpp", ["vcpp", "-DX=1", "-"], None, "main.in", False),
    Job("thumbrender, tiny renderer", "thumbrender", ["thumbrender", "x.palette"], "x.jpg", None,
        True),
    Job("thumbrender, tiny RIB", "thumbrender", ["thumbrender", "-r", "prman", "x.palette"],
        "x.jpg", None, True),
    Job("thumbrender, vaskel", "thumbrender", ["thumbrender", "x.palette"], "x.jpg", None, False),
    Job("vaskel, under it", "vaskel", ["thumbrender", "x.palette"], "x.jpg", None, False),
    Job("vaskel", "vaskel", ["vaskel", "scene"], "x.jpg", None, False),
    Job("vaskel -", "vaskel", ["vaskel", "-"], "x.jpg", "scene", False),
    Job("thumbmake", "thumbmake", ["thumbmake", "x.palette"], "x.jpg", None, False),
    Job("thumbmake --page", "thumbmake", ["thumbmake", "--page", ".", "x.palette"],
        "x.jpg index.html", None, False),
    Job("thumbmake --chunk", "thumbmake", ["sh", "-c", CHUNK], "x.jpg", None, False),
]
TABLE = "%-27s %-9s %6d %5d  %s"
MOST_SHOWN = 20 # wrong places of a row
QUICK = ("vcpp", "thumbrender, tiny renderer", "vaskel")


def faults_of(call, what, step):
    """For every number or each step-th one."""
    for number in itertools.count(1, step):
        yield ("memory", "%d%s" % (number, what)) if call == "memory" else (call, number, what)


def rows(quick):
    """A call, and what happens to it: a name, and what the tracer or the library is told."""
    yield "memory", [("once", "")] + ([] if quick else [("from then on", "+")])
    for call, errors in CALLS.items():
        names = errors.split()[:1 if quick else None]
        whats = [(name, "error %d" % getattr(errno, name)) for name in names]
        # Who tries again after EINTR may do so for ever.
        whats += [(name + " on", what.replace(" ", "+ ")) for name, what in whats
                  if name != "EINTR"][:0 if quick else None]
        if call in SHORT:
            whats += [("short", "short"), ("short on", "short+"), ("cut", "cut %d 40" % errno.EIO)]
        yield call, whats
    yield "any", [("SIG" + name, "signal %d" % getattr(signal, "SIG" + name))
                  for name in ("USR1" if quick else SIGNALS).split()]


class Sweep:
    """One job in a place of its own."""

    def __init__(self, job, folder, programs):
        self.job = job
        self.place = Place(folder, programs, tiny=job.tiny)
        run = self.execute(None)
        self.output = run.out
        self.pictures = self.made()
        if run.status != 0 or run.err or self.place.changes(self.own()) or any(
                content == self.place.before.get(name)
                for name, content in self.pictures.items()):
            raise SystemExit("%s does not work unhindered: %s" % (job.name, run))
        self.place.reset()

    def own(self):
        return ["work/" + name for name in (self.job.picture or "").split()]

    def made(self):
        """The files that the job makes. A page tells of what failed, too: it is to be whole."""
        after = self.place.snapshot()
        return {name: after[name][-1].rstrip().endswith(b"</html>")
                if name.endswith(".html") and name in after else after.get(name)
                for name in self.own()}

    def execute(self, fault):
        options = {}
        if self.job.stdin:
            options["stdin"] = open(self.place.file(self.job.stdin), "rb")
        if fault is None:
            return self.place.run(self.job.command, **options)
        return self.place.run_hindered(self.job.command, self.job.program, fault, **options)

    def is_right(self, run):
        """All is there that an unhindered run gives."""
        if self.job.picture:
            return self.made() == self.pictures
        return run.out == self.output

    def judge(self, run, fault):
        """What is wrong about a hindered run, as phrases."""
        if run.status is None:
            return ["hangs"]
        wrong = []
        right = self.is_right(run)
        is_signal = str(fault[-1]).startswith("signal")
        if run.status < 0 and not (is_signal and run.status == -int(fault[-1].split()[1])):
            wrong.append("ends by signal %d" % -run.status)
        elif not is_signal:
            wrong += self.judge_status(run, fault, right)
        if not (right or is_signal or run.err.strip() or self.is_message_lost(run, fault)):
            wrong.append("no message")
        # What could not be removed stays.
        told = INCOMPLETE in run.err and self.job.program != "vaskel"
        made = self.made()
        good = [name for name in self.own() if made[name] == self.pictures[name]]
        changes = self.place.changes(self.own() if told and self.job.tiny else good)
        return wrong + [change for change in changes
                        if run.call != "unlink" or not change.startswith("leaves")]

    @staticmethod
    def is_message_lost(run, fault):
        """What was hindered is the message, or all that is written from then on."""
        return run.call == "write" and (run.argument == 2 or "+" in fault[-1] or "cut" in fault[-1])

    def judge_status(self, run, fault, right):
        if self.job.command[0] == "thumbrender":
            return [] if run.status in (0, 1) else ["status %d" % run.status]
        documented = (0,) if right else (1, 2) if self.job.program == "vcpp" else (1,)
        # An error behind the last byte is told as well.
        told = run.err or self.is_message_lost(run, fault)
        if run.status in documented or (right and run.status == 1 and told):
            return []
        return ["status %d" % run.status]

    def sweep(self, call, what, step):
        """Number of places, and the wrong ones with what was wrong."""
        wrong = []
        for number, fault in enumerate(faults_of(call, what, step)):
            run = self.execute(fault)
            found = self.judge(run, fault)
            if found:
                wrong.append((fault, found))
            # thumbmake remembers what it has done, whether or not there is a picture.
            if self.job.program == "thumbmake" or self.place.changes():
                self.place.reset()
            if run.hits == 0:
                return number, wrong


def command_line(job, fault):
    """To see it again by hand."""
    what = " ".join("'%s'" % word if " " in str(word) else str(word) for word in fault)
    return "faults.py --job '%s' --fault %s" % (job.name, what)


class Sweeps:
    """For each thread and job a place that is made once."""

    def __init__(self, folder, programs):
        self.folder, self.programs = folder, programs
        self.known = threading.local()

    def of(self, job):
        sweeps = self.known.__dict__.setdefault("sweeps", {})
        if job.name not in sweeps:
            folder = os.path.join(self.folder, "%d-%s" % (threading.get_ident(), job.name))
            sweeps[job.name] = Sweep(job, folder, self.programs)
        return sweeps[job.name]


def sweep_row(sweeps, job, call, whats, step):
    """The row's lines and how many places are wrong."""
    names, places, wrong = [], 0, []
    for name, what in whats:
        count, found = sweeps.of(job).sweep(call, what, step)
        if count == 0 and not found:
            return [], 0
        names.append(name)
        places += count
        wrong += found
    lines = [TABLE % (job.name, call, places, len(wrong), ", ".join(names))]
    lines += ["    %s: %s" % (command_line(job, fault), ", ".join(found))
              for fault, found in wrong[:MOST_SHOWN]]
    return lines, len(wrong)


def sweep_all(folder, programs, quick, only_jobs, only_calls):
    """Prints the table; how many are wrong."""
    print(TABLE.replace("d", "s") % ("program", "call", "places", "wrong", "errors"))
    sweeps = Sweeps(folder, programs)
    total = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(sweep_row, sweeps, job, call, whats, step_of(call, quick))
                for job in chosen_jobs(quick, only_jobs) for call, whats in rows(quick)
                if not only_calls or call in only_calls]
        for run in runs:
            lines, count = run.result()
            total += count
            if lines:
                print("\n".join(lines), flush=True)
    return total


def chosen_jobs(quick, names):
    names = names or (QUICK if quick else [job.name for job in JOBS])
    return [job for job in JOBS if job.name in names]


def step_of(call, quick):
    """The many places of these are looked at in part when there is little time."""
    return 7 if quick and call in ("memory", "any") else 1


def show_one(folder, programs, name, fault):
    """One fault of one job, with all that it prints."""
    job = chosen_jobs(False, [name])[0]
    sweep = Sweep(job, os.path.join(folder, "one"), programs)
    run = sweep.execute(fault)
    print(run)
    print("wrong:", ", ".join(sweep.judge(run, fault)) or "nothing")
