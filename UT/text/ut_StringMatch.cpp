// Wildcard matching.
#include "UT/UT_String.h"

#include "UT/UT_WordList.h"

#include <cctype>
#include <cstring>

namespace
{
// One element of a pattern: a character, '?' or a set.
struct Element {
    const char *end; // behind the element
    bool matches;    // the character it was tried on
};

bool isSame(char a, char b, bool caseSensitive)
{
    if (caseSensitive)
        return a == b;
    return std::toupper(static_cast<unsigned char>(a)) ==
           std::toupper(static_cast<unsigned char>(b));
}

Element tryElement(const char *pattern, char c, bool caseSensitive)
{
    if (*pattern == '?')
        return {pattern + 1, true};
    if (*pattern == '[') {
        const char *close = std::strchr(pattern + 1, ']');
        if (close == nullptr)
            return {pattern + std::strlen(pattern), false};
        bool listed = false;
        for (const char *p = pattern + 1; p < close; ++p)
            listed = listed || isSame(*p, c, caseSensitive);
        return {close + 1, listed};
    }
    if (*pattern == '\\' && pattern[1] != '\0')
        ++pattern;
    return {pattern + 1, isSame(*pattern, c, caseSensitive)};
}

const char *skipStars(const char *pattern)
{
    return pattern + std::strspn(pattern, "*");
}
} // namespace

bool UT_String::match(const char *pattern, bool caseSensitive) const
{
    if (myData == nullptr || pattern == nullptr)
        return false;
    // Only the last star needs trying again: what an earlier one could take more
    // of, the last one can as well.
    const char *afterStar = nullptr;
    const char *retry = nullptr;
    const char *text = myData;
    while (*text != '\0') {
        if (*pattern == '*') {
            pattern = afterStar = skipStars(pattern);
            if (*pattern == '\0')
                return true;
            retry = text;
            continue;
        }
        const Element element =
            *pattern == '\0' ? Element{pattern, false} : tryElement(pattern, *text, caseSensitive);
        if (element.matches) {
            pattern = element.end;
            ++text;
        } else if (afterStar != nullptr) {
            pattern = afterStar;
            text = ++retry;
        } else {
            return false;
        }
    }
    return *skipStars(pattern) == '\0';
}

bool UT_String::matchAny(const UT_WordList &patterns, bool otherwise) const
{
    for (int i = patterns.getArgc() - 1; i >= 0; --i) {
        const char *pattern = patterns.getArg(i);
        const bool negated = pattern != nullptr && *pattern == '^';
        if (match(negated ? pattern + 1 : pattern))
            return !negated;
    }
    return otherwise;
}
