// A slow, obvious second version of the preprocessor's macros and conditions,
// to check the fast one against. It calls itself where things nest, so texts
// must be short.
#pragma once

#include "tests/support/PlainScanner.h"

#include <vector>

class PlainMacros
{
public:
    struct Macro {
        bool isBuiltin = false;
        int numArgs = -1;
        std::string body;
    };

    // True when CPP_Manager::defineMacro would warn. Bad names define nothing.
    bool define(const std::string &definition, bool commandLineForm);
    const Macro *find(const std::string &name) const;

    // Appends what CPP_Manager::expandLine would; false, and the message, when
    // that fails. The file is called "in".
    bool expand(const std::string &text, int depthLeft, std::string &result);

    // What evaluateCondition answers.
    int evaluate(const std::string &text) const;

    std::string furtherLines; // for argument lists, each with its newline
    int lineNumber = 0;

private:
    bool takeArguments(PlainScanner &in, std::vector<std::string> &arguments);
    bool takeArgument(PlainScanner &in, std::string &argument);
    bool skipSpaceOverLines(PlainScanner &in);
    bool takeLine(PlainScanner &in);

    std::map<std::string, Macro> myMacros{{"__FILE__", {true, -1, ""}},
                                          {"__LINE__", {true, -1, ""}}};
};
