#include "UT/UT_TempDir.h"

#include "UT/UT_Environment.h"
#include "UT/UT_Memory.h"
#include "UT/UT_String.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
char *readTempDir()
{
    const char *value = UTgetenv("VELDRIN_TEMP_DIR");
    char *dir = UTduplicate(value != nullptr ? value : "/tmp");
    const size_t length = std::strlen(dir);
    if (length != 0 && dir[length - 1] == '/')
        dir[length - 1] = '\0';
    return dir;
}
} // namespace

const char *UTgetTempDir()
{
    static const char *const theDir = readTempDir();
    return theDir;
}

// Our own naming: the C library's tempnam is one that linkers warn of, and it looks
// at TMPDIR before the folder it is given.
bool UTgetTempFileName(UT_String &result, const char *prefix)
{
    static unsigned theCounter = 0;
    UT_String name; // apart from the result, which may hold the prefix
    struct stat ignored;
    int status;
    do {
        name.sprintf("%s/%s%d-%u", UTgetTempDir(), prefix != nullptr ? prefix : "", getpid(),
                     theCounter++);
        status = lstat(name.text(), &ignored);
    } while (status == 0);
    if (errno != ENOENT)
        name.clear();
    result.swap(name);
    return result.text() != nullptr;
}
