#include "vaskel/osl/vk_OslValues.h"

#include "vaskel/params/vk_ColourNames.h"
#include "vaskel/params/vk_Nearest.h"

#include <cctype>
#include <cfloat>
#include <cmath>

namespace
{
// Reads the numbers and words of one value.
class Reader
{
public:
    Reader(const OSL_Parameter &parameter, const std::string &owner, const vk_Words &words,
           std::size_t &at, std::string &error)
        : myParameter(parameter), myWhat(parameter.name + " of " + owner), myWords(words), myAt(at),
          myError(error), myLeast(limit("min", -FLT_MAX)), myMost(limit("max", FLT_MAX))
    {
    }

    bool take(OSL_Value &value)
    {
        value.type = myParameter.type;
        const osl_Type element = value.type.element();
        if (!value.type.isArray())
            // Only a colour by itself may be a grey or a name.
            return element.base == osl_Type::COLOR ? takeColour(value)
                                                   : takeElements(element.components(), value);
        // Brackets are a must only where nothing else tells how many there are.
        // A word may be empty, as '' is; its first character is then a zero.
        if (myAt < myWords.size() && myWords[myAt][0] == '[')
            return takeBrackets(value);
        if (value.type.array == osl_Type::UNSIZED)
            return wrong("values in brackets");
        return takeElements(element.components() * value.type.array, value);
    }

private:
    // The language has no ranges of its own; shaders note them beside parameters for editors.
    float limit(const char *name, float otherwise) const
    {
        for (const OSL_Metadatum &item : myParameter.metadata) {
            const osl_Type &type = item.value.type;
            if (item.name == name && type.isScalar())
                // Authors write 0 for 0.0: what the limit's own type is says nothing about the
                // parameter.
                return type.isInt() ? static_cast<float>(item.value.ints[0]) : item.value.floats[0];
        }
        return otherwise;
    }

    bool wrong(const std::string &expected)
    {
        // Still at the word at fault: none is stepped over before it is taken.
        const bool isEnd = myAt >= myWords.size();
        myError = myWhat + " expected " + expected + ", found " +
                  (isEnd ? "the end of the line" : vk_quoted(myWords[myAt]));
        return false;
    }

    bool takeColour(OSL_Value &value)
    {
        const auto isNumber = [&](std::size_t i) {
            return i < myWords.size() && myWords[i].find_first_of("0123456789+-.") == 0;
        };
        if (myAt < myWords.size() && std::isalpha(static_cast<unsigned char>(myWords[myAt][0])))
            return takeName(value);
        // One number is a grey, unless a second one follows.
        if (isNumber(myAt + 1))
            return takeElements(3, value);
        if (!takeElements(1, value))
            return false;
        value.floats.assign(3, value.floats[0]);
        return true;
    }

    bool takeName(OSL_Value &value)
    {
        const vk_Colour *const colour = vk_findColour(myWords[myAt]);
        if (colour == nullptr)
            return wrong("three numbers, one for a grey, or a colour's name (nearest is " +
                         vk_quoted(vk_nearest(myWords[myAt], vk_colourNames())) + ")");
        value.floats = {colour->x, colour->y, colour->z};
        ++myAt;
        return true;
    }

    bool takeElements(int count, OSL_Value &value)
    {
        for (int i = 0; i < count; ++i, ++myAt) {
            if (myAt >= myWords.size())
                return wrong(count == 1 ? "a value" : std::to_string(count) + " values");
            if (!takeElement(myWords[myAt], value))
                return false;
        }
        return true;
    }

    bool takeElement(const std::string &word, OSL_Value &value)
    {
        // Any word is a text, a number as well.
        if (value.type.base == osl_Type::STRING) {
            value.strings.push_back(word);
            return true;
        }
        float number = 0;
        if (!vk_parseNumber(word, myWhat, myLeast, myMost, number, myError))
            return false;
        if (value.type.base != osl_Type::INT) {
            value.floats.push_back(number);
            return true;
        }
        // From 2^31 on it would not fit an int. Beyond 2^24 floats hold only some of the whole
        // numbers: the nearest counts.
        if (std::floor(number) != number || std::abs(number) >= 0x1p31f)
            return wrong("a whole number");
        value.ints.push_back(static_cast<int>(number));
        return true;
    }

    // The bracket may touch the first and the last element.
    bool takeBrackets(OSL_Value &value)
    {
        bool isOpen = true;
        for (bool isFirst = true; isOpen; isFirst = false, ++myAt) {
            if (myAt >= myWords.size())
                return wrong("a bracket that closes");
            std::string word = myWords[myAt].substr(isFirst ? 1 : 0);
            // So a text in brackets cannot end with one.
            if (!word.empty() && word.back() == ']') {
                isOpen = false;
                word.pop_back();
            }
            if (!word.empty() && !takeElement(word, value))
                return false;
        }
        // Only one of the three is filled.
        const std::size_t all = value.ints.size() + value.floats.size() + value.strings.size();
        const auto size = static_cast<std::size_t>(value.type.components());
        const int length = static_cast<int>(all / size);
        const int wanted = value.type.array == osl_Type::UNSIZED ? length : value.type.array;
        // An array of points is counted in points, not in floats.
        if (all % size == 0 && length > 0 && length == wanted) {
            // An array without a length of its own gets that of its value.
            value.type.array = length;
            return true;
        }
        myError = myWhat + " expected " + std::to_string(size) + " numbers for each element" +
                  (wanted != length ? " and " + std::to_string(wanted) + " elements" : "") +
                  ", found " + std::to_string(all);
        return false;
    }

    const OSL_Parameter &myParameter;
    const std::string myWhat;
    const vk_Words &myWords;
    std::size_t &myAt;
    std::string &myError;
    const float myLeast, myMost;
};
} // namespace

bool vk_takeOslValue(const OSL_Parameter &parameter, const std::string &owner,
                     const vk_Words &words, std::size_t &at, OSL_Value &value, std::string &error)
{
    return Reader(parameter, owner, words, at, error).take(value);
}
