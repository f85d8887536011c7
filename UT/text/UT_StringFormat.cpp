#include "UT/UT_StringFormat.h"

#include "UT/UT_String.h"

#include <algorithm>
#include <cstring>
#include <iostream>

namespace
{
using Flags = std::ios_base::fmtflags;

const struct {
    char letter;
    Flags flags;
} CONVERSIONS[] = {
    {'d', std::ios::dec},        {'o', std::ios::oct},
    {'x', std::ios::hex},        {'X', std::ios::hex | std::ios::uppercase},
    {'e', std::ios::scientific}, {'E', std::ios::scientific | std::ios::uppercase},
    {'f', std::ios::fixed},      {'g', Flags{}},
    {'G', std::ios::uppercase},
};

const struct {
    char letter;
    Flags flags;
} FORMAT_FLAGS[] = {
    {'#', std::ios::showbase | std::ios::showpoint},
    {'+', std::ios::showpos},
    {'-', std::ios::left},
    {'0', std::ios::internal},
};

// The row for `letter`, or null.
template <typename Row, size_t COUNT>
const Row *findRow(const Row (&table)[COUNT], char letter)
{
    const Row *row = std::find_if(table, table + COUNT,
                                  [letter](const Row &each) { return each.letter == letter; });
    return row == table + COUNT ? nullptr : row;
}

// Reads a number and moves behind it; no digits are 0, too many are the limit.
int readNumber(const char *&p)
{
    constexpr int LIMIT = 1000000;
    int value = 0;
    for (; *p >= '0' && *p <= '9'; ++p)
        value = std::min(value * 10 + (*p - '0'), LIMIT);
    return value;
}

void warnOfText(const char *start, const UT_String &conversion)
{
    const UT_String before(start, false, static_cast<int>(std::strcspn(start, "%")));
    const char *after = start + before.length() + conversion.length();
    if (before.isNonEmpty()) {
        std::cerr << "Warning: extra text \"";
        before.writeText(std::cerr);
        std::cerr << "\" before format string \"" << conversion.text() << "\" ignored.\n\r";
    }
    if (*after != '\0')
        std::cerr << "Warning: extra text \"" << after << "\" after format string \""
                  << conversion.text() << "\" ignored." << std::endl;
}
} // namespace

bool UTapplyFormat(std::ostream &os, const char *format)
{
    const char *start = format == nullptr ? nullptr : std::strchr(format, '%');
    if (start == nullptr)
        return false;
    const char *p = start + 1;
    Flags flags{};
    while (const auto *row = findRow(FORMAT_FLAGS, *p)) {
        flags |= row->flags;
        ++p;
    }
    const int width = readNumber(p);
    int precision = 6;
    if (*p == '.')
        precision = readNumber(++p);
    const auto *conversion = findRow(CONVERSIONS, *p);
    if (conversion == nullptr)
        return false;
    warnOfText(format, UT_String(start, false, static_cast<int>(p + 1 - start)));

    // As in C, '-' overrules '0'; without either the text goes to the right.
    if ((flags & std::ios::left) != 0)
        flags &= ~std::ios::internal;
    const bool isZeroFilled = (flags & std::ios::internal) != 0;
    if ((flags & std::ios::adjustfield) == 0)
        flags |= std::ios::right;
    const Flags settable = std::ios::adjustfield | std::ios::basefield | std::ios::floatfield |
                           std::ios::showbase | std::ios::showpoint | std::ios::showpos |
                           std::ios::uppercase;
    os.setf(flags | conversion->flags, settable);
    os.fill(isZeroFilled ? '0' : ' ');
    os.width(width);
    os.precision(precision);
    return true;
}
