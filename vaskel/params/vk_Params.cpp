#include "vaskel/params/vk_Params.h"

#include "vaskel/params/vk_ColourNames.h"
#include "vaskel/params/vk_Nearest.h"

#include <cctype>
#include <charconv>
#include <cstdio>

namespace
{
std::string unknownParam(vk_ParamList &list, const char *owner, const std::string &word)
{
    std::vector<std::string_view> names;
    // All of them: a shader has a handful, and the list is the quickest manual.
    std::string all;
    for (const vk_Param &param : list) {
        all += (all.empty() ? "" : ", ") + std::string(param.name);
        names.push_back(param.name);
    }
    const std::string unknown = std::string(owner) + " has no parameter " + vk_quoted(word);
    if (names.empty())
        return unknown + "; expected none";
    return unknown + "; expected " + all + "; nearest is " + vk_quoted(vk_nearest(word, names));
}

// A colour given by one number is a grey: what follows is then no number.
bool isGrey(const vk_Param &param, const vk_Words &words, std::size_t at)
{
    if (param.kind != VK_COLOUR || at >= words.size())
        return false;
    // The next word's first character decides: .5 .5 is a colour that lacks a number, not a grey in
    // front of a parameter of that name.
    const bool last = at + 1 == words.size();
    return last || words[at + 1].find_first_of("0123456789+-.") != 0;
}

// No number begins with a letter: «nan» and «inf» are none here.
bool isName(const std::string &word)
{
    // The cast, as isalpha() of a char below 0, which UTF-8 has, is undefined.
    return !word.empty() && std::isalpha(static_cast<unsigned char>(word[0])) != 0;
}

bool parseName(const std::string &word, const std::string &what, vk_Vec &value, std::string &error)
{
    if (const vk_Colour *const colour = vk_findColour(word)) {
        value = *colour;
        return true;
    }
    error = what + " expected three numbers, one for a grey, or a colour's name, found " +
            vk_quoted(word) + "; nearest is " + vk_quoted(vk_nearest(word, vk_colourNames()));
    return false;
}

bool parseValue(const vk_Param &param, const char *owner, const vk_Words &words, std::size_t &at,
                vk_Vec &value, std::string &error)
{
    const std::string what = std::string(param.name) + " of " + owner;
    if (param.kind == VK_COLOUR && at < words.size() && isName(words[at]))
        return parseName(words[at++], what, value, error);
    // Looked at before reading on: a third number may be missing, or be the next name.
    const bool single = param.kind == VK_NUMBER || isGrey(param, words, at);
    float numbers[3] = {0, 0, 0};
    for (int i = 0; i < (single ? 1 : 3); ++i, ++at) {
        if (at >= words.size()) {
            error = what + " expected " + (single ? "a number" : "three numbers") +
                    ", found the end of the line";
            return false;
        }
        if (!vk_parseNumber(words[at], what, param.least, param.most, numbers[i], error))
            return false;
    }
    value = {numbers[0], numbers[1], numbers[2]};
    if (single && param.kind == VK_COLOUR)
        value = vk_grey(numbers[0]);
    return true;
}
} // namespace

vk_Param *vk_ParamList::find(std::string_view name)
{
    for (vk_Param &param : myRows)
        if (name == param.name)
            return &param;
    return nullptr;
}

bool vk_parseParams(vk_ParamList list, const char *owner, const vk_Words &words, std::size_t first,
                    std::string &error)
{
    std::size_t at = first;
    while (at < words.size()) {
        vk_Param *const param = list.find(words[at]);
        if (param == nullptr) {
            error = unknownParam(list, owner, words[at]);
            return false;
        }
        vk_Vec value;
        if (!parseValue(*param, owner, words, ++at, value, error))
            return false;
        // At once, so that of a parameter given twice the last counts. When a later one is wrong,
        // whoever asked throws the object away.
        param->set(value);
    }
    return true;
}

bool vk_parseNumber(const std::string &word, const std::string &what, float least, float most,
                    float &number, std::string &error)
{
    // from_chars takes no leading '+' but does take «nan» and «inf», which the
    // digits rule out.
    // "+-1" stays wrong, so a '+' in front of a '-' is not skipped.
    const char *begin = word.c_str() + (word[0] == '+' && word[1] != '-' ? 1 : 0);
    const char *end = word.c_str() + word.size();
    // It asks no locale: strtof() may want a comma where a scene has a point.
    const auto read = std::from_chars(begin, end, number);
    const bool decimal = word.find_first_not_of("0123456789+-.eE") == std::string::npos;
    // Next to 0 as well: 1e-99 must not pass as 0, which some ranges exclude.
    if (decimal && read.ec == std::errc::result_out_of_range && read.ptr == end) {
        error = what + " expected a number that fits a float, found " + vk_quoted(word);
        return false;
    }
    if (!decimal || read.ec != std::errc() || read.ptr != end) {
        error = what + " expected a number, found " + vk_quoted(word);
        return false;
    }
    // NaN would pass both comparisons; it has gone by now.
    if (number < least || number > most) {
        error = what + " expected a number from " + vk_numberText(least) + " to " +
                vk_numberText(most) + ", found " + vk_quoted(word);
        return false;
    }
    return true;
}

std::string vk_numberText(float number)
{
    char text[32];
    // As people write it: .1f prints as 0.1, not as its nearest double.
    std::snprintf(text, sizeof text, "%g", static_cast<double>(number));
    return text;
}

std::string vk_paramText(const vk_Param &param)
{
    const vk_Vec value = param.value();
    std::string standard = vk_numberText(value.x);
    // As one would write it: a grey needs one number only.
    if (param.kind == VK_POINT || (param.kind == VK_COLOUR && !(value == vk_grey(value.x))))
        standard += " " + vk_numberText(value.y) + " " + vk_numberText(value.z);
    // In the order of vk_ParamKind.
    constexpr const char *KINDS[] = {"number", "point", "colour"};
    return "`" + std::string(param.name) + "` " + KINDS[param.kind] + ", " +
           vk_numberText(param.least) + " to " + vk_numberText(param.most) + " (" + standard +
           "): " + param.what;
}
