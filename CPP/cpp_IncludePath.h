// Where include files are: a name is looked for beside the file that includes it, then
// along folders.
//
// What a name led to, and that it led nowhere, is remembered: headers include the same ones
// again and again, and most names are asked for in several folders in vain. Files that come
// or go meanwhile are not noticed.
#pragma once

#include "UT/UT_PathSearch.h"
#include "UT/UT_String.h"

#include <memory>
#include <string>
#include <unordered_map>

// A file's name without its quotes or angle brackets, as it stands behind #include. One
// without any goes on to the text's end, or to the first white space when it `endsAtBlank`.
UT_String bareIncludeName(const char *text, bool endsAtBlank, bool &isAngled);

class cpp_IncludePath
{
public:
    // A copy of the known path (a negative number means the main one), with another "^"
    // text when one is given.
    explicit cpp_IncludePath(int pathId, const char *caretSubst = nullptr);

    void add(const char *dir);
    void addAll(const char *pathList); // the existing folders of a pattern

    // The path that a name leads to: an explicit one that can be read is taken as it is,
    // any other looked for in `nearFolder` (null means none, "" the root), then
    // along the folders. A name that is nowhere is its own path, which may be tried. False
    // when that was tried in vain.
    // REQUIRES: the name is not empty
    [[nodiscard]] bool find(const char *name, const char *nearFolder, UT_String &path);

    // Notes that the path which find() gave for these led to no file.
    void noteMissing(const char *name, const char *nearFolder);

private:
    bool lookUp(const char *name, const char *nearFolder, UT_String &path) const;

    std::unique_ptr<UT_PathSearch> myFolders;
    std::unordered_map<std::string, std::string> myFound; // by keyOf(); "" is nowhere
};
