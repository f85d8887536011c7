// A random expression of the language together with what it must give: the plain twin
// of the machine, which walks the tree for one point after the other.
#pragma once

#include "tests/support/Random.h"

#include <memory>
#include <string>

class PlainExpression
{
public:
    PlainExpression(Random &random, int depth);

    std::string text() const; // as source, of u
    float at(float u) const;  // its value

private:
    struct Row;
    static const Row ROWS[];

    const Row *myRow;
    float myNumber = 0;
    std::unique_ptr<PlainExpression> myA, myB, myC;
};
