#include "osl/lib/osl_Strings.h"

#include "UT/UT_Character.h"

#include <algorithm>
#include <charconv>
#include <climits>

namespace
{
size_t skipSpace(std::string_view text, size_t at)
{
    while (at < text.size() && UTisSpace(text[at]))
        ++at;
    return at;
}

size_t skipWord(std::string_view text, size_t at)
{
    while (at < text.size() && !UTisSpace(text[at]))
        ++at;
    return at;
}

// The text from its number on: without white space and without a plus sign in front.
std::string_view numberIn(std::string_view text)
{
    text.remove_prefix(skipSpace(text, 0));
    const bool isPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return isPlus ? text.substr(1) : text;
}

std::vector<std::string_view> splitAtSpace(std::string_view text, size_t limit)
{
    std::vector<std::string_view> words;
    size_t at = skipSpace(text, 0);
    while (at < text.size() && words.size() + 1 < limit) {
        const size_t end = skipWord(text, at);
        words.push_back(text.substr(at, end - at));
        at = skipSpace(text, end);
    }
    if (at < text.size())
        words.push_back(text.substr(at));
    return words;
}
} // namespace

bool osl_startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

bool osl_endsWith(std::string_view text, std::string_view suffix)
{
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

int osl_getChar(std::string_view text, int index)
{
    const bool isInside = index >= 0 && static_cast<size_t>(index) < text.size();
    return isInside ? static_cast<unsigned char>(text[static_cast<size_t>(index)]) : 0;
}

std::string_view osl_substr(std::string_view text, int start, int length)
{
    const long long size = static_cast<long long>(text.size());
    const long long from = std::clamp(start < 0 ? start + size : start, 0LL, size);
    return text.substr(static_cast<size_t>(from), static_cast<size_t>(std::max(length, 0)));
}

int osl_stoi(std::string_view text)
{
    text = numberIn(text);
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range)
        return text[0] == '-' ? INT_MIN : INT_MAX;
    return value;
}

float osl_stof(std::string_view text)
{
    text = numberIn(text);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return static_cast<float>(value);
}

std::vector<std::string_view> osl_split(std::string_view text, std::string_view separator,
                                        int limit)
{
    if (limit <= 0)
        return {};
    const size_t most = static_cast<size_t>(limit);
    if (separator.empty())
        return splitAtSpace(text, most);
    std::vector<std::string_view> words;
    size_t at = 0;
    while (words.size() + 1 < most) {
        const size_t end = text.find(separator, at);
        if (end == std::string_view::npos)
            break;
        words.push_back(text.substr(at, end - at));
        at = end + separator.size();
    }
    words.push_back(text.substr(at));
    return words;
}
