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

    // Keeps a message until flush() prints those that came since the last one. In between
    // goes what the preprocessor itself has to say of them, a line of its output.
    void show(const CPP_Message &message);
    void showDiagnostic(std::string line);
    void flush();

    bool hasFailed() const { return isFailed; } // an error, or a warning that counts as one

    // The warnings, a line each, for the help, whose second column begins there.
    static constexpr size_t HELP_COLUMN = 19;
    static std::string list();

private:
    void print(std::string line);

    std::set<std::string> myUnwanted; // names of warnings
    std::string myText;               // not yet printed
    bool isSilent = false;
    bool areErrors = false;
    bool isFailed = false;
};
