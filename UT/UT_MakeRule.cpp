#include "UT/UT_MakeRule.h"

namespace
{
constexpr size_t LINE_LENGTH = 72;
}

// In front of a blank make halves the backslashes, elsewhere it keeps them.
std::string UTquoteForMake(const std::string &name)
{
    std::string quoted;
    size_t backslashes = 0;
    for (const char c : name) {
        if (c == ' ' || c == '\t')
            quoted.append(backslashes + 1, '\\');
        else if (c == '#')
            quoted += '\\';
        else if (c == '$')
            quoted += '$';
        quoted += c;
        backslashes = c == '\\' ? backslashes + 1 : 0;
    }
    return quoted;
}

std::string UTmakeRule(const std::string &targets, const std::vector<std::string> &files)
{
    std::string rule = targets + ":";
    size_t column = rule.size();
    for (const std::string &file : files) {
        const std::string name = UTquoteForMake(file);
        if (column + 1 + name.size() > LINE_LENGTH) {
            rule += " \\\n";
            column = 0;
        }
        rule += " " + name;
        column += 1 + name.size();
    }
    return rule + '\n';
}
