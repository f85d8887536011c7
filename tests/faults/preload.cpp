// Loaded in front of a program (LD_PRELOAD): lets one of its allocations fail.
//
// FAULTS_PROGRAM     only in the program with this name
// FAULTS_ALLOCATION  which allocation fails, from 1; "N+" for all from there on
// FAULTS_HIT         a file that is made when one fails
//
// Allocations count from main's start, behind the dynamic loader, and there the
// system call FAULTS_MARK tells the same to the tracer.
#include "tests/faults/mark.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

// What the C library keeps for those who put their own functions in front of it.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void *__libc_memalign(size_t alignment, size_t size);
}

namespace
{
std::atomic<long> allocations{0};
long failing = 0; // 0: none
bool failsOn = false;
thread_local bool isPaused = false;

// Until its end the thread's allocations do not count.
struct Pause {
    Pause() { isPaused = true; }
    ~Pause() { isPaused = false; }
};

void tellHit()
{
    const int before = errno;
    if (const char *file = getenv("FAULTS_HIT"))
        close(open(file, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    errno = before;
}

bool isFailing()
{
    if (failing == 0 || isPaused)
        return false;
    const long number = ++allocations;
    if (number != failing && !(failsOn && number > failing))
        return false;
    if (number == failing)
        tellHit();
    errno = ENOMEM;
    return true;
}

void readSettings()
{
    if (const char *setting = getenv("FAULTS_ALLOCATION")) {
        char *end = nullptr;
        failing = strtol(setting, &end, 10);
        failsOn = *end == '+';
    }
}

bool isMeant(const char *program)
{
    const char *name = getenv("FAULTS_PROGRAM");
    const char *slash = strrchr(program, '/');
    return name != nullptr && strcmp(slash != nullptr ? slash + 1 : program, name) == 0;
}
} // namespace

extern "C" {
void *malloc(size_t size)
{
    return isFailing() ? nullptr : __libc_malloc(size);
}

void *calloc(size_t count, size_t size)
{
    return isFailing() ? nullptr : __libc_calloc(count, size);
}

void *realloc(void *block, size_t size)
{
    return isFailing() ? nullptr : __libc_realloc(block, size);
}

void *memalign(size_t alignment, size_t size)
{
    return isFailing() ? nullptr : __libc_memalign(alignment, size);
}

void *aligned_alloc(size_t alignment, size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void **block, size_t alignment, size_t size)
{
    void *const made = memalign(alignment, size);
    if (made == nullptr)
        return ENOMEM;
    *block = made;
    return 0;
}

// glibc 2.36 crashes inside these two when its own allocations fail, and no program could
// do anything about it: they fail as a whole.
void *dlopen(const char *file, int flags)
{
    const auto open = reinterpret_cast<void *(*)(const char *, int)>(dlsym(RTLD_NEXT, "dlopen"));
    if (isFailing())
        return nullptr;
    const Pause pause;
    return open(file, flags);
}

passwd *getpwuid(uid_t user)
{
    const auto get = reinterpret_cast<passwd *(*)(uid_t)>(dlsym(RTLD_NEXT, "getpwuid"));
    if (isFailing())
        return nullptr;
    const Pause pause;
    return get(user);
}

using Main = int (*)(int, char **, char **);
using Start = int (*)(Main, int, char **, void (*)(), void (*)(), void (*)(), void *);

// Every program's first instructions call this one.
int __libc_start_main(Main main, int argc, char **argv, void (*init)(), void (*fini)(),
                      void (*loaderFini)(), void *stackEnd)
{
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    if (argc > 0 && isMeant(argv[0])) {
        syscall(FAULTS_MARK);
        readSettings();
    }
    return start(main, argc, argv, init, fini, loaderFini, stackEnd);
}
}
