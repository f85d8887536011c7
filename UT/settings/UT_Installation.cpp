#include "UT/UT_Installation.h"

#include "UT/UT_Environment.h"
#include "UT/UT_FileUtil.h"

#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

#include <unistd.h>

namespace
{
// "" when the system does not tell. Links to the program are followed.
std::string ownFolder()
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    const std::string_view program(path, length > 0 ? static_cast<size_t>(length) : 0);
    return std::string(program.substr(0, program.rfind('/') + 1));
}

// "" when we are not installed.
std::string installedShare()
{
    const std::string folder = ownFolder();
    char share[PATH_MAX];
    if (folder.empty() || realpath((folder + VELDRIN_SHARE).c_str(), share) == nullptr)
        return "";
    return UTisDirectory((std::string(share) + "/veldrin").c_str()) ? share : "";
}

bool isProgram(const std::string &path)
{
    return access(path.c_str(), X_OK) == 0 && !UTisDirectory(path.c_str());
}

// An empty element is the working directory (POSIX).
bool leadsTo(std::string_view searchPath, const char *name)
{
    while (true) {
        const size_t end = searchPath.find(':');
        const std::string folder(searchPath.substr(0, end));
        if (isProgram((folder.empty() ? "." : folder) + '/' + name))
            return true;
        if (end == std::string_view::npos)
            return false;
        searchPath.remove_prefix(end + 1);
    }
}

// What a shell takes where PATH is not set.
std::string standardPath()
{
    char path[PATH_MAX];
    const size_t size = confstr(_CS_PATH, path, sizeof path);
    return size > 0 && size <= sizeof path ? path : "/bin:/usr/bin";
}
} // namespace

void UTuseInstalledData()
{
    if (UTgetenv("VDX") != nullptr)
        return;
    const std::string share = installedShare();
    if (!share.empty())
        UTsetenv("VDX", share.c_str());
}

void UTuseInstalledProgram(const char *name)
{
    if (installedShare().empty())
        return;
    const char *const known = UTgetenv("PATH");
    const std::string path = known != nullptr ? known : standardPath();
    if (!leadsTo(path, name))
        UTsetenv("PATH", (path + ':' + ownFolder()).c_str());
}
