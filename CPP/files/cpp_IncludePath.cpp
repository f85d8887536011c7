#include "CPP/cpp_IncludePath.h"

#include "CPP/cpp_Text.h"
#include "UT/UT_FileUtil.h"
#include "UT/UT_StringList.h"

#include <cstring>
#include <unistd.h>

namespace
{
// What a look-up depends on.
std::string keyOf(const char *name, const char *nearFolder)
{
    return nearFolder != nullptr ? std::string("/") + nearFolder + '\0' + name
                                 : std::string("<") + name;
}

bool findNear(const char *folder, const char *name, UT_String &path)
{
    // As a user would write it: messages and markers show the path.
    path.clear();
    if (std::strcmp(folder, ".") != 0)
        (path += folder) += "/";
    path += name;
    return access(path, R_OK) == 0;
}
} // namespace

UT_String bareIncludeName(const char *text, bool endsAtBlank, bool &isAngled)
{
    text = skipSpace(text);
    isAngled = *text == '<';
    size_t length = std::strlen(text);
    if (*text == '"' || isAngled)
        length = std::strcspn(++text, isAngled ? ">" : "\"");
    else if (endsAtBlank)
        length = std::strcspn(text, " \t\n\v\f\r");
    return UT_String(text, true, static_cast<int>(length));
}

cpp_IncludePath::cpp_IncludePath(int pathId, const char *caretSubst)
{
    const auto known = static_cast<UT_KnownPath>(pathId < 0 ? 0 : pathId);
    myFolders.reset(UT_PathSearch::getNewInstance(known));
    if (caretSubst != nullptr)
        myFolders->reconfigure(nullptr, -1, caretSubst, -1);
}

void cpp_IncludePath::add(const char *dir)
{
    myFolders->addDirectory(dir);
    // Names that were nowhere may be there now.
    myFound.clear();
}

void cpp_IncludePath::addAll(const char *pathList)
{
    const UT_PathSearch list(pathList, -1, "", UT_VELDRIN_PATH);
    const UT_StringList &dirs = list.getDirs();
    for (int i = 0; i < dirs.entries(); ++i)
        add(dirs(i));
}

bool cpp_IncludePath::find(const char *name, const char *nearFolder, UT_String &path)
{
    const std::string key = keyOf(name, nearFolder);
    const auto known = myFound.find(key);
    if (known != myFound.end()) {
        path.assignCopy(known->second.c_str());
        return !known->second.empty();
    }
    // Tried all the same: a stream of the caller's may know names that no folder has.
    if (!lookUp(name, nearFolder, path))
        path.assignCopy(name);
    myFound.emplace(key, path.text());
    return true;
}

void cpp_IncludePath::noteMissing(const char *name, const char *nearFolder)
{
    myFound[keyOf(name, nearFolder)] = "";
}

bool cpp_IncludePath::lookUp(const char *name, const char *nearFolder, UT_String &path) const
{
    if (UTisExplicitPath(name) && access(name, R_OK) == 0) {
        path.assignCopy(name);
        return true;
    }
    if (nearFolder != nullptr && findNear(nearFolder, name, path))
        return true;
    const bool isFound = myFolders->findFile(path, name, UT_PathSearch::KEEP_NAME);
    // The path lies in the search's own memory until the next look-up.
    path.makeOwned();
    return isFound;
}
