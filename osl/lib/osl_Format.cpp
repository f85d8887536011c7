#include "osl/lib/osl_Format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{
constexpr int LARGEST_WIDTH = 500;

bool isOneOf(char c, const char *set)
{
    return c != 0 && std::strchr(set, c) != nullptr;
}

struct TypeInfo {
    const char *letters; // that C has for it; the first stands in for one that does not suit
    const char *others;
    const char *conversions;
};
const TypeInfo TYPES[] = {
    {"diuoxXc", "", "%d, %i, %o, %x, or %X"},
    {"feEFgGaA", "pvnmc", "%f, %g, or %e"},
    {"s", "", "%s"},
};

bool isConversion(char letter)
{
    return isOneOf(letter, "diuoxXcfFeEgGaAspvnm");
}

// The digits at `at`, limited, appended to `to`.
void takeNumber(std::string_view format, size_t &at, std::string &to)
{
    int number = 0;
    const size_t first = at;
    for (; at < format.size() && isOneOf(format[at], "0123456789"); ++at)
        number = std::min(number * 10 + (format[at] - '0'), LARGEST_WIDTH);
    if (at > first)
        to += std::to_string(number);
}

// The part of a conversion in front of its letter; `at` comes to stand on that. What C
// has beside it (stars, lengths) means nothing here and is left out.
std::string takeFlags(std::string_view format, size_t &at)
{
    std::string flags = "%";
    for (; at < format.size() && isOneOf(format[at], "-+ #0"); ++at) {
        if (flags.find(format[at]) == std::string::npos)
            flags += format[at];
    }
    takeNumber(format, at, flags);
    if (at < format.size() && format[at] == '.') {
        flags += format[at++];
        takeNumber(format, at, flags);
    }
    while (at < format.size() && isOneOf(format[at], "*hlLqjzt"))
        ++at;
    return flags;
}

// The buffer holds what the widths allow: 309 digits of a large number and 500 behind the point.
template <class T>
void appendPrinted(const std::string &format, T value, std::string &out)
{
    char text[1024];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(text, sizeof text, format.c_str(), value);
#pragma GCC diagnostic pop
    out.append(text, static_cast<size_t>(std::clamp(length, 0, int(sizeof text) - 1)));
}

int numberIn(const std::string &flags, size_t at)
{
    return at < flags.size() ? std::atoi(flags.c_str() + at) : 0;
}

// As printf's %s, for texts of any length.
void appendText(const std::string &flags, std::string_view value, std::string &out)
{
    const size_t point = flags.find('.');
    if (point != std::string::npos)
        value = value.substr(0, static_cast<size_t>(numberIn(flags, point + 1)));
    const size_t digits = flags.find_first_not_of("%-+ #0");
    const size_t width = static_cast<size_t>(numberIn(flags, digits));
    const size_t blanks = width > value.size() ? width - value.size() : 0;
    const bool isLeft = flags.find('-') != std::string::npos;
    if (!isLeft)
        out.append(blanks, ' ');
    out += value;
    if (isLeft)
        out.append(blanks, ' ');
}

void appendElement(const std::string &flags, char letter, const osl_FormatArg &arg, int i,
                   std::string &out)
{
    const int at = i * arg.stride;
    if (arg.type == osl_FormatArg::STRING)
        appendText(flags, static_cast<const std::string_view *>(arg.data)[at], out);
    else if (arg.type == osl_FormatArg::INT)
        appendPrinted(flags + letter, static_cast<const int *>(arg.data)[at], out);
    else
        appendPrinted(flags + letter, static_cast<double>(static_cast<const float *>(arg.data)[at]),
                      out);
}
} // namespace

osl_FormatArg::osl_FormatArg(const int *values, int n, int step)
    : type(INT), data(values), count(n), stride(step)
{
}
osl_FormatArg::osl_FormatArg(const float *values, int n, int step)
    : type(FLOAT), data(values), count(n), stride(step)
{
}
osl_FormatArg::osl_FormatArg(const std::string_view *values, int n, int step)
    : type(STRING), data(values), count(n), stride(step)
{
}

// Something that is no conversion stays as it is.
osl_Format::osl_Format(std::string_view format) : myPieces(1)
{
    for (size_t at = 0; at < format.size();) {
        if (format[at] != '%') {
            myPieces.back().text += format[at++];
            continue;
        }
        const size_t first = at++;
        std::string flags = takeFlags(format, at);
        const char letter = at < format.size() ? format[at] : '\0';
        if (isConversion(letter)) {
            myPieces.back().flags = std::move(flags);
            myPieces.back().letter = letter;
            myPieces.emplace_back();
            ++at;
        } else if (letter == '%') {
            myPieces.back().text += '%';
            ++at;
        } else {
            myPieces.back().text += format.substr(first, at - first);
        }
    }
}

int osl_Format::conversions() const
{
    return static_cast<int>(myPieces.size()) - 1;
}

bool osl_Format::suits(int conversion, osl_FormatArg::Type type) const
{
    const char letter = myPieces[static_cast<size_t>(conversion)].letter;
    return isOneOf(letter, TYPES[type].letters) || isOneOf(letter, TYPES[type].others);
}

const char *osl_Format::conversionsFor(osl_FormatArg::Type type)
{
    return TYPES[type].conversions;
}

void osl_Format::apply(const std::vector<osl_FormatArg> &args, std::string &out, size_t limit) const
{
    const size_t end = out.size() + limit;
    for (size_t p = 0; p < myPieces.size() && out.size() < end; ++p) {
        const Piece &piece = myPieces[p];
        out += piece.text;
        if (p >= args.size() || piece.letter == 0)
            continue;
        const osl_FormatArg &arg = args[p];
        const char *letters = TYPES[arg.type].letters;
        const char letter = isOneOf(piece.letter, letters) ? piece.letter : letters[0];
        for (int i = 0; i < arg.count && out.size() < end; ++i) {
            if (i > 0)
                out += ' ';
            appendElement(piece.flags, letter, arg, i, out);
        }
    }
    if (out.size() > end)
        out.resize(end);
}

std::string osl_floatText(float x)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(x));
    return text;
}
