// Finding files and folders along a search path.
#include "UT/UT_PathSearch.h"

#include "UT/UT_FileUtil.h"
#include "UT/UT_ScratchBuffer.h"

#include <cstring>
#include <strings.h>

namespace
{
// A name that is explicit is the path itself, whatever the folder.
void formPath(UT_ScratchBuffer &path, const char *dir, const char *name)
{
    path.clear();
    if (!UTisExplicitPath(name)) {
        path.append(dir);
        path.append('/');
    }
    path.append(name);
}

bool hasExtension(const char *name, const char *extension)
{
    const char *dot = std::strrchr(name, '.');
    return dot != nullptr && strcasecmp(dot, extension) == 0;
}
} // namespace

bool UT_PathSearch::findFile(UT_String &result, const char *name, WhenMissing missing) const
{
    return findFirst(result, name, missing, UTisReadable);
}

bool UT_PathSearch::findDirectory(UT_String &result, const char *name, WhenMissing missing) const
{
    return findFirst(result, name, missing, UTisDirectory);
}

int UT_PathSearch::findAllFiles(const char *name, UT_StringList &list) const
{
    return findAll(name, list, UTisReadable, false);
}

int UT_PathSearch::findAllDirectories(const char *name, UT_StringList &list) const
{
    return findAll(name, list, UTisDirectory, false);
}

bool UT_PathSearch::findFileFromList(UT_String &result, const UT_StringList &names) const
{
    return findFromList(result, names, UTisReadable);
}

bool UT_PathSearch::findDirectoryFromList(UT_String &result, const UT_StringList &names) const
{
    return findFromList(result, names, UTisDirectory);
}

bool UT_PathSearch::findFirst(UT_String &result, const char *name, WhenMissing missing,
                              Test isWanted) const
{
    UT_StringList found;
    if (findAll(name, found, isWanted, true) != 0) {
        result.assignCopy(found(0));
        return true;
    }
    if (missing == KEEP_NAME)
        result = name;
    else
        result.clear();
    return false;
}

// All kinds of look-up by one name come down to this walk.
int UT_PathSearch::findAll(const char *name, UT_StringList &list, Test isWanted,
                           bool firstOnly) const
{
    if (name == nullptr)
        return 0;
    if (UTisExplicitPath(name)) {
        if (!isWanted(name))
            return 0;
        list.append(name);
        return 1;
    }
    UT_ScratchBuffer path;
    int count = 0;
    for (int i = 0; i < myDirs.entries() && !(firstOnly && count != 0); i++) {
        formPath(path, myDirs(i), name);
        if (isWanted(path.buffer())) {
            list.append(path.buffer());
            count++;
        }
    }
    return count;
}

// Folders outside, names inside: a user's folder hides the installed one whichever of
// the names it has.
bool UT_PathSearch::findFromList(UT_String &result, const UT_StringList &names, Test isWanted) const
{
    UT_ScratchBuffer path;
    for (int i = 0; i < myDirs.entries(); i++) {
        for (int j = 0; j < names.entries(); j++) {
            if (names(j).text() == nullptr)
                continue;
            formPath(path, myDirs(i), names(j));
            if (isWanted(path.buffer())) {
                result.assignCopy(path.buffer());
                return true;
            }
        }
    }
    result.clear();
    return false;
}

int UT_PathSearch::matchAllFiles(const char *extension, bool fullPath, UT_StringList &list,
                                 const char *subdir) const
{
    UT_ScratchBuffer dir, path;
    for (int i = 0; i < myDirs.entries(); i++) {
        dir.clear();
        dir.append(myDirs(i));
        if (subdir != nullptr) {
            dir.append('/');
            dir.append(subdir);
        }
        UT_StringList names;
        (void)UTlistDirectory(dir.buffer(), names); // one that cannot be opened has none
        for (int j = 0; j < names.entries(); j++) {
            if (!hasExtension(names(j), extension))
                continue;
            formPath(path, dir.buffer(), names(j));
            list.append(fullPath ? path.buffer() : names(j).text());
        }
    }
    return list.entries();
}
