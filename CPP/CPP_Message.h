// What the preprocessor tells a person about a text, with the place: errors, and warnings
// where its rules lose text that other languages would keep.
//
// The output has diagnostics of its own, which stay as they are; CPP_Manager::setListener
// gives these beside them.
#pragma once

#include <functional>
#include <string>

struct CPP_Message {
    bool isError = true;
    const char *name = nullptr; // a warning's, one of CPP_WARNINGS
    std::string file;
    int line = 0;   // from 1; 0: before the first
    int column = 0; // from 1, in bytes; 0: unknown
    std::string text;
    std::string hint;   // what may help; often empty
    std::string source; // the line without its newline and comments, where it is known
};

using CPP_Listener = std::function<void(const CPP_Message &)>;

// The warnings' names, by the enumerators.
enum CPP_Warning {
    CPP_REDEFINED,
    CPP_UNCLOSED_COMMENT,
    CPP_SPACED_PASTE,
    CPP_VARIADIC,
    CPP_MISSING_BLANK,
    CPP_MACRO_VALUE,
    CPP_OPTION_NAME,
    CPP_NUM_WARNINGS
};
extern const struct CPP_WarningRow {
    const char *name;
    const char *what;
} CPP_WARNINGS[CPP_NUM_WARNINGS];

// The warning that an option's value looks like another option.
CPP_Message CPP_optionNameMessage(const std::string &option, const std::string &name);
