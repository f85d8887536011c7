// File names and folders: what the search paths ask of the file system.
//
// These are thin layers over POSIX stat, access, mkdir, opendir and chdir. A null
// path is never anything: it gives false.
#pragma once

#include <sys/types.h>

class UT_String;
class UT_StringList;

// "/...", "./..." or "../...": a name that is used as it is and never searched.
bool UTisExplicitPath(const char *name);

// Begins with "/", "op:" or an added prefix, once any "file:" in front is taken away.
bool UTisAbsolutePath(const char *name);

// From now on names that begin with `prefix` are absolute: for programs with name
// spaces of their own. Cannot be undone. REQUIRES: prefix != nullptr
void UTaddAbsolutePrefix(const char *prefix);

// May be read by this process's real user (access, R_OK); folders count.
bool UTisReadable(const char *path);

// Names a folder, perhaps through symbolic links, that may be read and searched.
// A path that is empty or ends with ':' is looked at with a "/" behind it.
bool UTisDirectory(const char *path);

// Makes the folder with `mode` (before the umask); true as well for a folder that
// is there already.
[[nodiscard]] bool UTmakeDir(const char *path, mode_t mode);

// The same with the missing folders above it. Stops at the first failure; what was
// made until then stays.
[[nodiscard]] bool UTmakeDirs(const char *path, mode_t mode);

// Appends the names in a folder, in its own order, "." and ".." included. False
// when it cannot be opened.
[[nodiscard]] bool UTlistDirectory(const char *path, UT_StringList &names);

// The path from the root. Symbolic links, "." and ".." in front of the last slash
// are resolved by going there for a moment, so no other thread may use relative
// names meanwhile. False, and the result unchanged, when that folder cannot be
// entered.
[[nodiscard]] bool UTmakeAbsolutePath(const char *path, UT_String &result);
