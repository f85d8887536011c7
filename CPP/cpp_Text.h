// What every stage does with texts that end at their NUL.
#pragma once

#include "UT/UT_Character.h"

#include <cstring>

// So many characters of a name count behind #ifdef and #ifndef.
inline constexpr size_t CPP_MOST_TESTED = 4096;

// The first place at or behind `text` that is no white space; its NUL at the latest.
inline const char *skipSpace(const char *text)
{
    while (UTisSpace(*text))
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
