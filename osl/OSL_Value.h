// A value that goes into a shader or comes out of its description: of a parameter, an
// attribute, or a piece of metadata.
#pragma once

#include "osl/syntax/osl_Type.h"

#include <string>
#include <vector>

struct OSL_Value {
    osl_Type type; // without structs; for an array with its length

    // The numbers of all components of all elements, one after another; of the three
    // only the one that the type is made of is filled.
    std::vector<int> ints;
    std::vector<float> floats;
    std::vector<std::string> strings;

    static OSL_Value ofInt(int value);
    static OSL_Value ofFloat(float value);
    static OSL_Value ofString(std::string value);

    // Changes the type as the language assigns values (a float to a colour, an int to a
    // float ...), to an array from one of at most its length, and to one of any length.
    // False, and unchanged, when the language has no such conversion.
    [[nodiscard]] bool convertTo(const osl_Type &wanted);

    // As source: 1, 0.5, "wood.png", {1, 2, 3}.
    std::string text() const;
};
