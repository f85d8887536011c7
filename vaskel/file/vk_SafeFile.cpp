#include "vaskel/file/vk_SafeFile.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr mode_t GROUP_SHIFT = 3; // from the bits of others to those of the group

// Keeps signals back while a file lies beside the target. By then no other thread is
// left that could take them.
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

// Up to and with the last '/'.
std::string folderOf(const std::string &name)
{
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "" : name.substr(0, slash + 1);
}

std::string temporaryName(const std::string &target)
{
    const std::string folder = folderOf(target);
    // A name may be 255 bytes long, of which the frame takes 16.
    return folder + "." + target.substr(folder.size(), 200) + ".vaskel-XXXXXX";
}

mode_t newFileMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// What is there; no mode at all when nothing is. False, and errno, when that cannot be
// told.
bool look(const std::string &name, struct stat &there)
{
    there = {};
    return lstat(name.c_str(), &there) == 0 || errno == ENOENT;
}

// `made` is what the new file is by itself. The old file's bits were given to its owner
// and to its group: another owner's mean nothing here, and another group gets no more
// than everybody.
mode_t permissions(const struct stat &old, const struct stat &made)
{
    if (!S_ISREG(old.st_mode) || old.st_uid != made.st_uid)
        return newFileMode();
    const mode_t bits = old.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    if (old.st_gid == made.st_gid)
        return bits;
    return bits & (~static_cast<mode_t>(S_IRWXG) | (bits & S_IRWXO) << GROUP_SHIFT);
}
} // namespace

vk_SafeFile::vk_SafeFile(const std::string &target) : myTarget(target) {}

bool vk_SafeFile::fail(const char *what, int code)
{
    myError = std::string(what) + ": " + std::strerror(code);
    return false;
}

bool vk_SafeFile::isWritable()
{
    struct stat there;
    if (!look(myTarget, there))
        return fail("cannot write", errno);
    if (there.st_mode != 0 && !S_ISREG(there.st_mode) && !S_ISLNK(there.st_mode)) {
        myError = "cannot replace what is there: not a regular file";
        return false;
    }
    const std::string folder = folderOf(myTarget);
    const char *const place = folder.empty() ? "." : folder.c_str();
    return faccessat(AT_FDCWD, place, W_OK | X_OK, AT_EACCESS) == 0 || fail("cannot write", errno);
}

bool vk_SafeFile::writeAll(const char *bytes, std::size_t count)
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

// Writes the new file and closes it in any case; errno tells a failure.
bool vk_SafeFile::fill(const char *bytes, std::size_t count)
{
    struct stat old, made = {};
    const bool good = look(myTarget, old) && fstat(myFile, &made) == 0 && writeAll(bytes, count) &&
                      fchmod(myFile, permissions(old, made)) == 0;
    const int code = errno;
    const bool closed = close(myFile) == 0;
    if (!good)
        errno = code;
    return good && closed;
}

bool vk_SafeFile::write(const void *bytes, std::size_t count)
{
    if (!isWritable()) // which may have changed since
        return false;
    std::string temporary = temporaryName(myTarget);
    const SignalPause pause;
    myFile = mkstemp(temporary.data());
    if (myFile < 0)
        return fail("cannot write", errno);
    const bool filled = fill(static_cast<const char *>(bytes), count);
    if (filled && std::rename(temporary.c_str(), myTarget.c_str()) == 0)
        return true;
    const int code = errno;
    unlink(temporary.c_str());
    return fail(filled ? "cannot replace" : "cannot write", code);
}
