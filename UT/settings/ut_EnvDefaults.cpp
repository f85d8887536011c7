#include "UT/settings/ut_EnvDefaults.h"

#include "UT/UT_Memory.h"
#include "UT/UT_String.h"
#include "UT/UT_TempDir.h"
#include "UT/settings/ut_EnvTables.h"
#include "UT/settings/ut_Users.h"

#include <cstring>

namespace
{
char *makeUser()
{
    UT_String name;
    return ut_makeUserDefault(ut_getLoginName(name) ? name.text() : nullptr);
}

char *makeHome()
{
    // For a process without a home, such as a daemon's child.
    return UTduplicate(UTgetTempDir());
}

char *makeTempDir()
{
    return UTduplicate("/tmp");
}

// The settings are not there yet, but the expansion of this text reads none: it has
// neither a '~' nor a modifier.
char *makeDesktopDir()
{
    UT_String dir("$HOME/Desktop");
    dir.substituteVariables();
    return UTduplicate(dir.text());
}

char *makeOs()
{
    return UTduplicate("Linux");
}

// In the order in which they are computed.
const struct {
    UT_StrControl setting;
    char *(*make)(); // malloc'd, kept for the life of the process
} COMPUTED[] = {
    {ENV_USER, makeUser},
    {ENV_HOME, makeHome},
    {ENV_VELDRIN_TEMP_DIR, makeTempDir},
    {ENV_VELDRIN_DESKTOP_DIR, makeDesktopDir},
    {ENV_VELDRIN_OS, makeOs},
};
} // namespace

void ut_computeDefaults()
{
    static bool isDone = false;
    if (isDone)
        return;
    isDone = true;
    for (const auto &row : COMPUTED)
        ut_theStrings[row.setting].standard = row.make();
}

char *ut_makeUserDefault(const char *loginName)
{
    char *name = UTduplicate(loginName != nullptr ? loginName : "nobody");
    for (char *at = name; (at = std::strchr(at, ' ')) != nullptr;)
        *at = '_';
    return name;
}
