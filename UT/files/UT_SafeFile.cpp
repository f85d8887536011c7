#include "UT/UT_SafeFile.h"

#include "UT/UT_SignalPause.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr mode_t GROUP_SHIFT = 3; // from the bits of others to those of the group

mode_t newFileMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

std::string folderOf(const std::string &target)
{
    return target.substr(0, target.rfind('/') + 1); // npos + 1 is 0
}

// Up to 200 bytes of the name: with what is around it, 255 are allowed.
std::string nameBeside(const std::string &target, const std::string &end)
{
    const std::string folder = folderOf(target);
    return folder + "." + target.substr(folder.size(), 200) + "-" + end;
}

// What lies there may stand for a stream that somebody else writes to as well.
bool isDevice(const std::string &name)
{
    return name.compare(0, 5, "/dev/") == 0 || name.compare(0, 6, "/proc/") == 0;
}

// What is there; no mode at all when nothing is. False, and errno, when that cannot be told.
bool look(const std::string &name, struct stat &there)
{
    there = {};
    return lstat(name.c_str(), &there) == 0 || errno == ENOENT;
}

// `made` is what the new file is by itself. The old file's bits were given to its owner and
// to its group: another owner's mean nothing here, and another group gets no more than
// everybody.
mode_t permissions(const struct stat &old, const struct stat &made)
{
    if (!S_ISREG(old.st_mode) || old.st_uid != made.st_uid)
        return newFileMode();
    const mode_t bits = old.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    if (old.st_gid == made.st_gid)
        return bits;
    return bits & (~static_cast<mode_t>(S_IRWXG) | (bits & S_IRWXO) << GROUP_SHIFT);
}

// Of the file that `file` shall replace.
bool givePermissions(int file, const std::string &target)
{
    struct stat old, made;
    return look(target, old) && fstat(file, &made) == 0 &&
           fchmod(file, permissions(old, made)) == 0;
}
} // namespace

UT_SafeFile::~UT_SafeFile()
{
    if (myStream != nullptr)
        std::fclose(myStream);
    removeTemporary();
}

void UT_SafeFile::removeTemporary()
{
    if (!myTemporary.empty())
        unlink(myTemporary.c_str());
    myTemporary.clear();
}

int UT_SafeFile::openBeside()
{
    const std::string folder = folderOf(myTarget);
    const int nameless = ::open(folder.empty() ? "." : folder.c_str(),
                                O_TMPFILE | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (nameless >= 0)
        return nameless;
    std::string name = nameBeside(myTarget, "XXXXXX");
    const int file = mkstemp(name.data());
    if (file >= 0)
        myTemporary = name;
    return file;
}

// Gives a file without a name one beside the target; what a dead process of our number left
// there goes.
bool UT_SafeFile::nameFile(int file)
{
    const std::string name = nameBeside(myTarget, std::to_string(getpid()));
    const std::string open = "/proc/self/fd/" + std::to_string(file);
    const auto link = [&] {
        return linkat(AT_FDCWD, open.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    if (!link() && (errno != EEXIST || unlink(name.c_str()) != 0 || !link()))
        return false;
    myTemporary = name;
    return true;
}

bool UT_SafeFile::fail(const char *what)
{
    const int code = errno;
    myError = std::string(what) + ": " + std::strerror(code);
    errno = code;
    return false;
}

bool UT_SafeFile::isWritable()
{
    struct stat there;
    if (!look(myTarget, there))
        return fail("cannot write");
    if (there.st_mode != 0 && !S_ISREG(there.st_mode) && !S_ISLNK(there.st_mode)) {
        myError = "cannot replace what is there: not a regular file";
        errno = EEXIST;
        return false;
    }
    const std::string folder = folderOf(myTarget);
    const char *const place = folder.empty() ? "." : folder.c_str();
    return faccessat(AT_FDCWD, place, W_OK | X_OK, AT_EACCESS) == 0 || fail("cannot write");
}

FILE *UT_SafeFile::openAsItIs()
{
    return myStream = std::fopen(myTarget.c_str(), "we");
}

FILE *UT_SafeFile::openNew()
{
    const int file = openBeside();
    if (file < 0)
        return nullptr;
    isReplacing = true;
    myStream = givePermissions(file, myTarget) ? fdopen(file, "w") : nullptr;
    if (myStream == nullptr) {
        const int code = errno;
        close(file);
        errno = code;
    }
    return myStream;
}

FILE *UT_SafeFile::open()
{
    if (myLinks == REPLACE_LINKS) {
        if (isWritable() && openNew() == nullptr)
            fail("cannot write");
        return myStream;
    }
    struct stat there = {};
    const bool exists = stat(myTarget.c_str(), &there) == 0;
    // Who may not write the file shall not replace it either.
    const bool mayWrite = !exists || access(myTarget.c_str(), W_OK) == 0;
    char resolved[PATH_MAX];
    if (isDevice(myTarget) || (exists && !S_ISREG(there.st_mode))) {
        openAsItIs();
    } else if (mayWrite) {
        if (exists && realpath(myTarget.c_str(), resolved) != nullptr)
            myTarget = resolved;
        openNew();
    }
    if (myStream == nullptr)
        fail("cannot write");
    return myStream;
}

// Closes in any case.
bool UT_SafeFile::finish()
{
    bool isGood = std::fflush(myStream) == 0 && std::ferror(myStream) == 0;
    if (isGood && isReplacing && myTemporary.empty())
        isGood = nameFile(fileno(myStream));
    const int code = errno;
    const bool isClosed = std::fclose(myStream) == 0;
    myStream = nullptr;
    if (!isGood)
        errno = code;
    return isGood && isClosed;
}

bool UT_SafeFile::commit()
{
    const UT_SignalPause pause; // from here to the rename the file has a name
    const char *what = "cannot write";
    bool isGood = finish();
    if (isGood && isReplacing) {
        what = "cannot replace";
        isGood = std::rename(myTemporary.c_str(), myTarget.c_str()) == 0;
    }
    if (isGood) {
        myTemporary.clear();
        return true;
    }
    fail(what);
    const int code = errno;
    removeTemporary();
    errno = code;
    return false;
}
