// Natural order of texts.
#include "UT/UT_String.h"

#include "UT/UT_Character.h"

#include <cstring>

namespace
{
constexpr char DIGITS[] = "0123456789";

// A run of digits as a number of any size: its digits without zeros in front.
struct Number {
    const char *digits;
    size_t length;
    const char *end;
};

Number readNumber(const char *text)
{
    const char *end = text + std::strspn(text, DIGITS);
    while (*text == '0')
        text++;
    return {text, static_cast<size_t>(end - text), end};
}

// More digits are more; equally many compare like texts.
int compareNumbers(const Number &a, const Number &b)
{
    if (a.length != b.length)
        return a.length < b.length ? -1 : 1;
    return std::memcmp(a.digits, b.digits, a.length);
}
} // namespace

int UT_String::compareNatural(const char *a, const char *b)
{
    if (a == nullptr || b == nullptr)
        return (a != nullptr) - (b != nullptr);
    for (;;) {
        if (UTisDigit(*a) && UTisDigit(*b)) {
            const Number left = readNumber(a);
            const Number right = readNumber(b);
            if (const int order = compareNumbers(left, right))
                return order;
            a = left.end;
            b = right.end;
        } else if (*a != *b) {
            return static_cast<signed char>(*a) - static_cast<signed char>(*b);
        } else if (*a == '\0') {
            return 0;
        } else {
            a++;
            b++;
        }
    }
}
