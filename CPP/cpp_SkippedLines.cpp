#include "CPP/cpp_SkippedLines.h"

#include "CPP/cpp_Classes.h"
#include "CPP/cpp_QuietLines.h"
#include "CPP/cpp_Runs.h"

#include <cstddef>

namespace
{
struct Word {
    std::string_view text;
    cpp_SkippedLine::Kind kind;
};

// All directives: any other word is for the stages to complain about.
constexpr Word WORDS[] = {
    {"define", cpp_SkippedLine::TEXT},  {"endif", cpp_SkippedLine::CLOSES},
    {"if", cpp_SkippedLine::OPENS},     {"ifdef", cpp_SkippedLine::OPENS},
    {"ifndef", cpp_SkippedLine::OPENS}, {"else", cpp_SkippedLine::ELSE},
    {"elif", cpp_SkippedLine::ELIF},    {"undef", cpp_SkippedLine::TEXT},
    {"include", cpp_SkippedLine::TEXT}, {"sinclude", cpp_SkippedLine::TEXT},
    {"line", cpp_SkippedLine::TEXT},    {"pragma", cpp_SkippedLine::TEXT},
    {"ident", cpp_SkippedLine::TEXT},
};

cpp_SkippedLine::Kind kindOf(std::string_view word)
{
    for (const Word &known : WORDS) {
        // Most differ in their first character.
        if (!word.empty() && word[0] == known.text[0] && word == known.text)
            return known.kind;
    }
    return cpp_SkippedLine::UNKNOWN;
}

const char *skipInLine(const char *from, const char *end)
{
    while (from < end && UTisSpace(*from) && *from != '\n')
        ++from;
    return from;
}

// Where the line from `from` on ends, and the place behind it; null when it is not simple.
const char *lineEnd(bool strips, const char *from, const char *end, const char *&behind)
{
    const char *stop = simpleLineEnd(from, end);
    while (stop < end && *stop == '/' && !(strips && startsComment(stop, end)))
        stop = simpleLineEnd(stop + 1, end);
    if (stop == end)
        return nullptr;
    behind = stop + 1;
    if (*stop == '/')
        behind = findOf(CPP_QUOTE, from, stop) == stop ? skipComment(stop, end) : nullptr;
    else if (*stop == '\r' && behind < end && *behind == '\n')
        ++behind;
    else if (*stop != '\n')
        return nullptr;
    return behind != nullptr ? stop : nullptr;
}
} // namespace

cpp_SkippedLine readSkippedLine(bool strips, const char *from, const char *end)
{
    cpp_SkippedLine line;
    const char *text = skipInLine(from, end);
    if (text == end)
        return line;
    const bool isDirective = *text == '#';
    cpp_SkippedLine::Kind kind = cpp_SkippedLine::TEXT;
    if (isDirective) {
        const char *word = skipInLine(text + 1, end);
        text = nameEnd(word, end);
        kind = kindOf({word, static_cast<size_t>(text - word)});
        if (kind == cpp_SkippedLine::UNKNOWN || text == end || !UTisSpace(*text))
            return line;
    }
    const char *stop = lineEnd(strips, text, end, line.end);
    if (stop == nullptr)
        return line;
    line.kind = kind;
    line.isOneLine = *stop != '/';
    line.condition = {text, static_cast<size_t>(stop - text)};
    return line;
}
