#include "osl/text/osl_Lexer.h"

#include "UT/UT_Character.h"

#include <cstring>

namespace
{
// Longer ones first.
const char *const PUNCTS[] = {
    "<<=", ">>=", "...", "##", "<<", ">>", "<=", ">=", "==", "!=", "&&", "||",
    "++",  "--",  "+=",  "-=", "*=", "/=", "%=", "&=", "|=", "^=", "+",  "-",
    "*",   "/",   "%",   "<",  ">",  "=",  "!",  "~",  "&",  "|",  "^",  "?",
    ":",   ",",   ";",   "(",  ")",  "[",  "]",  "{",  "}",  ".",  "#"};

size_t nameLength(std::string_view text)
{
    size_t n = 1;
    while (n < text.size() && UTisNameCharacter(text[n]))
        ++n;
    return n;
}

// As C's preprocessor reads numbers: with letters, and signs behind an exponent.
size_t numberLength(std::string_view text)
{
    const bool isHex = text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    size_t n = 1;
    while (n < text.size()) {
        const bool isSign = text[n] == '+' || text[n] == '-';
        const bool isExponent = !isHex && (text[n - 1] == 'e' || text[n - 1] == 'E');
        if (!UTisNameCharacter(text[n]) && text[n] != '.' && !(isSign && isExponent))
            break;
        ++n;
    }
    return n;
}

// With both quotes; without the closing one to the end of the line.
size_t stringLength(std::string_view text)
{
    for (size_t n = 1; n < text.size(); ++n) {
        if (text[n] == '\\')
            ++n;
        else if (text[n] == '"')
            return n + 1;
    }
    return text.size();
}

size_t punctLength(std::string_view text)
{
    for (const char *punct : PUNCTS) {
        if (punct[0] != text[0])
            continue;
        const size_t length = std::strlen(punct);
        if (text.substr(0, length) == punct)
            return length;
    }
    return 0;
}

size_t classify(std::string_view text, osl_Token &token)
{
    const char c = text[0];
    if (UTisNameStart(c)) {
        token.kind = osl_Token::NAME;
        return nameLength(text);
    }
    if (UTisDigit(c) || (c == '.' && text.size() > 1 && UTisDigit(text[1]))) {
        token.kind = osl_Token::NUMBER;
        return numberLength(text);
    }
    if (c == '"') {
        token.kind = osl_Token::STRING;
        return stringLength(text);
    }
    const size_t length = punctLength(text);
    token.kind = length > 0 ? osl_Token::PUNCT : osl_Token::OTHER;
    return length > 0 ? length : 1;
}

int punctOf(std::string_view text)
{
    int code = 0;
    for (size_t i = 0; i < text.size(); ++i)
        code |= static_cast<unsigned char>(text[i]) << (8 * i);
    return code;
}
} // namespace

void osl_appendTokens(std::string_view line, osl_Place place, std::vector<osl_Token> &tokens)
{
    bool hasSpace = false;
    size_t at = 0;
    while (at < line.size()) {
        if (std::strchr(" \t\n\v\f\r", line[at]) != nullptr) { // NUL counts too
            hasSpace = true;
            ++at;
            continue;
        }
        osl_Token token;
        const size_t length = classify(line.substr(at), token);
        token.text = line.substr(at, length);
        token.hasSpace = hasSpace;
        token.place = place;
        if (token.kind == osl_Token::PUNCT)
            token.punct = punctOf(token.text);
        tokens.push_back(token);
        hasSpace = false;
        at += length;
    }
}
