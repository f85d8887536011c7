#include "vaskel/osl/vk_OslFiles.h"

#include "UT/UT_PathSearch.h"
#include "vaskel/params/vk_Nearest.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <sys/stat.h>

namespace
{
// A palette may come from anybody. What its shaders read is bound to what lies beside it or
// where the user keeps shaders, to files that look like what they are read as, and to sizes that
// memory bears.
struct KindRow {
    const char *what;
    off_t most; // bytes
    std::vector<std::string> endings;
};
const KindRow KIND_ROWS[] = {
    {"a shader's source", 4 << 20, {".osl"}},
    {"an include", 4 << 20, {".h", ".osl", ".oslh", ".inc"}},
    {"a texture", 256 << 20, {".png", ".jpg", ".jpeg"}},
    {"a dictionary", 4 << 20, {".xml"}},
};
static_assert(std::size(KIND_ROWS) == vk_OslFiles::KINDS);

constexpr UT_KnownPath PATHS[] = {
    UT_VELDRIN_ZEL_PATH_SURFACE,
    UT_VELDRIN_ZEL_PATH_DISPLACEMENT,
    UT_VELDRIN_ZEL_PATH_LIGHT,
    UT_VELDRIN_ZEL_PATH_FOG,
};

// With all links followed: a link inside a folder must not lead out of it. "" when there is no
// such file.
std::string realPath(const std::string &path)
{
    const std::unique_ptr<char, decltype(&std::free)> found(realpath(path.c_str(), nullptr),
                                                            &std::free);
    return found == nullptr ? "" : found.get();
}

bool endsWith(const std::string &name, const std::string &ending)
{
    return name.size() > ending.size() &&
           name.compare(name.size() - ending.size(), ending.size(), ending) == 0;
}

bool isBelow(const std::string &path, const std::string &folder)
{
    return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
           // Not "/home/me2" below "/home/me".
           path[folder.size()] == '/';
}

// A folder of its own: a relative name must not reach the root of the file system.
std::string folderOf(const std::string &picture)
{
    const std::size_t slash = picture.rfind('/');
    return slash == std::string::npos ? "" : picture.substr(0, slash + 1);
}

std::string in(const std::string &folder, const std::string &name)
{
    const bool isWhole = folder.empty() || folder.back() == '/';
    return isWhole ? folder + name : folder + "/" + name;
}
} // namespace

vk_OslFiles::vk_OslFiles(const std::string &picture) : myHome(folderOf(picture)) {}

// On the first use only: who has no shader of his own needs no search path.
void vk_OslFiles::takeFolders()
{
    if (!myFolders.empty())
        return;
    // From here on it is not empty, which tells that this was done.
    myFolders = {myHome};
    for (const UT_KnownPath path : PATHS) {
        const UT_StringList &dirs = UT_PathSearch::getInstance(path).getDirs();
        for (int i = 0; i < dirs.entries(); ++i) {
            const std::string dir(dirs(i));
            const bool isOld =
                std::find(myFolders.begin(), myFolders.end(), dir) != myFolders.end();
            // A relative folder would mean another one for each user of the palette.
            if (dir[0] == '/' && !isOld)
                myFolders.push_back(dir);
        }
    }
    for (const std::string &folder : myFolders) {
        const std::string root = realPath(folder.empty() ? "." : folder);
        // The root itself would allow every file there is.
        if (root.size() > 1)
            myRoots.push_back(root);
    }
}

const std::vector<std::string> &vk_OslFiles::folders()
{
    const std::lock_guard<std::mutex> lock(myMutex);
    takeFolders();
    return myFolders;
}

bool vk_OslFiles::mayReadLocked(Kind kind, const std::string &path, std::string &error)
{
    takeFolders();
    const KindRow &row = KIND_ROWS[kind];
    const std::string real = realPath(path);
    struct stat info = {};
    if (real.empty() || stat(real.c_str(), &info) != 0) {
        error = std::string("cannot be read: ") + std::strerror(errno);
        return false;
    }
    const auto holds = [&](const std::string &root) { return isBelow(real, root); };
    // The real name's: a link called wood.png must not lead to something else.
    const auto fits = [&](const std::string &ending) { return endsWith(real, ending); };
    if (std::none_of(myRoots.begin(), myRoots.end(), holds))
        error = "lies neither beside the palette nor below the shader path";
    else if (std::none_of(row.endings.begin(), row.endings.end(), fits))
        error = std::string("does not end as ") + row.what + " does";
    // A device or a pipe may never end.
    else if (!S_ISREG(info.st_mode) || info.st_size > row.most)
        error = "is no regular file of at most " + std::to_string(row.most >> 20) + " MB";
    // For the rule of the picture's make file.
    else if (std::find(myOpened.begin(), myOpened.end(), path) == myOpened.end())
        myOpened.push_back(path);
    return error.empty();
}

bool vk_OslFiles::mayRead(Kind kind, const std::string &path)
{
    const std::lock_guard<std::mutex> lock(myMutex);
    // The compiler has a message of its own for an include that it did not get.
    std::string ignored;
    return mayReadLocked(kind, path, ignored);
}

std::string vk_OslFiles::find(Kind kind, const std::string &name, std::string &error)
{
    const std::lock_guard<std::mutex> lock(myMutex);
    takeFolders();
    std::string first;
    const bool isAbsolute = !name.empty() && name[0] == '/';
    for (const std::string &folder : myFolders) {
        // No look for "..": what counts is where the name leads in the end.
        const std::string path = isAbsolute ? name : in(folder, name);
        std::string why;
        if (mayReadLocked(kind, path, why))
            return path;
        // That a file is not in a folder says less than that it may not be read there.
        struct stat info = {};
        if (first.empty() && stat(path.c_str(), &info) == 0)
            first = why;
    }
    error =
        vk_quotedName(name) + " " +
        (!first.empty() ? first : "was found neither beside the palette nor along the shader path");
    return "";
}

std::vector<std::string> vk_OslFiles::opened()
{
    const std::lock_guard<std::mutex> lock(myMutex);
    // A copy, as other threads may go on to open files.
    return myOpened;
}
