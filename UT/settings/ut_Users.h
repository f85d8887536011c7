// What the password database knows about users (POSIX getpwuid, getpwnam).
#pragma once

class UT_String;

// The login name of the effective user. False without an entry for it.
[[nodiscard]] bool ut_getLoginName(UT_String &name);

// The home folder of the user with that login name. False for an unknown one.
[[nodiscard]] bool ut_getUserHome(UT_String &home, const char *user);
