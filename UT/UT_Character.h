// Classes of characters: ASCII, whatever the locale, and for bytes of any sign.
#pragma once

// C's isspace: blank, tab, newline, vertical tab, form feed, carriage return.
constexpr bool UTisSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool UTisDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool UTisLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool UTisAlphanumeric(char c)
{
    return UTisLetter(c) || UTisDigit(c);
}

// Of an identifier, as macros and variables have them.
constexpr bool UTisNameStart(char c)
{
    return UTisLetter(c) || c == '_';
}

constexpr bool UTisNameCharacter(char c)
{
    return UTisNameStart(c) || UTisDigit(c);
}
