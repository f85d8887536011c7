#include "UT/settings/ut_Users.h"

#include "UT/UT_String.h"

#include <pwd.h>
#include <unistd.h>

bool ut_getLoginName(UT_String &name)
{
    // The entry is the C library's own and lasts until the next look-up.
    const passwd *entry = getpwuid(geteuid());
    if (entry == nullptr || entry->pw_name == nullptr)
        return false;
    name.assignCopy(entry->pw_name);
    return true;
}

bool ut_getUserHome(UT_String &home, const char *user)
{
    const passwd *entry = getpwnam(user);
    if (entry == nullptr || entry->pw_dir == nullptr)
        return false;
    home.assignCopy(entry->pw_dir);
    return true;
}
