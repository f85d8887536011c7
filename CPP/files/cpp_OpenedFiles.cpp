#include "CPP/files/cpp_OpenedFiles.h"

#include <climits>
#include <cstdlib>

void cpp_OpenedFiles::note(const char *path)
{
    if (myNames.addSymbol(path, nullptr))
        myPaths.append(path);
}

void cpp_OpenedFiles::keepOnce(const char *path)
{
    char real[PATH_MAX];
    if (realpath(path, real) != nullptr) // a file that is gone cannot come again
        myOnce.addSymbol(real, nullptr);
}

// Resolving a path costs calls, which most texts are spared.
bool cpp_OpenedFiles::isKept(const char *path) const
{
    char real[PATH_MAX];
    return myOnce.entries() > 0 && realpath(path, real) != nullptr && myOnce.findSymbol(real);
}
