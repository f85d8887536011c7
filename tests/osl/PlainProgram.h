// A random shader together with what it must print: variables, local ones, an array,
// conditions, loops with break and continue, functions that return early and write their
// arguments, exit().
#pragma once

#include "PlainExpression.h"

class PlainProgram
{
public:
    explicit PlainProgram(Random &random);
    ~PlainProgram();
    PlainProgram(const PlainProgram &) = delete;
    PlainProgram &operator=(const PlainProgram &) = delete;

    std::string text() const;             // the whole source
    std::string printedAt(float u) const; // by one point

private:
    enum Way { ON, BREAK, CONTINUE, EXIT }; // how a statement is left
    struct Statement;
    struct Function;
    struct Run;
    using Block = std::vector<Statement>;
    using Expression = std::unique_ptr<PlainExpression>;

    static Expression expression(Random &random);
    static Block block(Random &random, int depth, bool isInLoop);
    static Statement statement(Random &random, int depth, bool isInLoop);
    static std::string textOf(const Block &block, int depth);
    static std::string textOf(const Statement &statement, int depth);
    static std::string loopText(const Statement &statement, int depth);

    std::vector<Function> myFunctions;
    size_t myLasting = 0; // variables that are printed at the end
    Block myBody;
};
