#include "UT/UT_SafeFile.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

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

// Up to 200 bytes of the name: with what is around it, 255 are allowed.
std::string nameBeside(const std::string &target)
{
    const size_t begin = target.rfind('/') + 1; // npos + 1 is 0
    return target.substr(0, begin) + "." + target.substr(begin, 200) + "-XXXXXX";
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

    std::string name = nameBeside(myTarget);
    const int file = mkstemp(name.data());
    if (file < 0)
        return nullptr;
    myTemporary = name;
    const mode_t bits = S_IRWXU | S_IRWXG | S_IRWXO;
    static_cast<void>(!fchmod(file, exists ? there.st_mode & bits : newFileMode()));
    myStream = fdopen(file, "w");
    return myStream;
}

bool UT_SafeFile::commit()
{
    bool isGood = std::fflush(myStream) == 0 && std::ferror(myStream) == 0;
    isGood = std::fclose(myStream) == 0 && isGood;
    myStream = nullptr;
    if (isGood && !myTemporary.empty())
        isGood = std::rename(myTemporary.c_str(), myTarget.c_str()) == 0;
    const int code = errno;
    if (isGood)
        myTemporary.clear();
    removeTemporary();
    errno = code;
    return isGood;
}
