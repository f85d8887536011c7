// Makes the program of an osl_Regex from its text, by descent through
//
//   choice   = sequence { "|" sequence }
//   sequence = { atom [ "*" | "+" | "?" | "{m,n}" ] [ "?" ] }
//   atom     = character | set | "(" choice ")" | edge
//
// Every part gives a piece of program that does not know where it will stand, so
// that repeats are copies.
#pragma once

#include "osl/lib/osl_Regex.h"

class osl_RegexCompiler
{
public:
    osl_RegexCompiler(std::string_view text, osl_Regex &regex);

    // Fills the expression in, or sets its error.
    void compile();

private:
    using Code = osl_Regex::Code;
    using Set = osl_Regex::Set;
    struct Repeat {
        int least;
        int most; // -1: any number
    };

    Code choice();
    Code sequence();
    Code atom();
    Code group();
    Code escape();
    Code bracket();
    Code oneOf(const Set &set);
    Code edge(osl_Regex::Op op);

    bool takeRepeat(Repeat &repeat);
    bool takeBraces(Repeat &repeat);
    bool takeNumber(int &number);
    Code repeated(const Code &code, const Repeat &repeat, bool isLazy);

    bool takeNamedSet(Set &set);
    bool takeSetItem(Set &set);
    int takeSetCharacter();

    bool isAtEnd() const { return myAt >= myText.size(); }
    char next() const { return isAtEnd() ? '\0' : myText[myAt]; }
    bool take(std::string_view word);
    void append(Code &to, const Code &more);
    void fail(const char *message);
    bool hasFailed() const { return !myRegex.myError.empty(); }

    std::string_view myText;
    size_t myAt = 0;
    int myDepth = 0;
    osl_Regex &myRegex;
};
