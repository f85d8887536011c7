#include "vaskel/vk_SafeFile.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int SIGNALS[] = {SIGHUP, SIGINT, SIGTERM, SIGPIPE, SIGQUIT, SIGABRT, SIGXFSZ, SIGXCPU};

// What the handler removes; valid while armed.
char doomed[PATH_MAX];
volatile sig_atomic_t isArmed = 0;

// Only what POSIX calls async-signal-safe.
extern "C" void removeAndDie(int number)
{
    vk_SafeFile::abandon();
    signal(number, SIG_DFL);
    raise(number);
}

// Signals that somebody chose to ignore (nohup) stay ignored.
void catchSignals()
{
    for (const int number : SIGNALS) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
            continue;
        action.sa_handler = removeAndDie;
        sigfillset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}

// Keeps the signals back while the temporary file's name and its existence
// are not yet or no longer in step.
class SignalPause
{
public:
    SignalPause()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &myBefore);
    }
    ~SignalPause() { pthread_sigmask(SIG_SETMASK, &myBefore, nullptr); }
    SignalPause(const SignalPause &) = delete;
    SignalPause &operator=(const SignalPause &) = delete;

private:
    sigset_t myBefore;
};

// Where a name leads: links resolved, or the name itself when nothing is there.
std::string resolved(const std::string &name)
{
    const std::unique_ptr<char, decltype(&std::free)> path(realpath(name.c_str(), nullptr),
                                                           &std::free);
    return path != nullptr ? path.get() : name;
}

std::string temporaryName(const std::string &target)
{
    const std::size_t slash = target.rfind('/');
    const std::size_t folder = slash == std::string::npos ? 0 : slash + 1;
    // A name may be 255 bytes long, of which the frame takes 16.
    return target.substr(0, folder) + "." + target.substr(folder, 200) + ".vaskel-XXXXXX";
}

unsigned newFileMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}
} // namespace

void vk_SafeFile::abandon()
{
    if (isArmed != 0)
        unlink(doomed);
}

vk_SafeFile::~vk_SafeFile()
{
    discard();
}

bool vk_SafeFile::fail(const char *what, int code)
{
    myError = std::string(what) + " '" + myTarget + "': " + std::strerror(code);
    discard();
    return false;
}

void vk_SafeFile::discard()
{
    if (myFile >= 0)
        close(myFile);
    myFile = -1;
    if (myTemporary.empty())
        return;
    const SignalPause pause;
    unlink(myTemporary.c_str());
    isArmed = 0;
    myTemporary.clear();
}

bool vk_SafeFile::open(const std::string &target)
{
    myTarget = resolved(target);
    struct stat there = {};
    const bool exists = stat(myTarget.c_str(), &there) == 0;
    if (exists && !S_ISREG(there.st_mode)) {
        myError = "cannot replace '" + target + "': not a regular file";
        return false;
    }
    myMode = exists ? there.st_mode & 07777 : newFileMode();
    std::string temporary = temporaryName(myTarget);
    if (temporary.size() >= sizeof doomed)
        return fail("cannot write", ENAMETOOLONG);
    catchSignals();
    const SignalPause pause;
    myFile = mkstemp(temporary.data());
    if (myFile < 0)
        return fail("cannot write", errno);
    std::memcpy(doomed, temporary.c_str(), temporary.size() + 1);
    isArmed = 1;
    myTemporary = std::move(temporary);
    return true;
}

bool vk_SafeFile::write(const char *bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t written = ::write(myFile, bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

bool vk_SafeFile::commit(const void *bytes, std::size_t count)
{
    if (!write(static_cast<const char *>(bytes), count) || fchmod(myFile, myMode) != 0)
        return fail("cannot write", errno);
    const int file = myFile;
    myFile = -1;
    if (close(file) != 0)
        return fail("cannot write", errno);
    const SignalPause pause;
    if (std::rename(myTemporary.c_str(), myTarget.c_str()) != 0)
        return fail("cannot replace", errno);
    isArmed = 0;
    myTemporary.clear();
    return true;
}
