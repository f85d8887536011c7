#include "osl/OSL_Value.h"

#include "osl/lib/osl_Format.h"

#include <algorithm>

OSL_Value OSL_Value::ofInt(int value)
{
    OSL_Value made;
    made.type = osl_Type::INT;
    made.ints = {value};
    return made;
}

OSL_Value OSL_Value::ofFloat(float value)
{
    OSL_Value made;
    made.type = osl_Type::FLOAT;
    made.floats = {value};
    return made;
}

OSL_Value OSL_Value::ofString(std::string value)
{
    OSL_Value made;
    made.type = osl_Type::STRING;
    made.strings = {std::move(value)};
    return made;
}

bool OSL_Value::convertTo(const osl_Type &wanted)
{
    if (type == wanted)
        return true;
    const osl_Type from = type.element();
    const osl_Type to = wanted.element();
    const bool isShorter =
        wanted.array == osl_Type::UNSIZED ? type.isArray() : type.array <= wanted.array;
    if (wanted.isArray() != type.isArray() || !isShorter || wanted.isClosure || from.isClosure)
        return false;
    if (from != to && !osl_isAssignable(to, from))
        return false;
    if (to.isFloatBased() && from.isInt()) {
        for (const int number : ints)
            floats.push_back(static_cast<float>(number));
        ints.clear();
    }
    if (to.isFloatBased() && from.components() == 1 && to.components() > 1) {
        std::vector<float> all;
        for (const float number : floats) {
            for (int c = 0; c < to.components(); ++c)
                all.push_back(to.isTriple() || c % 5 == 0 ? number : 0);
        }
        floats = std::move(all);
    }
    const int length = wanted.array == osl_Type::UNSIZED ? type.array : wanted.array;
    type = to.arrayOf(length);
    const auto size = static_cast<size_t>(type.components() * std::max(length, 1));
    if (type.base == osl_Type::INT)
        ints.resize(size);
    else if (type.base == osl_Type::STRING)
        strings.resize(size);
    else
        floats.resize(size);
    return true;
}

std::string OSL_Value::text() const
{
    std::vector<std::string> parts;
    for (const int number : ints)
        parts.push_back(std::to_string(number));
    for (const float number : floats)
        parts.push_back(osl_floatText(number));
    for (const std::string &string : strings)
        parts.push_back("\"" + string + "\"");
    std::string out;
    const auto components = static_cast<size_t>(std::max(type.components(), 1));
    for (size_t i = 0; i < parts.size(); ++i) {
        const bool isFirst = components > 1 && i % components == 0;
        out += i == 0 ? "" : ", ";
        out += isFirst ? "(" : "";
        out += parts[i];
        out += components > 1 && i % components == components - 1 ? ")" : "";
    }
    return type.isArray() ? "{" + out + "}" : out;
}
