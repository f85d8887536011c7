#include "CPP/lines/cpp_QuietLines.h"

#include "CPP/cpp_Classes.h"
#include "CPP/cpp_MacroTable.h"
#include "CPP/cpp_Runs.h"
#include "CPP/lines/cpp_LineEnd.h"

#include <cstring>
#include <string_view>

namespace
{
// The name that a definition begins with, null when the line is none. Only the form that
// nearly all have: with blanks in front or behind its '#' a line is left to the stages.
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

const char *takeDefinition(cpp_MacroTable &macros, bool strips, const char *line, const char *end)
{
    const char *name = defined(line, end);
    if (name == nullptr)
        return nullptr;
    const char *body = nameEnd(name, end);
    // Parameters need compiling, and anything else makes the name a bad one.
    if (body == end || !UTisSpace(*body))
        return nullptr;
    const cpp_LineEnd ending = findLineEnd(strips, body, end);
    if (!ending)
        return nullptr;
    // A block comment stands for blanks. A macro that is there already may give a warning.
    const bool isPadded = ending.isComment() && ending.stop[1] == '*';
    const bool isNew =
        macros.add({name, static_cast<size_t>(body - name)}, body, ending.stop, isPadded);
    return isNew ? ending.behind : nullptr;
}

const char *takeComment(const char *line, const char *end)
{
    const char *first = findOther(CPP_SPACE, line, end);
    return first < end && *first == '/' ? skipComment(first, end) : nullptr;
}
} // namespace

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
