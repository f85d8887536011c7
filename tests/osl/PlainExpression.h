// A random expression of the language together with what it must give: the plain twin
// of the machine, which walks the tree for one point after the other.
#pragma once

#include "tests/support/Random.h"

#include <memory>
#include <string>
#include <vector>

class PlainExpression
{
public:
    // Of variables with these names.
    PlainExpression(Random &random, int depth, const std::vector<std::string> &names);

    std::string text() const;            // as source
    float at(const float *values) const; // its value, where the variables have these

private:
    struct Row;
    static const Row ROWS[];

    const Row *myRow;
    float myNumber = 0;
    std::string myName; // "" for a number
    size_t myVariable = 0;
    std::unique_ptr<PlainExpression> myA, myB, myC;
};
