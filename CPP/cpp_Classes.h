// What characters mean to the stages that look at each one, as a table of sets.
#pragma once

#include "CPP/cpp_Text.h"

#include <array>
#include <cstddef>
#include <cstring>

enum cpp_Class : unsigned {
    CPP_SPACE = 1,
    CPP_NAME_START = 2,
    CPP_DIGIT = 4,
    CPP_QUOTE = 8,
    CPP_BACKSLASH = 16,
    CPP_LIST = 32, // counts in an argument list
    CPP_SLASH = 64,
    CPP_HASH = 128,

    CPP_NAME = CPP_NAME_START | CPP_DIGIT
};

constexpr std::array<unsigned char, 256> cpp_makeClasses()
{
    std::array<unsigned char, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        const char here = static_cast<char>(c);
        const bool inList = here == '(' || here == ')' || here == ',' || here == '\n';
        const bool isQuote = here == '"' || here == '\'';
        const unsigned all = (UTisNameStart(here) ? CPP_NAME_START : 0u) |
                             (UTisSpace(here) ? CPP_SPACE : 0u) |
                             (UTisDigit(here) ? CPP_DIGIT : 0u) | (inList ? CPP_LIST : 0u) |
                             (isQuote ? CPP_QUOTE : 0u) | (here == '\\' ? CPP_BACKSLASH : 0u) |
                             (here == '/' ? CPP_SLASH : 0u) | (here == '#' ? CPP_HASH : 0u);
        classes[c] = static_cast<unsigned char>(all);
    }
    return classes;
}

constexpr std::array<unsigned char, 256> CPP_CLASSES = cpp_makeClasses();

constexpr bool isOf(unsigned classes, char c)
{
    return (CPP_CLASSES[static_cast<unsigned char>(c)] & classes) != 0;
}

// The first character of one of the classes, or else `end`.
inline const char *findOf(unsigned classes, const char *from, const char *end)
{
    while (from < end && !isOf(classes, *from))
        ++from;
    return from;
}

// The first one of none of them.
inline const char *findOther(unsigned classes, const char *from, const char *end)
{
    while (from < end && isOf(classes, *from))
        ++from;
    return from;
}

// Behind white space. Definitions stand in columns, with many blanks between.
inline const char *skipBlanks(const char *from, const char *end)
{
    constexpr char BLANKS[] = "        ";
    constexpr std::ptrdiff_t STEP = sizeof BLANKS - 1;
    while (end - from >= STEP && std::memcmp(from, BLANKS, STEP) == 0)
        from += STEP;
    return findOther(CPP_SPACE, from, end);
}

// The first place behind a text's name; no class has NUL.
inline const char *skipName(const char *text)
{
    while (isOf(CPP_NAME, *text))
        ++text;
    return text;
}
