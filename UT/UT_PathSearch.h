// A search path: the folders in which a kind of file is looked for, in order.
//
// A path is written as a pattern, a list of elements between ';' or ':' (empty ones
// vanish, and so do slashes and backslashes at an element's end, but for its first
// character). In a pattern
//   element  names a folder; $NAME, ~ and the rest of UTexpandVariables work in it
//   &        alone, stands for the default pattern's elements (in which a further
//            "&" is ordinary)
//   @        alone or in front of '/': the element is taken once for each usable
//            folder of the base path, another known path. Ordinary text where there
//            is no base, as on the main path.
//   ^        the first one in an element becomes the path's own text, such as
//            "Surface" for surface shaders
//   =        the first one becomes the value of $VIP, the scene's folder
// The pattern comes from the path's setting, or is the default pattern when that is
// not set. So with "/site;&" a site puts a folder before the standard ones.
//
// The main path's default is built from what is set of $VIP, $HOME/veldrin9.0 (the
// user's package folder), $VSITE/veldrin9.0 and $VDX/veldrin, in this order.
//
// Look-ups only visit usable folders, those that existed and could be read and
// searched when the path was built (UTisDirectory). The first match wins. An explicit
// name ("/x", "./x", "../x") is taken as it is and never searched. A look-up costs one
// system call for each folder until the first hit.
//
// Not locked: use a known path on the main thread first.
#pragma once

#include "UT/UT_KnownPath.h"
#include "UT/UT_String.h"
#include "UT/UT_StringList.h"

class UT_PathSearch
{
public:
    // What the result becomes when nothing is found: unset, or the name as given.
    enum WhenMissing { CLEAR_RESULT, KEEP_NAME };

    // A negative `envIndex` stands for no setting, a number outside the known paths
    // for no base. For ENV_VELDRIN_DSO_PATH "^" always is the platform's tag. The
    // first construction in the process makes the user's package folder.
    UT_PathSearch(const char *defaultPath, int envIndex, const char *caretSubst, int baseKind);
    UT_PathSearch(const UT_PathSearch &other) = default;
    UT_PathSearch &operator=(const UT_PathSearch &other) = delete;

    // The one shared instance, built on first use and kept for good; or a new copy
    // of it, which the caller deletes.
    static UT_PathSearch &getInstance(UT_KnownPath path);
    [[nodiscard]] static UT_PathSearch *getNewInstance(UT_KnownPath path);

    // Builds with other parts (null or negative: as before). The folders found are
    // appended to those already held.
    void reconfigure(const char *defaultPath, int envIndex, const char *caretSubst, int baseKind);

    // Builds anew from the same parts and the current settings; for each known path
    // that exists, from the last to the first. A path takes its base's folders as
    // they are at that moment, so after a change of the main path the others follow
    // at their next rebuild.
    void rebuild();
    static void rebuildAll();

    // Appends a folder, as it is. Returns the length of its name.
    int addDirectory(const char *dir);

    // ---- Look-ups: "folder/name" for the folders in order ----------------
    // A file is found when it may be read, a folder when UTisDirectory accepts it.

    bool findFile(UT_String &result, const char *name, WhenMissing = CLEAR_RESULT) const;
    bool findDirectory(UT_String &result, const char *name, WhenMissing = CLEAR_RESULT) const;

    // Every match, appended to the list; their number.
    int findAllFiles(const char *name, UT_StringList &list) const;
    int findAllDirectories(const char *name, UT_StringList &list) const;

    // The earliest folder that has any of the names, and there the earliest name;
    // an explicit name counts as being in every folder. Else the result is unset.
    bool findFileFromList(UT_String &result, const UT_StringList &names) const;
    bool findDirectoryFromList(UT_String &result, const UT_StringList &names) const;

    // Appends the names in all folders (in their `subdir`, if given) whose text from
    // the last '.' on is `extension`, in any case; with their folder in front when
    // `fullPath`. Returns the list's entries.
    int matchAllFiles(const char *extension, bool fullPath, UT_StringList &list,
                      const char *subdir = nullptr) const;

    // Takes the folder off a path that lies in one of the known path's usable
    // folders: the last such folder in order, or the longest. False, and no change,
    // when there is none.
    static bool stripSearchPrefix(UT_String &path, UT_KnownPath known);
    static bool stripLongestPrefix(UT_String &path, UT_KnownPath known);

    // The usable folders; all of the pattern's, usable or not; and the latter for
    // display, with a leading $HOME, $VIP, $JOB, $VSITE, $VELDRIN_TEMP_DIR or $VDX
    // written so. The longest name in the second.
    const UT_StringList &getDirs() const { return myDirs; }
    const UT_StringList &getAllDirs() const { return myAllDirs; }
    const UT_StringList &getAbbreviatedDirs() const { return myAbbreviatedDirs; }
    int getMaxNameLength() const { return myMaxNameLength; }

    // The user's package folder, $HOME/veldrin9.0.
    static void getUserPackageDir(UT_String &result);

private:
    using Test = bool (*)(const char *path);

    void build();
    void abbreviateAll();
    void addPattern(const char *pattern, bool spliceDefault);
    void addMainDefault();
    void addElement(char *element);
    void addSubstituted(const char *element);
    int appendDirectory(const char *dir);
    bool isMainPath() const { return myEnvIndex == ENV_VELDRIN_PATH; }
    const UT_PathSearch *getBase() const; // null without one

    bool findFirst(UT_String &result, const char *name, WhenMissing, Test) const;
    int findAll(const char *name, UT_StringList &list, Test, bool firstOnly) const;
    bool findFromList(UT_String &result, const UT_StringList &names, Test) const;

    int myEnvIndex;
    UT_String myDefaultPath;
    UT_String myCaretSubst;
    int myBaseKind;
    int myMaxNameLength;
    UT_StringList myDirs;
    UT_StringList myAllDirs;
    UT_StringList myAbbreviatedDirs;
};
