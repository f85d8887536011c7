// Messages on standard error, in the form that editors follow:
//
//     main.in:3:7: error: Unable to include "no.h"
//     #include "no.h"
//              ^
//     hint: ...
#pragma once

#include "CPP/CPP_Message.h"

#include <set>
#include <string>

class vcpp_Messages
{
public:
    // Takes what stands behind -W: a warning's name, "error", "no-" in front of either.
    // False for anything else.
    bool select(const std::string &word);
    void silence() { isSilent = true; } // all warnings

    // Prints a message, behind the text in front of it where both go to one place.
    void show(const CPP_Message &message);

    bool hasFailed() const { return isFailed; } // an error, or a warning that counts as one

    // The warnings, a line each, for the help.
    static std::string list();

private:
    std::set<std::string> myUnwanted; // names of warnings
    bool isSilent = false;
    bool areErrors = false;
    bool isFailed = false;
};
