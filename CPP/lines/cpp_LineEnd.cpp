#include "CPP/lines/cpp_LineEnd.h"

#include "CPP/cpp_Classes.h"
#include "CPP/cpp_Runs.h"

#include <cstring>

namespace
{
const char *find(char c, const char *from, const char *end)
{
    const void *found =
        from < end ? std::memchr(from, c, static_cast<size_t>(end - from)) : nullptr;
    return found != nullptr ? static_cast<const char *>(found) : end;
}

// Whether a slash is the first of "//" or of the sign of a block comment.
bool startsComment(const char *slash, const char *end)
{
    return end - slash >= 2 && (slash[1] == '/' || slash[1] == '*');
}

// Behind the sign that ends a block comment; null when there is none.
const char *blockEnd(const char *from, const char *end)
{
    const char *slash = find('/', from + 3, end); // "/*/" is open
    while (slash < end && slash[-1] != '*')
        slash = find('/', slash + 1, end);
    return slash < end ? slash + 1 : nullptr;
}

bool hasQuote(const char *from, const char *end)
{
    return findOf(CPP_QUOTE, from, end) != end;
}
} // namespace

cpp_LineEnd findLineEnd(bool strips, const char *from, const char *end)
{
    const char *stop = simpleLineEnd(from, end);
    while (stop < end && *stop == '/' && !(strips && startsComment(stop, end)))
        stop = simpleLineEnd(stop + 1, end);
    if (stop == end)
        return {};
    if (*stop == '\n')
        return {stop, stop + 1};
    if (*stop == '/') // inside quotes it would be text
        return {stop, hasQuote(from, stop) ? nullptr : skipComment(stop, end)};
    // Any other carriage return becomes a blank, and a backslash may join lines.
    const bool isNewline = *stop == '\r' && stop + 1 < end && stop[1] == '\n';
    return {stop, isNewline ? stop + 2 : nullptr};
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
