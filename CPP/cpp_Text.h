// Characters and bytes, as every stage sees them: ASCII, whatever the locale.
#pragma once

#include <cstring>

// C's isspace: blank, tab, newline, vertical tab, form feed, carriage return.
constexpr bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool isNameCharacter(char c)
{
    return isNameStart(c) || isDigit(c);
}

// The first place at or behind `text` that is no white space; its NUL at the latest.
inline const char *skipSpace(const char *text)
{
    while (isSpace(*text))
        ++text;
    return text;
}

inline void replaceAll(char *text, int length, char from, char to)
{
    const char *end = text + length;
    const auto find = [&](char *at) {
        return static_cast<char *>(std::memchr(at, from, static_cast<size_t>(end - at)));
    };
    for (char *p = find(text); p != nullptr; p = find(p + 1))
        *p = to;
}
