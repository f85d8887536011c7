// The expressions of #if and #elif, as C has them (C17 6.10.1): whole numbers of 64
// bits, ! ~ - +, the binary operators with C's precedence, ?: and parentheses. Names
// that are left count as 0.
#pragma once

#include "osl/text/osl_Token.h"

#include <vector>

class osl_Condition
{
public:
    // Of tokens that are expanded, with every "defined" replaced.
    explicit osl_Condition(const std::vector<osl_Token> &tokens) : myTokens(tokens) {}

    // 1, 0, or -1 where it is no expression.
    [[nodiscard]] int value();

private:
    static constexpr int MAX_DEPTH = 200;

    int punct() const { return myNext < myTokens.size() ? myTokens[myNext].punct : 0; }
    bool accept(const char *punct);
    int64_t fail();
    int64_t takeTernary();
    int64_t takeBinary(int precedence);
    int64_t takeUnary();
    int64_t takeOperand();
    int64_t takeNumber(std::string_view text);
    int64_t apply(int punct, int64_t left, int64_t right);

    const std::vector<osl_Token> &myTokens;
    size_t myNext = 0;
    int myDepth = 0;
    int myUnseen = 0; // inside what && || ?: do not look at
    bool isGood = true;
};
