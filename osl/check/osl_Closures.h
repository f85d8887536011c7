// The closures of the language: their names, parameters and keywords.
//
// A row holds parameters in the form "letter name, ..." with the letters of
// osl_Builtins.h, then keywords that a call may add in the same form; a keyword
// that a call leaves out is 0, "" or black. Overloads of a name are rows of their own.
#pragma once

#include "osl/check/osl_Symbol.h"

#include <memory>

struct osl_ClosureParameter {
    std::string name;
    osl_Type type;
    bool isKeyword = false;
    int at = 0; // where its words begin
};

struct osl_ClosureRow {
    std::string name;
    std::vector<osl_ClosureParameter> parameters;
    int words = 0; // of all parameters
    bool isKnown = true;
};

// Appends the overloads of a closure; nothing for other names.
void osl_findClosures(std::string_view name, std::deque<osl_Function> &functions);

// For a closure that only a user's header declares.
std::unique_ptr<osl_ClosureRow> osl_unknownClosure(const osl_Function &function);
