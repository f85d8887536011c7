#include "thumbmake/tm_Cache.h"

#include "UT/UT_Environment.h"
#include "thumbmake/tm_Text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{
// XDG Base Directory Specification 0.8: a relative path does not count.
std::string cacheFolder()
{
    const char *const cache = UTgetenv("XDG_CACHE_HOME");
    if (cache != nullptr && *cache == '/')
        return cache + std::string("/veldrin/thumbmake");
    const char *const home = UTgetenv("HOME");
    if (home != nullptr && *home == '/')
        return home + std::string("/.cache/veldrin/thumbmake");
    return "";
}
} // namespace

tm_Cache::~tm_Cache()
{
    if (myLock >= 0)
        close(myLock);
}

bool tm_Cache::open()
{
    myFolder = cacheFolder();
    if (myFolder.empty()) {
        myError = "expected an absolute path in XDG_CACHE_HOME or HOME";
        return false;
    }
    if (tm_hasControl(myFolder)) {
        myError = "a control character in the cache's name: " + myFolder;
        return false;
    }
    std::error_code code;
    std::filesystem::create_directories(myFolder, code);
    if (!code && lock())
        return true;
    myError = "cannot use " + myFolder + ": " + (code ? code.message() : std::strerror(errno));
    return false;
}

bool tm_Cache::lock()
{
    // Ninja and its jobs hold it too, and go on for a while when we are killed.
    myLock = ::open((myFolder + "/lock").c_str(), O_RDWR | O_CREAT, 0666);
    if (myLock < 0)
        return false;
    if (flock(myLock, LOCK_EX | LOCK_NB) == 0)
        return true;
    std::fputs("thumbmake: waiting for another thumbmake to end\n", stderr);
    return flock(myLock, LOCK_EX) == 0;
}
