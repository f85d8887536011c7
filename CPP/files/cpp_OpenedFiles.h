// The files that a manager has opened: what its output depends on, and what it must not open
// again.
#pragma once

#include "UT/UT_StringList.h"
#include "UT/UT_SymbolTable.h"

class cpp_OpenedFiles
{
public:
    void note(const char *path); // each path counts once

    // In the order of first opening, as they were opened.
    const UT_StringList &paths() const { return myPaths; }

    // "#pragma once" in a file, under whatever name it is opened later.
    void keepOnce(const char *path);
    bool isKept(const char *path) const;

private:
    UT_StringList myPaths;
    UT_SymbolTable myNames; // the same, to find them; without values
    UT_SymbolTable myOnce;  // real paths, without values
};
