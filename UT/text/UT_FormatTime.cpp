#include "UT/UT_FormatTime.h"

#include <array>
#include <cstring>
#include <ostream>
#include <string>

namespace
{
constexpr size_t BUFFER_SIZE = 512;

const char *const SHORT_DAYS[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char *const DAYS[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                            "Thursday", "Friday", "Saturday"};
const char *const SHORT_MONTHS[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char *const MONTHS[] = {"January",   "February", "March",    "April",
                              "May",       "June",     "July",     "August",
                              "September", "October",  "November", "December"};

long long year(const tm &t)
{
    return t.tm_year + 1900LL;
}

const char *zoneName(const tm &t)
{
    return daylight != 0 && t.tm_isdst > 0 ? tzname[1] : tzname[0];
}

// One of the three says what a conversion is replaced with: a number, which a `pad`
// character brings to two digits, a text, or other conversions.
struct Conversion {
    char letter;
    char pad;
    long long (*number)(const tm &t);
    const char *(*text)(const tm &t);
    const char *pattern;
};

using Time = const tm &;

constexpr Conversion number(char letter, char pad, long long (*value)(Time))
{
    return {letter, pad, value, nullptr, nullptr};
}

constexpr Conversion text(char letter, const char *(*value)(Time))
{
    return {letter, '\0', nullptr, value, nullptr};
}

constexpr Conversion composite(char letter, const char *pattern)
{
    return {letter, '\0', nullptr, nullptr, pattern};
}

// tm counts months from 0, days of the year from 0 and years from 1900.
constexpr Conversion CONVERSIONS[] = {
    text('a', [](Time t) { return SHORT_DAYS[t.tm_wday]; }),
    text('A', [](Time t) { return DAYS[t.tm_wday]; }),
    text('b', [](Time t) { return SHORT_MONTHS[t.tm_mon]; }),
    text('h', [](Time t) { return SHORT_MONTHS[t.tm_mon]; }),
    text('B', [](Time t) { return MONTHS[t.tm_mon]; }),
    composite('c', "%a %b %e %T %Y"),
    number('C', '0', [](Time t) { return year(t) / 100 % 100; }),
    number('d', '0', [](Time t) { return 0LL + t.tm_mday; }),
    composite('D', "%m/%d/%y"),
    composite('x', "%m/%d/%y"),
    number('e', ' ', [](Time t) { return 0LL + t.tm_mday; }),
    number('H', '0', [](Time t) { return 0LL + t.tm_hour; }),
    number('I', '0', [](Time t) { return t.tm_hour % 12 == 0 ? 12LL : t.tm_hour % 12; }),
    number('j', '0', [](Time t) { return t.tm_yday + 1LL; }),
    number('m', '0', [](Time t) { return t.tm_mon + 1LL; }),
    number('M', '0', [](Time t) { return 0LL + t.tm_min; }),
    text('n', [](Time) { return "\n"; }),
    text('p', [](Time t) { return t.tm_hour < 12 ? "AM" : "PM"; }),
    composite('r', "%I:%M:%S %p"),
    composite('R', "%H:%M"),
    number('S', '0', [](Time t) { return 0LL + t.tm_sec; }),
    text('t', [](Time) { return "\t"; }),
    composite('T', "%H:%M:%S"),
    composite('X', "%H:%M:%S"),
    number('u', '\0', [](Time t) { return t.tm_wday == 0 ? 7LL : t.tm_wday; }),
    number('w', '\0', [](Time t) { return 0LL + t.tm_wday; }),
    number('y', '0', [](Time t) { return year(t) % 100; }),
    number('Y', '\0', year),
    text('Z', zoneName),
    text('%', [](Time) { return "%"; }),
};

// By character: one more than the conversion's row, 0 for all others.
constexpr auto ROWS = [] {
    std::array<unsigned char, 128> rows{};
    unsigned char row = 0;
    for (const Conversion &conversion : CONVERSIONS)
        rows[static_cast<size_t>(conversion.letter)] = ++row;
    return rows;
}();

const Conversion *findConversion(char letter)
{
    const auto index = static_cast<unsigned char>(letter);
    if (index >= ROWS.size() || ROWS[index] == 0)
        return nullptr;
    return &CONVERSIONS[ROWS[index] - 1];
}

// No pattern of a composite leads back to itself, so the recursion ends.
int appendTime(std::string &out, const char *format, const tm &t);

// Returns how many conversions this one stands for.
int appendConversion(std::string &out, const Conversion &conversion, const tm &t)
{
    if (conversion.pattern != nullptr)
        return appendTime(out, conversion.pattern, t);
    if (conversion.text != nullptr) {
        out += conversion.text(t);
        return 0;
    }
    const std::string digits = std::to_string(conversion.number(t));
    if (conversion.pad != '\0' && digits.size() < 2)
        out += conversion.pad;
    out += digits;
    return 0;
}

int appendTime(std::string &out, const char *format, const tm &t)
{
    int conversions = 0;
    for (; *format != '\0'; ++format) {
        const Conversion *const conversion = *format == '%' ? findConversion(format[1]) : nullptr;
        if (conversion == nullptr) {
            out += *format;
            continue;
        }
        conversions += 1 + appendConversion(out, *conversion, t);
        ++format;
    }
    return conversions;
}

int appendLocalTime(std::string &out, const char *format, time_t when)
{
    const tm *const t = std::localtime(&when); // sets tzname and daylight, too
    return t != nullptr ? appendTime(out, format, *t) : 0;
}
} // namespace

int UTformatTime(char *buffer, const char *format, time_t when)
{
    std::string out;
    const int conversions = appendLocalTime(out, format, when);
    buffer[out.copy(buffer, BUFFER_SIZE - 1)] = '\0';
    return conversions;
}

std::ostream &UTformatTime(std::ostream &os, const char *format, time_t when)
{
    std::string out;
    appendLocalTime(out, format, when);
    return os.write(out.data(), static_cast<std::streamsize>(out.size()));
}
