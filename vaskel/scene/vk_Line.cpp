#include "vaskel/scene/vk_Line.h"

namespace
{
// With the carriage return: lines may come from a system that ends them with two characters.
constexpr std::string_view BLANKS = " \t\r\n\v\f";

bool isBlank(char c)
{
    return BLANKS.find(c) != std::string_view::npos;
}
bool isQuote(char c)
{
    return c == '"' || c == '\'';
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

// Appends the word that begins at `at` and moves behind it; false when a quote
// is left open.
bool takeWord(std::string_view line, std::size_t &at, std::string &word)
{
    while (at < line.size() && !isBlank(line[at])) {
        if (!isQuote(line[at])) {
            word += line[at++];
            continue;
        }
        // No escapes: a backslash is a character of names like any other.
        const std::size_t close = line.find(line[at], at + 1);
        if (close == std::string_view::npos)
            return false;
        word += line.substr(at + 1, close - at - 1);
        at = close + 1;
    }
    return true;
}
} // namespace

bool vk_splitLine(std::string_view line, vk_Words &words, std::string &error)
{
    words.clear();
    // It would end the text for whatever C function sees it next.
    if (line.find('\0') != std::string_view::npos) {
        error = "expected text, found a zero byte";
        return false;
    }
    line = trimmed(line);
    // At the line's start only, where a preprocessor leaves its line markers: elsewhere a '#' may
    // belong to a name.
    if (!line.empty() && line[0] == '#')
        return true;
    std::size_t at = 0;
    // Within a word two slashes are no comment: they are part of a path.
    while (at < line.size() && line.substr(at, 2) != "//") {
        if (isBlank(line[at])) {
            ++at;
            continue;
        }
        words.emplace_back();
        if (!takeWord(line, at, words.back())) {
            error = "expected a closing quote on the same line";
            return false;
        }
    }
    return true;
}

bool vk_fileName(std::string_view line, std::string &name, std::string &error)
{
    line = trimmed(line);
    const std::size_t word = line.find_first_of(BLANKS);
    const std::string_view rest =
        word == std::string_view::npos ? std::string_view() : trimmed(line.substr(word));
    // Writers put every name in double quotes and escape none; so what lies between the first and
    // the last is the name, further quotes included.
    if (!rest.empty() && rest[0] == '"' && rest.size() > 1) {
        const std::size_t last = rest.rfind('"');
        name = rest.substr(1, last - 1);
        if (last != 0 && last == rest.size() - 1 && !name.empty())
            return true;
    }
    // Also where something stands behind the last quote, a comment mostly.
    vk_Words words;
    if (!vk_splitLine(rest, words, error))
        return false;
    if (words.size() != 1 || words[0].empty()) {
        error = "expected one file name, in double quotes if it holds blanks";
        return false;
    }
    name = words[0];
    return true;
}
