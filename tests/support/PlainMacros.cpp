#include "tests/support/PlainMacros.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace
{
bool isOneOf(char c, const std::string &set)
{
    return set.find(c) != std::string::npos;
}

bool isSpace(char c)
{
    return isOneOf(c, " \t\n\v\f\r");
}

bool startsWord(char c)
{
    return c == '_' || std::isalpha(static_cast<unsigned char>(c)) != 0;
}

// The characters from `i` on that satisfy `isWanted`; `i` is moved behind them.
template <typename Wanted>
std::string take(const std::string &text, size_t &i, Wanted isWanted)
{
    const size_t start = i;
    while (i < text.size() && isWanted(text[i]))
        ++i;
    return text.substr(start, i - start);
}

std::string takeWord(const std::string &text, size_t &i)
{
    return take(text, i, [](char c) { return startsWord(c) || isOneOf(c, "0123456789"); });
}

std::string takeUpTo(const std::string &text, size_t &i, const std::string &ends)
{
    return take(text, i, [&](char c) { return !isSpace(c) && !isOneOf(c, ends); });
}

bool tookSign(const std::string &text, size_t &i, char sign)
{
    const bool isThere = text[i] == sign;
    if (isThere)
        ++i;
    return isThere;
}

// Behind the quoted run that starts at `i`, where escaped characters come in pairs.
size_t endOfRun(const std::string &text, size_t i)
{
    const char quote = text[i];
    for (++i; i < text.size(); ++i) {
        if (text[i] == quote)
            return i + 1;
        if (text[i] == '\\')
            ++i;
    }
    return std::string::npos;
}

bool startsRun(const std::string &text, size_t i)
{
    return isOneOf(text[i], "\"'") && (i == 0 || text[i - 1] != '\\');
}

std::vector<std::string> takeNames(const std::string &text, size_t &i)
{
    std::vector<std::string> names;
    take(text, i, isSpace);
    while (i < text.size() && (text[i] != ')' || !names.empty())) {
        names.push_back(takeUpTo(text, i, ",)"));
        take(text, i, isSpace);
        if (text[i] == ')')
            break;
        tookSign(text, i, ',');
        take(text, i, isSpace);
    }
    tookSign(text, i, ')');
    return names;
}

std::string compiled(const std::string &text, const std::vector<std::string> &names)
{
    std::string body;
    for (size_t i = 0; i < text.size();) {
        if (text[i] == '"') {
            do
                body += text[i++];
            while (i < text.size() && (text[i] != '"' || text[i - 1] == '\\'));
            body += i < text.size() ? text.substr(i++, 1) : "";
        } else if (text[i] == '#' || startsWord(text[i])) {
            const std::string hashes = take(text, i, [](char c) { return c == '#'; });
            const std::string word = takeWord(text, i);
            const auto name = std::find(names.begin(), names.end(), word);
            if (word.empty() || name == names.end()) {
                body += hashes + word;
                continue;
            }
            const std::string mark = "#" + std::to_string(name - names.begin()) + "#";
            body += hashes == "#" ? '"' + mark + '"' : mark;
            if (tookSign(text, i, '#') && !tookSign(text, i, '#'))
                body += ' ';
        } else {
            body += text[i++];
        }
    }
    return body;
}

std::string filledIn(std::string body, const std::vector<std::string> &arguments)
{
    for (size_t i = 0; i < body.size(); ++i) {
        size_t end = i + 1;
        const std::string number = take(body, end, [](char c) { return isOneOf(c, "0123456789"); });
        const size_t index = std::strtoul(number.c_str(), nullptr, 10);
        if (body[i] != '#' || number.empty() || body[end] != '#' || index >= arguments.size())
            continue;
        const std::string &argument = arguments[index];
        body.replace(i, end + 1 - i, argument);
        i += argument.size() - 1;
    }
    return body;
}
} // namespace

bool PlainMacros::define(const std::string &text, bool commandLineForm)
{
    size_t i = 0;
    take(text, i, isSpace);
    const std::string name = takeUpTo(text, i, commandLineForm ? "(=" : "(");
    size_t valid = 0;
    if (name.empty() || !startsWord(name[0]) || takeWord(name, valid) != name)
        return false;
    if (commandLineForm)
        tookSign(text, i, '=');

    Macro macro;
    if (tookSign(text, i, '(')) {
        const std::vector<std::string> names = takeNames(text, i);
        macro.numArgs = static_cast<int>(names.size());
        take(text, i, [](char c) { return c != '\n' && isSpace(c); });
        macro.body = compiled(text.substr(i, text.find('\n', i) - i), names);
    } else {
        take(text, i, isSpace);
        macro.body = text.substr(i, text.find_last_not_of("\r\n") + 1 - i);
        macro.body = i < text.size() ? macro.body : "";
    }
    const size_t size = macro.body.find_last_not_of(" \t\n\v\f\r") + 1;
    if (size < macro.body.size())
        macro.body = macro.body.substr(0, size) + ' ';

    const Macro *old = find(name);
    const bool warns = old != nullptr &&
                       (old->isBuiltin || old->numArgs != macro.numArgs || old->body != macro.body);
    myMacros[name] = macro;
    return warns;
}

const PlainMacros::Macro *PlainMacros::find(const std::string &name) const
{
    const auto found = myMacros.find(name);
    return found == myMacros.end() ? nullptr : &found->second;
}

bool PlainMacros::expand(std::string text, int depthLeft, std::string &result)
{
    const auto fail = [&](const std::string &message) { return result = message, false; };
    for (size_t i = 0; i < text.size();) {
        if (startsRun(text, i)) {
            const size_t end = endOfRun(text, i);
            if (end == std::string::npos)
                return fail("Mismatched quotation marks");
            result += text.substr(i, end - i);
            i = end;
            continue;
        }
        if (!startsWord(text[i])) {
            const bool drops = text[i] == '\\' && i + 1 < text.size() && !startsWord(text[i + 1]);
            result += text[drops ? i + 1 : i];
            i += drops ? 2 : 1;
            continue;
        }
        const std::string word = takeWord(text, i);
        const Macro *macro = find(word);
        if (macro == nullptr || macro->isBuiltin) {
            result += macro == nullptr     ? word
                      : word == "__FILE__" ? "\"in\""
                                           : std::to_string(lineNumber);
            continue;
        }
        std::vector<std::string> arguments(static_cast<size_t>(std::max(macro->numArgs, 0)));
        if (macro->numArgs >= 0 && !takeArguments(text, i, arguments))
            return fail("Invalid arguments for macro \"" + word + "\"");
        if (depthLeft - 1 == 0)
            return fail("Macro recursion limit reached");
        std::string inner;
        if (!expand(filledIn(macro->body, arguments), depthLeft - 1, inner))
            return fail(inner);
        result += inner;
    }
    return true;
}

bool PlainMacros::takeLine(std::string &text, size_t &i)
{
    if (furtherLines.empty())
        return false;
    text = furtherLines.front();
    furtherLines.pop_front();
    ++lineNumber;
    i = 0;
    return true;
}

bool PlainMacros::skipSpaceOverLines(std::string &text, size_t &i)
{
    do
        take(text, i, isSpace);
    while (i == text.size() && takeLine(text, i));
    return i < text.size();
}

bool PlainMacros::takeArguments(std::string &text, size_t &i, std::vector<std::string> &arguments)
{
    take(text, i, isSpace);
    if (!tookSign(text, i, '('))
        return false;
    for (size_t n = 0; n < arguments.size(); ++n) {
        if (n > 0 && !tookSign(text, i, ','))
            return false;
        if (!skipSpaceOverLines(text, i) || !takeArgument(text, i, arguments[n]))
            return false;
    }
    return skipSpaceOverLines(text, i) && tookSign(text, i, ')');
}

bool PlainMacros::takeArgument(std::string &text, size_t &i, std::string &argument)
{
    int depth = 0;
    for (;;) {
        if (i == text.size()) {
            if (!takeLine(text, i))
                return false;
        } else if (depth == 0 && isOneOf(text[i], ",)")) {
            return !argument.empty() && argument.size() < 8192;
        } else if (startsRun(text, i)) {
            const size_t end = endOfRun(text, i);
            if (end == std::string::npos)
                return false;
            argument += text.substr(i, end - i);
            i = end;
        } else {
            // What follows a backslash still divides and nests.
            if (tookSign(text, i, '\\') && (i == text.size() || isOneOf(text[i], ",()")))
                continue;
            depth += text[i] == '(' ? 1 : text[i] == ')' ? -1 : 0;
            argument += text[i] == '\n' ? ' ' : text[i];
            ++i;
        }
    }
}
