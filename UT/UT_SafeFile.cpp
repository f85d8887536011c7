#include "UT/UT_SafeFile.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
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

FILE *UT_SafeFile::open()
{
    struct stat there = {};
    const bool exists = stat(myTarget.c_str(), &there) == 0;
    if (isDevice(myTarget) || (exists && !S_ISREG(there.st_mode)))
        return myStream = std::fopen(myTarget.c_str(), "we");
    // Who may not write the file shall not replace it either.
    if (exists && access(myTarget.c_str(), W_OK) != 0)
        return nullptr;
    char resolved[PATH_MAX];
    if (exists && realpath(myTarget.c_str(), resolved) != nullptr)
        myTarget = resolved;

    const int file = openBeside();
    if (file < 0)
        return nullptr;
    const mode_t bits = S_IRWXU | S_IRWXG | S_IRWXO;
    static_cast<void>(!fchmod(file, exists ? there.st_mode & bits : newFileMode()));
    isReplacing = true;
    myStream = fdopen(file, "w");
    if (myStream == nullptr)
        close(file);
    return myStream;
}

bool UT_SafeFile::commit()
{
    // From here to the rename the file has a name; signals wait as long.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    bool isGood = std::fflush(myStream) == 0 && std::ferror(myStream) == 0;
    if (isGood && isReplacing && myTemporary.empty())
        isGood = nameFile(fileno(myStream));
    isGood = std::fclose(myStream) == 0 && isGood;
    myStream = nullptr;
    if (isGood && isReplacing)
        isGood = std::rename(myTemporary.c_str(), myTarget.c_str()) == 0;
    const int code = errno;
    if (isGood)
        myTemporary.clear();
    removeTemporary();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = code;
    return isGood;
}
