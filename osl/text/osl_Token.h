// A token of the shading language.
#pragma once

#include "osl/text/osl_Messages.h"

#include <cstdint>

// An operator or bracket as a number that can stand behind `case`.
constexpr int osl_punct(const char *text)
{
    int code = 0;
    for (int shift = 0; *text != '\0'; ++text, shift += 8)
        code |= static_cast<unsigned char>(*text) << shift;
    return code;
}

struct osl_Token {
    enum Kind : uint8_t { END, NAME, NUMBER, STRING, PUNCT, OTHER };

    Kind kind = END;
    bool hasSpace = false; // white space in front of it
    bool isFrozen = false; // the name of a macro that is not to be expanded any more
    int punct = 0;         // of PUNCT, as osl_punct gives it
    osl_Place place;
    std::string_view text; // as it is spelled, a text with its quotes

    bool is(int code) const { return kind == PUNCT && punct == code; }
    bool isName(std::string_view name) const { return kind == NAME && text == name; }
};
