#include "UT/UT_FileUtil.h"

#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"
#include "UT/UT_StringList.h"

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
bool startsWith(const char *text, const char *prefix)
{
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

// Kept for the life of the process.
UT_StringList &absolutePrefixes()
{
    static UT_StringList &thePrefixes = *new UT_StringList;
    return thePrefixes;
}

bool startsWithAbsolutePrefix(const char *name)
{
    const UT_StringList &prefixes = absolutePrefixes();
    for (int i = 0; i < prefixes.entries(); i++)
        if (startsWith(name, prefixes(i)))
            return true;
    return startsWith(name, "/") || startsWith(name, "op:");
}

constexpr int MAX_DIRECTORY_BYTES = 4096;

bool appendWorkingDirectory(UT_ScratchBuffer &out)
{
    char buffer[MAX_DIRECTORY_BYTES];
    if (getcwd(buffer, sizeof buffer) == nullptr)
        return false;
    out.append(buffer);
    return true;
}

// Appends what the working directory is after a chdir, then goes back. The way back
// is a descriptor, as it holds even when the folder has been renamed.
bool appendResolved(UT_ScratchBuffer &out, const char *directory)
{
    const int back = open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (back < 0)
        return false;
    const bool isResolved = chdir(directory) == 0 && appendWorkingDirectory(out);
    const bool isBack = fchdir(back) == 0;
    close(back);
    return isResolved && isBack;
}
} // namespace

bool UTisExplicitPath(const char *name)
{
    return name != nullptr &&
           (startsWith(name, "/") || startsWith(name, "./") || startsWith(name, "../"));
}

bool UTisAbsolutePath(const char *name)
{
    if (name == nullptr)
        return false;
    while (*name != '\0' && !startsWithAbsolutePrefix(name)) {
        if (!startsWith(name, "file:"))
            return false;
        name += std::strlen("file:");
    }
    return *name != '\0';
}

void UTaddAbsolutePrefix(const char *prefix)
{
    absolutePrefixes().append(prefix);
}

bool UTisReadable(const char *path)
{
    return path != nullptr && access(path, R_OK) == 0;
}

// "c:" names the folder "c:/" on a volume, and "" the root.
bool UTisDirectory(const char *path)
{
    if (path == nullptr)
        return false;
    UT_ScratchBuffer tested;
    tested.append(path);
    const int length = tested.length();
    if (length == 0 || path[length - 1] == ':')
        tested.append('/');
    struct stat status;
    return stat(tested.buffer(), &status) == 0 && S_ISDIR(status.st_mode) &&
           access(tested.buffer(), R_OK | X_OK) == 0;
}

bool UTmakeDir(const char *path, mode_t mode)
{
    struct stat status;
    if (path == nullptr)
        return false;
    if (stat(path, &status) == 0)
        return S_ISDIR(status.st_mode);
    return mkdir(path, mode) == 0;
}

// Each slash but the first character's ends the name of a folder to be made.
bool UTmakeDirs(const char *path, mode_t mode)
{
    if (path == nullptr)
        return false;
    UT_ScratchBuffer prefix;
    for (const char *at = path; *at != '\0'; at++) {
        if (*at == '/' && at != path && !UTmakeDir(prefix.buffer(), mode))
            return false;
        prefix.append(*at);
    }
    return UTmakeDir(path, mode);
}

bool UTlistDirectory(const char *path, UT_StringList &names)
{
    DIR *folder = path != nullptr ? opendir(path) : nullptr;
    if (folder == nullptr)
        return false;
    while (const dirent *entry = readdir(folder))
        names.append(entry->d_name);
    closedir(folder);
    return true;
}

bool UTmakeAbsolutePath(const char *path, UT_String &result)
{
    if (path == nullptr)
        return false;
    UT_ScratchBuffer absolute;
    const char *slash = std::strrchr(path, '/');
    if (UTisAbsolutePath(path)) {
        absolute.append(path);
    } else if (slash == nullptr) {
        if (!appendWorkingDirectory(absolute))
            return false;
        absolute.append('/');
        absolute.append(path);
    } else {
        const UT_String directory(path, true, static_cast<int>(slash - path));
        if (!appendResolved(absolute, directory.text()))
            return false;
        absolute.append(slash);
    }
    absolute.copyToString(result);
    return true;
}
