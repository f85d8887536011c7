#include "UT/UT_PathSearch.h"

#include "UT/UT_EnvControl.h"
#include "UT/UT_Environment.h"
#include "UT/UT_FileUtil.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_WordList.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr char VERSION[] = "9.0";

UT_PathSearch *theShared[UT_NUM_KNOWN_PATHS]; // null until first use, then kept
bool isUserPackageDirMade = false;

const char *setting(int index)
{
    if (index < 0 || index >= UT_NUM_STR_CONTROLS)
        return nullptr;
    return UT_EnvControl::instance().getString(static_cast<UT_StrControl>(index));
}

// Folders that are shown as variables; the first of equally long ones is taken.
constexpr int FROM_ENVIRONMENT = -1;
const struct {
    const char *name;
    int setting;
} ABBREVIATIONS[] = {
    {"HOME", ENV_HOME},
    {"VIP", FROM_ENVIRONMENT},
    {"JOB", FROM_ENVIRONMENT},
    {"VSITE", FROM_ENVIRONMENT},
    {"VELDRIN_TEMP_DIR", ENV_VELDRIN_TEMP_DIR},
    {"VDX", ENV_VDX},
};

// The length of `dir` when `path` is it or lies in it, else -1.
int prefixLength(const char *path, const char *dir)
{
    const size_t length = std::strlen(dir);
    if (std::strncmp(path, dir, length) != 0 || (path[length] != '/' && path[length] != '\0'))
        return -1;
    return static_cast<int>(length);
}

// `dir` with the longest known folder in front written as its variable.
void abbreviate(UT_ScratchBuffer &out, const char *dir)
{
    int longest = 0;
    const char *name = nullptr;
    for (const auto &row : ABBREVIATIONS) {
        const bool isSetting = row.setting != FROM_ENVIRONMENT;
        const char *value = isSetting ? setting(row.setting) : UTgetenv(row.name);
        const int length = value != nullptr ? prefixLength(dir, value) : -1;
        if (length > longest) {
            longest = length;
            name = row.name;
        }
    }
    out.clear();
    if (name != nullptr)
        out.append('$');
    out.append(name);
    out.append(dir + longest);
}

// Slashes at the end go, but never the first character.
void trimSlashes(char *element)
{
    size_t length = std::strlen(element);
    while (length > 1 && std::strchr("/\\", element[length - 1]) != nullptr)
        length--;
    element[length] = '\0';
}

bool isAtBase(const char *element)
{
    return element[0] == '@' && (element[1] == '\0' || element[1] == '/');
}

// Takes `length` characters and the slash behind them off the path.
bool stripPrefix(UT_String &path, int length)
{
    if (length < 0)
        return false;
    const char *rest = path.text() + length;
    path.assignCopy(*rest == '/' ? rest + 1 : rest);
    return true;
}

// An empty HOME would stand for the root of the file system.
bool hasHome()
{
    return *setting(ENV_HOME) != '\0';
}
} // namespace

UT_PathSearch::UT_PathSearch(const char *defaultPath, int envIndex, const char *caretSubst,
                             int baseKind)
    : myEnvIndex(envIndex), myDefaultPath(UT_String::ALWAYS_DEEP, defaultPath),
      myCaretSubst(UT_String::ALWAYS_DEEP,
                   envIndex == ENV_VELDRIN_DSO_PATH ? UT_PLATFORM_TAG : caretSubst),
      myBaseKind(baseKind), myMaxNameLength(0)
{
    // Before the lists, so that a user's first run finds the folder usable.
    if (!isUserPackageDirMade) {
        isUserPackageDirMade = true;
        UT_String dir;
        getUserPackageDir(dir);
        if (hasHome())
            (void)UTmakeDirs(dir, 0777); // the user may have no writable home
    }
    build();
}

UT_PathSearch &UT_PathSearch::getInstance(UT_KnownPath path)
{
    const UT_KnownPathRow &row = UTgetKnownPath(path);
    if (theShared[path] == nullptr)
        theShared[path] =
            new UT_PathSearch(row.pattern, row.variable, row.caretSubst, row.baseKind);
    return *theShared[path];
}

UT_PathSearch *UT_PathSearch::getNewInstance(UT_KnownPath path)
{
    return new UT_PathSearch(getInstance(path));
}

void UT_PathSearch::reconfigure(const char *defaultPath, int envIndex, const char *caretSubst,
                                int baseKind)
{
    if (defaultPath != nullptr)
        myDefaultPath = defaultPath;
    if (envIndex >= 0)
        myEnvIndex = envIndex;
    if (caretSubst != nullptr)
        myCaretSubst = caretSubst;
    if (baseKind >= 0)
        myBaseKind = baseKind;
    build();
}

void UT_PathSearch::rebuild()
{
    myDirs.clear();
    myAllDirs.clear();
    myMaxNameLength = 0;
    build();
}

// From the last to the first: bases come after the paths that build on them.
void UT_PathSearch::rebuildAll()
{
    for (int path = UT_NUM_KNOWN_PATHS - 1; path >= 0; path--)
        if (theShared[path] != nullptr)
            theShared[path]->rebuild();
}

// A folder from outside; one that was built gets its short form in abbreviateAll().
int UT_PathSearch::addDirectory(const char *dir)
{
    UT_ScratchBuffer abbreviated;
    abbreviate(abbreviated, dir);
    myAbbreviatedDirs.append(abbreviated.buffer());
    return appendDirectory(dir);
}

void UT_PathSearch::getUserPackageDir(UT_String &result)
{
    result.sprintf("%s/veldrin%s", setting(ENV_HOME), VERSION);
}

void UT_PathSearch::build()
{
    getBase(); // built before this one, whether "@" is used or not
    const char *value = setting(myEnvIndex);
    if (value != nullptr)
        addPattern(value, true);
    else if (isMainPath())
        addMainDefault();
    else
        addPattern(myDefaultPath, true);
    abbreviateAll();
}

void UT_PathSearch::abbreviateAll()
{
    UT_ScratchBuffer abbreviated;
    myAbbreviatedDirs.clear();
    for (int i = 0; i < myAllDirs.entries(); i++) {
        abbreviate(abbreviated, myAllDirs(i));
        myAbbreviatedDirs.append(abbreviated.buffer());
    }
}

void UT_PathSearch::addPattern(const char *pattern, bool spliceDefault)
{
    UT_String text(pattern, true);
    UT_WordList elements;
    const int count = text.splitAt(elements, ";:");
    for (int i = 0; i < count; i++) {
        char *element = elements.getArg(i);
        if (!spliceDefault || std::strcmp(element, "&") != 0)
            addElement(element);
        else if (isMainPath())
            addMainDefault();
        else
            addPattern(myDefaultPath, false);
    }
}

// From the special to the general: scene, user, site, installation.
void UT_PathSearch::addMainDefault()
{
    const struct {
        const char *value; // null when it is not set
        const char *behind;
        const char *version;
    } places[] = {
        {UTgetenv("VIP"), "", ""},
        {hasHome() ? setting(ENV_HOME) : nullptr, "/veldrin", VERSION},
        {UTgetenv("VSITE"), "/veldrin", VERSION},
        {setting(ENV_VDX), "/veldrin", ""},
    };
    UT_String dir;
    for (const auto &place : places) {
        if (place.value == nullptr)
            continue;
        dir.sprintf("%s%s%s", place.value, place.behind, place.version);
        appendDirectory(dir);
    }
}

// Element by element, not folder by folder: "@/a;@/b" gives all the a before the b.
void UT_PathSearch::addElement(char *element)
{
    trimSlashes(element);
    const UT_PathSearch *base = getBase();
    if (base == nullptr || !isAtBase(element))
        return addSubstituted(element);
    UT_ScratchBuffer combined;
    for (int i = 0; i < base->myDirs.entries(); i++) {
        combined.clear();
        combined.append(base->myDirs(i));
        combined.append(element + 1);
        addSubstituted(combined.buffer());
    }
}

// The base's folders pass here too, behind "@": what is special in an element is so
// in their names.
void UT_PathSearch::addSubstituted(const char *element)
{
    UT_String dir(element, true);
    const bool hasCaret = !isMainPath() && myCaretSubst.isNonEmpty();
    const char *scene = UTgetenv("VIP");
    dir.replaceText("^", hasCaret ? myCaretSubst.text() : "", false);
    dir.replaceText("=", scene != nullptr ? scene : "", false);
    dir.substituteVariables();
    appendDirectory(dir);
}

int UT_PathSearch::appendDirectory(const char *dir)
{
    const int length = static_cast<int>(std::strlen(dir));
    myAllDirs.append(dir);
    if (UTisDirectory(dir))
        myDirs.append(dir);
    myMaxNameLength = std::max(myMaxNameLength, length);
    return length;
}

const UT_PathSearch *UT_PathSearch::getBase() const
{
    if (isMainPath() || myBaseKind < 0 || myBaseKind >= UT_NUM_KNOWN_PATHS)
        return nullptr;
    // Ends, as a known path only builds on ones in front of it.
    return &getInstance(static_cast<UT_KnownPath>(myBaseKind));
}

bool UT_PathSearch::stripSearchPrefix(UT_String &path, UT_KnownPath known)
{
    const UT_StringList &dirs = getInstance(known).myDirs;
    if (path.text() == nullptr)
        return false;
    for (int i = dirs.entries() - 1; i >= 0; i--)
        if (stripPrefix(path, prefixLength(path, dirs(i))))
            return true;
    return false;
}

bool UT_PathSearch::stripLongestPrefix(UT_String &path, UT_KnownPath known)
{
    const UT_StringList &dirs = getInstance(known).myDirs;
    if (path.text() == nullptr)
        return false;
    int longest = -1;
    for (int i = 0; i < dirs.entries(); i++)
        longest = std::max(longest, prefixLength(path, dirs(i)));
    return stripPrefix(path, longest);
}
