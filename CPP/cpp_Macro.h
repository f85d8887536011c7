// A macro as it is stored: its name, its parameter count and its compiled body.
//
// In the body of a macro with parameters, "#i#" stands for argument number i,
// from 0. A reference with one '#' in front becomes "#i#" in double quotes;
// "##" between a parameter and its neighbour is gone.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct cpp_Macro {
    enum Builtin { NONE, FILE_NAME, LINE_NUMBER, DATE, TIME };

    static constexpr int OBJECT_LIKE = -1;

    // A part of the body between marks, and the argument behind it.
    struct Piece {
        static constexpr size_t NO_ARGUMENT = static_cast<size_t>(-1);

        size_t begin;
        size_t length;
        size_t argument; // its number, or NO_ARGUMENT behind the last mark
    };

    std::string myName;
    std::string myBody;
    std::vector<std::string> myParameters; // their names, as they were written
    std::vector<Piece> myPieces;           // of the body of a macro with parameters
    int myNumArgs = OBJECT_LIKE;           // or the number of parameters
    Builtin myBuiltin = NONE;              // one of those has neither name nor body
    bool isPlain = true;                   // the body has nothing that expansion would change

    // Reads a definition as CPP_Manager::defineMacro takes it. A bad name gives an
    // empty macro under a name that no text can refer to.
    static cpp_Macro *parse(const char *definition, bool commandLineForm);
    static cpp_Macro *makeBuiltin(Builtin builtin);

    bool isSameAs(const cpp_Macro &other) const;

    // "#define NAME(a,b) body", from which parse() makes the same macro.
    std::string toDefinition() const;
};
