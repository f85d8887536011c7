#include "tests/support/PlainText.h"

#include <cctype>
#include <cstring>

namespace
{
bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool same(char a, char b, bool caseSensitive)
{
    return caseSensitive ? a == b
                         : std::toupper(static_cast<unsigned char>(a)) ==
                               std::toupper(static_cast<unsigned char>(b));
}

// Reads the word at `i`, which is moved behind it.
std::string plainWord(const std::string &text, size_t &i)
{
    std::string word;
    char previous = '\0';
    while (i < text.size() && !isSpace(text[i])) {
        const char c = text[i++];
        if (c != '"' && c != '\'') {
            word += c;
        } else if (previous == '\\') {
            word.back() = c;
        } else {
            while (i < text.size() && (text[i] != c || text[i - 1] == '\\'))
                word += text[i++];
            if (i < text.size())
                ++i;
        }
        previous = c;
    }
    return word;
}
} // namespace

std::vector<std::string> plainSplitWords(const std::string &text)
{
    std::vector<std::string> words;
    for (size_t i = 0; i < text.size();) {
        if (isSpace(text[i]))
            ++i;
        else
            words.push_back(plainWord(text, i));
    }
    return words;
}

bool plainMatch(const char *text, const char *pattern, bool caseSensitive)
{
    switch (*pattern) {
    case '\0':
        return *text == '\0';
    case '*':
        return plainMatch(text, pattern + 1, caseSensitive) ||
               (*text != '\0' && plainMatch(text + 1, pattern, caseSensitive));
    case '?':
        return *text != '\0' && plainMatch(text + 1, pattern + 1, caseSensitive);
    case '[': {
        const char *end = std::strchr(pattern, ']');
        bool listed = false;
        for (const char *p = pattern + 1; end != nullptr && p < end; ++p)
            listed = listed || (*text != '\0' && same(*p, *text, caseSensitive));
        return listed && plainMatch(text + 1, end + 1, caseSensitive);
    }
    case '\\':
        pattern += pattern[1] != '\0';
        [[fallthrough]];
    default:
        return *text != '\0' && same(*pattern, *text, caseSensitive) &&
               plainMatch(text + 1, pattern + 1, caseSensitive);
    }
}

std::string joined(const std::vector<std::string> &words)
{
    std::string all;
    for (const std::string &word : words)
        all += word + '|';
    return all;
}

void forEachString(const std::string &alphabet, size_t longest,
                   const std::function<void(const std::string &)> &visit)
{
    std::vector<std::string> strings{""};
    for (size_t i = 0; i < strings.size(); ++i) {
        const std::string text = strings[i];
        visit(text);
        if (text.size() == longest)
            continue;
        for (const char c : alphabet)
            strings.push_back(text + c);
    }
}
