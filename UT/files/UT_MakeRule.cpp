#include "UT/UT_MakeRule.h"

#include "UT/UT_Environment.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace
{
constexpr size_t LINE_LENGTH = 72;

// A word up to a blank or the line's end at `at`.
std::string takeWord(std::string_view text, size_t &at)
{
    std::string word;
    for (; at < text.size(); ++at) {
        const size_t run = std::min(text.find_first_not_of('\\', at), text.size()) - at;
        at += run;
        const char next = at < text.size() ? text[at] : '\n';
        const bool isBlank = next == ' ' || next == '\t';
        word.append(isBlank || next == '#' || next == '\n' ? run / 2 : run, '\\');
        if (next == '\n' || (isBlank && run % 2 == 0))
            break;
        if (text.substr(at, 2) == "$$")
            ++at;
        word += next;
    }
    return word;
}
} // namespace

// In front of a blank, a '#' and a name's end make halves the backslashes, elsewhere it keeps
// them.
std::string UTquoteForMake(const std::string &name)
{
    std::string quoted;
    size_t backslashes = 0;
    for (const char c : name) {
        if (c == ' ' || c == '\t' || c == '#')
            quoted.append(backslashes + 1, '\\');
        else if (c == '$')
            quoted += '$';
        quoted += c;
        backslashes = c == '\\' ? backslashes + 1 : 0;
    }
    return quoted.append(backslashes, '\\');
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
    if (rule.back() == '\\')
        rule += ' '; // or the line would go on
    return rule + '\n';
}

std::vector<std::string> UTfilesOfMakeRules(const std::string &text)
{
    std::vector<std::string> files;
    bool isTarget = true;
    for (size_t at = 0; at < text.size(); ++at) {
        const std::string word = takeWord(text, at);
        if (isTarget)
            isTarget = word.empty() || word.back() != ':';
        else if (!word.empty())
            files.push_back(word);
        if (at < text.size() && text[at] == '\n' && (at == 0 || text[at - 1] != '\\'))
            isTarget = true;
    }
    return files;
}

bool UTaddPictureRule(const std::string &picture, const std::vector<std::string> &files,
                      std::string &error)
{
    const char *const name = UTgetenv("VELDRIN_THUMB_DEPFILE");
    if (name == nullptr || *name == '\0')
        return true;
    const std::string rule = UTmakeRule(UTquoteForMake(picture), files);
    std::FILE *const out = std::fopen(name, "ae");
    const bool isGood = out != nullptr && std::fputs(rule.c_str(), out) >= 0;
    if (out != nullptr && std::fclose(out) == 0 && isGood)
        return true;
    error = "Unable to write " + std::string(name);
    return false;
}
