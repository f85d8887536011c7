#include "CPP/cpp_QuietLines.h"

#include "CPP/cpp_Classes.h"
#include "CPP/cpp_MacroTable.h"
#include "CPP/cpp_Runs.h"

#include <cstring>
#include <string_view>

namespace
{
const char *find(char c, const char *from, const char *end)
{
    const void *found =
        from < end ? std::memchr(from, c, static_cast<size_t>(end - from)) : nullptr;
    return found != nullptr ? static_cast<const char *>(found) : end;
}

// Behind the sign that ends a block comment; null when there is none.
const char *blockEnd(const char *from, const char *end)
{
    const char *slash = find('/', from + 3, end); // "/*/" is open
    while (slash < end && slash[-1] != '*')
        slash = find('/', slash + 1, end);
    return slash < end ? slash + 1 : nullptr;
}

// The name that a definition begins with, null when the line is none.
const char *defined(const char *line, const char *end)
{
    constexpr std::string_view DIRECTIVE = "#define";
    constexpr auto START = static_cast<std::ptrdiff_t>(DIRECTIVE.size());
    if (end - line <= START || std::memcmp(line, DIRECTIVE.data(), DIRECTIVE.size()) != 0)
        return nullptr;
    const char *name = line + START;
    while (name < end && (*name == ' ' || *name == '\t'))
        ++name;
    return name > line + START && name < end && UTisNameStart(*name) ? name : nullptr;
}

bool hasQuote(const char *from, const char *end)
{
    return findOf(CPP_QUOTE, from, end) != end;
}

const char *takeDefinition(cpp_MacroTable &macros, bool strips, const char *line, const char *end)
{
    const char *name = defined(line, end);
    if (name == nullptr)
        return nullptr;
    const char *body = nameEnd(name, end);
    const char *stop = simpleLineEnd(body, end);
    if (stop == end || (body < stop && !UTisSpace(*body)))
        return nullptr;
    const char *behind = stop + 1;
    if (*stop == '/' && strips && !hasQuote(body, stop))
        behind = skipComment(stop, end);
    else if (*stop == '\r' && behind < end && *behind == '\n')
        ++behind;
    else if (*stop != '\n')
        return nullptr;
    // A block comment stands for blanks.
    const bool isPadded = *stop == '/' && behind != nullptr && stop[1] == '*';
    const bool isNew = behind != nullptr &&
                       macros.add({name, static_cast<size_t>(body - name)}, body, stop, isPadded);
    return isNew ? behind : nullptr;
}

const char *takeComment(const char *line, const char *end)
{
    const char *first = findOther(CPP_SPACE, line, end);
    return first < end && *first == '/' ? skipComment(first, end) : nullptr;
}
} // namespace

bool startsComment(const char *slash, const char *end)
{
    return end - slash >= 2 && (slash[1] == '/' || slash[1] == '*');
}

const char *skipComment(const char *slash, const char *end)
{
    if (!startsComment(slash, end))
        return nullptr;
    const char *behind = slash[1] == '*' ? blockEnd(slash, end) : slash;
    if (behind == nullptr)
        return nullptr;
    const char *newline = find('\n', behind, end);
    const bool isWhole = slash[1] == '/' || skipBlanks(behind, newline) == newline;
    const bool mayJoin = find('\\', slash, newline) != newline;
    return newline != end && isWhole && !mayJoin ? newline + 1 : nullptr;
}

const char *takeQuietLines(cpp_MacroTable &macros, bool strips, const char *from, const char *end)
{
    for (;;) {
        const char *next = from < end && *from == '#' ? takeDefinition(macros, strips, from, end)
                           : strips                   ? takeComment(from, end)
                                                      : nullptr;
        if (next == nullptr)
            return from;
        from = next;
    }
}
