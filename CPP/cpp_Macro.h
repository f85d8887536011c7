// A macro as it is stored: its parameter count and its compiled body.
//
// In the body of a macro with parameters, "#i#" stands for argument number i,
// from 0. A reference with one '#' in front becomes "#i#" in double quotes;
// "##" between a parameter and its neighbour is gone.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct cpp_Macro {
    enum Builtin : unsigned char { NONE, FILE_NAME, LINE_NUMBER, DATE, TIME };

    static constexpr int OBJECT_LIKE = -1;

    // A part of the body between marks, and the argument behind it.
    struct Piece {
        static constexpr size_t NO_ARGUMENT = static_cast<size_t>(-1);

        size_t begin;
        size_t length;
        size_t argument; // its number, or NO_ARGUMENT behind the last mark
    };

    // What only a macro with parameters has: most have none, and there are many.
    struct Parameters {
        std::vector<std::string> names; // as they were written
        std::vector<Piece> pieces;      // of the body
    };

    const char *myName = ""; // the table's
    std::string myBody;
    std::unique_ptr<const Parameters> myParameters; // null without any
    int myNumArgs = OBJECT_LIKE;                    // or the number of parameters
    Builtin myBuiltin = NONE;                       // one of those has no body
    bool isPlain = true; // the body has nothing that expansion would change

    // Fills a new macro from a definition as CPP_Manager::defineMacro takes it. Returns its
    // name, a part of that text. A bad name is empty, and so is its macro.
    std::string_view parse(const char *definition, bool commandLineForm);

    // The same from what stands behind the name of a macro without parameters, and in front
    // of further blanks if it `isPadded`.
    void parseBody(const char *text, const char *end, bool isPadded = false);

    bool isSameAs(const cpp_Macro &other) const;

    // "#define NAME(a,b) body", from which parse() reads the same macro.
    std::string toDefinition() const;
};
