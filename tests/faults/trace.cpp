// Runs a command and hinders one system call of it:
//
//     faults_trace REPORT CALL NUMBER WHAT COMMAND [ARGUMENT...]
//
// CALL is a group of calls ("open"), "any", or a group with a part of a file's path
// behind '@' ("read@x.palette"). NUMBER says which of them, from 1; those count that
// processes make behind their FAULTS_MARK, children and threads with them. WHAT:
//
//     error E     it does nothing and gives the error with number E
//     error+ E    so do all that follow
//     short       one byte at most is read or written
//     short+      the same for all that follow
//     cut E K     K bytes at most, and all that follow give the error: a file that
//                 breaks off
//     signal S    the process gets signal S when the call is done
//
// The file REPORT gets one line: how many calls were hindered, the first one's name
// and first argument (0 - -1 without one), the command's exit status and the signal
// that ended it. Ends when all processes have ended.
#include "tests/faults/mark.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
struct Group {
    const char *name;
    std::vector<long> numbers;
};

const Group GROUPS[] = {
    {"open", {SYS_open, SYS_openat}},
    {"read", {SYS_read, SYS_pread64, SYS_readv}},
    {"write", {SYS_write, SYS_pwrite64, SYS_writev}},
    {"close", {SYS_close}},
    {"rename", {SYS_rename, SYS_renameat, SYS_renameat2}},
    {"link", {SYS_link, SYS_linkat}},
    {"unlink", {SYS_unlink, SYS_unlinkat}},
    {"stat", {SYS_stat, SYS_fstat, SYS_lstat, SYS_newfstatat, SYS_statx}},
    {"access", {SYS_access, SYS_faccessat, SYS_faccessat2}},
    {"mmap", {SYS_mmap, SYS_mremap}},
    {"brk", {SYS_brk}},
    {"mprotect", {SYS_mprotect}},
    {"munmap", {SYS_munmap}},
    {"madvise", {SYS_madvise}},
    {"clone", {SYS_clone, SYS_clone3, SYS_fork, SYS_vfork}},
    {"exec", {SYS_execve}},
    {"pipe", {SYS_pipe, SYS_pipe2}},
    {"dup", {SYS_dup, SYS_dup2, SYS_dup3}},
    {"wait", {SYS_wait4, SYS_waitid}},
    {"truncate", {SYS_ftruncate, SYS_fallocate}},
    {"sync", {SYS_fsync, SYS_fdatasync}},
    {"chmod", {SYS_chmod, SYS_fchmod, SYS_fchmodat}},
    {"chown", {SYS_chown, SYS_fchown}},
    {"mkdir", {SYS_mkdir, SYS_mkdirat}},
    {"getdents", {SYS_getdents64}},
    {"readlink", {SYS_readlink, SYS_readlinkat}},
    {"getcwd", {SYS_getcwd}},
    {"chdir", {SYS_chdir, SYS_fchdir}},
    {"lseek", {SYS_lseek}},
    {"ioctl", {SYS_ioctl}},
    {"fcntl", {SYS_fcntl}},
    {"futex", {SYS_futex}},
    {"timer", {SYS_setitimer, SYS_timer_create, SYS_timer_settime}},
    {"affinity", {SYS_sched_getaffinity}},
    {"random", {SYS_getrandom}},
    {"sigaction", {SYS_rt_sigaction}},
    {"memfd", {SYS_memfd_create}},
    {"poll", {SYS_poll, SYS_ppoll, SYS_pselect6}},
};

// What to do to which call, and what was done.
struct Fault {
    std::string group, path;
    long number = 0;
    std::string what;
    int value = 0;
    unsigned long long most = 1; // bytes
    long seen = 0, done = 0;
    const char *name = "-";
    long argument = -1;
};

struct Process {
    bool isCounted = false;
    // About the call that it is in: its true arguments where they were changed, the
    // error that it gets, and the signal that comes behind it.
    bool isChanged = false;
    user_regs_struct arguments = {};
    int error = 0;
    int signal = 0;
};

const char *groupOf(long number)
{
    for (const Group &group : GROUPS) {
        if (std::find(group.numbers.begin(), group.numbers.end(), number) != group.numbers.end())
            return group.name;
    }
    return "other";
}

// The calls with a path look at their descriptor's file.
bool isOnPath(pid_t pid, const user_regs_struct &registers, const std::string &part)
{
    if (part.empty())
        return true;
    char target[4096];
    const std::string link =
        "/proc/" + std::to_string(pid) + "/fd/" + std::to_string(registers.rdi);
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length > 0 &&
           std::string(target, static_cast<size_t>(length)).find(part) != std::string::npos;
}

bool isMeant(pid_t pid, const user_regs_struct &registers, const Fault &fault)
{
    const char *group = groupOf(static_cast<long>(registers.orig_rax));
    return (fault.group == "any" || fault.group == group) && isOnPath(pid, registers, fault.path);
}

// The same word with a '+' goes on with what follows.
bool isDue(const Fault &fault)
{
    return fault.seen == fault.number || (fault.seen > fault.number && fault.what.back() == '+') ||
           (fault.seen > fault.number && fault.what == "cut");
}

void changeArguments(user_regs_struct &registers, Process &process, const Fault &fault)
{
    const bool isCut = fault.what == "cut" && fault.seen == fault.number;
    if (isCut) {
        registers.rdx = std::min(registers.rdx, fault.most);
    } else if (fault.what == "short") {
        registers.rdx = std::min(registers.rdx, 1ULL);
    } else if (fault.what == "short+") {
        // Not a byte each: a program of megabytes would take minutes.
        registers.rdx = std::max(registers.rdx / 64, 1ULL);
    } else if (registers.orig_rax == SYS_brk) {
        registers.rdi = 0; // it has no error, but tells where memory still ends
    } else if (registers.orig_rax == SYS_close) {
        process.error = fault.value; // the descriptor is released, whatever it says
    } else {
        registers.orig_rax = static_cast<unsigned long long>(-1);
        process.error = fault.value;
    }
}

void hinder(pid_t pid, user_regs_struct registers, Process &process, Fault &fault)
{
    if (fault.done++ == 0) {
        fault.name = groupOf(static_cast<long>(registers.orig_rax));
        fault.argument = static_cast<int>(registers.rdi);
    }
    if (fault.what == "signal") {
        process.signal = fault.value;
        return;
    }
    process.isChanged = true;
    process.arguments = registers;
    changeArguments(registers, process, fault);
    ptrace(PTRACE_SETREGS, pid, nullptr, &registers);
}

void enterCall(pid_t pid, Process &process, Fault &fault)
{
    user_regs_struct registers;
    ptrace(PTRACE_GETREGS, pid, nullptr, &registers);
    if (static_cast<long>(registers.orig_rax) == FAULTS_MARK)
        process.isCounted = true;
    else if (process.isCounted && isMeant(pid, registers, fault) && (++fault.seen, isDue(fault)))
        hinder(pid, registers, process, fault);
}

void leaveCall(pid_t pid, Process &process)
{
    if (process.isChanged) {
        user_regs_struct registers;
        ptrace(PTRACE_GETREGS, pid, nullptr, &registers);
        registers.rdi = process.arguments.rdi;
        registers.rdx = process.arguments.rdx;
        if (process.error != 0)
            registers.rax = static_cast<unsigned long long>(-process.error);
        ptrace(PTRACE_SETREGS, pid, nullptr, &registers);
    }
    if (process.signal != 0)
        kill(pid, process.signal);
    process.isChanged = false;
    process.error = process.signal = 0;
}

void stopAtCall(pid_t pid, Process &process, Fault &fault)
{
    __ptrace_syscall_info info = {};
    ptrace(PTRACE_GET_SYSCALL_INFO, pid, sizeof info, &info);
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY)
        enterCall(pid, process, fault);
    else
        leaveCall(pid, process);
}

// Returns the signal that the process shall get when it goes on.
int handleStop(pid_t pid, int status, std::map<pid_t, Process> &processes, Fault &fault)
{
    const int signal = WSTOPSIG(status);
    const int event = status >> 16;
    unsigned long child = 0;
    if (signal == (SIGTRAP | 0x80)) {
        stopAtCall(pid, processes[pid], fault);
    } else if (event == PTRACE_EVENT_EXEC) {
        processes[pid] = Process();
    } else if (event == PTRACE_EVENT_FORK || event == PTRACE_EVENT_VFORK ||
               event == PTRACE_EVENT_CLONE) {
        ptrace(PTRACE_GETEVENTMSG, pid, nullptr, &child);
        processes[static_cast<pid_t>(child)].isCounted = processes[pid].isCounted;
    } else if (event == 0) {
        return signal;
    }
    return 0;
}

pid_t start(char *command[])
{
    const pid_t pid = fork();
    if (pid == 0) {
        raise(SIGSTOP);
        execvp(command[0], command);
        perror(command[0]);
        _exit(127);
    }
    int status;
    waitpid(pid, &status, WUNTRACED);
    const long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
                         PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
    ptrace(PTRACE_SEIZE, pid, nullptr, options);
    kill(pid, SIGCONT);
    return pid;
}

// The command's own wait status.
int trace(char *command[], Fault &fault)
{
    std::map<pid_t, Process> processes;
    const pid_t first = start(command);
    int result = 0;
    int status = 0;
    for (pid_t pid = 0; (pid = waitpid(-1, &status, __WALL)) > 0 || errno == EINTR;) {
        if (pid <= 0)
            continue;
        if (WIFSTOPPED(status))
            ptrace(PTRACE_SYSCALL, pid, nullptr, handleStop(pid, status, processes, fault));
        else if (pid == first)
            result = status;
    }
    return result;
}

bool report(const char *file, const Fault &fault, int status)
{
    std::FILE *const out = std::fopen(file, "w");
    if (out == nullptr)
        return false;
    std::fprintf(out, "%ld %s %ld %d %d\n", fault.done, fault.name, fault.argument,
                 WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                 WIFSIGNALED(status) ? WTERMSIG(status) : 0);
    return std::fclose(out) == 0;
}

int badUsage()
{
    std::fputs("usage: faults_trace REPORT CALL NUMBER WHAT COMMAND...\n", stderr);
    return 2;
}
} // namespace

int main(int argc, char *argv[])
{
    if (argc < 6)
        return badUsage();
    Fault fault;
    fault.group = argv[2];
    if (const size_t at = fault.group.find('@'); at != std::string::npos) {
        fault.path = fault.group.substr(at + 1);
        fault.group.resize(at);
    }
    fault.number = std::atol(argv[3]);
    char what[16] = "";
    std::sscanf(argv[4], "%15s %d %llu", what, &fault.value, &fault.most);
    fault.what = what;
    const int status = trace(argv + 5, fault);
    return report(argv[1], fault, status) ? 0 : 1;
}
