#include "tests/support/PlainText.h"

#include "UT/UT_String.h"

#include <algorithm>
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

// Where the run of these characters and of letters and digits ends.
size_t endOfName(const std::string &text, size_t i, char also)
{
    while (i < text.size() &&
           (std::isalnum(static_cast<unsigned char>(text[i])) != 0 || text[i] == also))
        ++i;
    return i;
}

// Behind the next `end`, or the end of the text.
size_t behind(const std::string &text, const char *end, size_t from)
{
    const size_t at = text.find(end, from);
    return at == std::string::npos ? text.size() : at + std::strlen(end);
}

// The like of the quote at `i` that no backslash precedes, or the end.
size_t closingQuote(const std::string &text, size_t i)
{
    size_t at = i + 1;
    while (at < text.size() && (text[at] != text[i] || text[at - 1] == '\\'))
        ++at;
    return at;
}

// Behind the '}' for the '{' at `i`; npos without one.
size_t behindBraces(const std::string &text, size_t i)
{
    int depth = 0;
    for (; i < text.size(); ++i) {
        depth += (text[i] == '{') - (text[i] == '}');
        if (depth == 0)
            return i + 1;
    }
    return std::string::npos;
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

std::string PlainExpansion::valueOf(const std::string &name, const std::string &modifiers)
{
    const bool isFrame = name.size() > 1 && name[0] == 'F' &&
                         name.find_first_not_of("0123456789", 1) == std::string::npos;
    const auto found = variables.find(isFrame ? "F" : name);
    if (found == variables.end())
        return "";
    ++count;
    std::string value = found->second;
    const auto isDigit = [&value](size_t i) { return value[i] >= '0' && value[i] <= '9'; };
    const size_t sign = !value.empty() && std::strchr("+-", value[0]) && isDigit(1) ? 1 : 0;
    const size_t width = isFrame ? std::stoul(name.substr(1)) : 0;
    if (width > value.size())
        value.insert(sign, width - value.size(), isDigit(sign) ? '0' : ' ');
    UT_String modified(value.c_str());
    modified.applyModifiers(modifiers.c_str());
    return modified.toStdString();
}

std::string PlainExpansion::of(const std::string &in, bool isNested)
{
    std::string out;
    char previous = '\0';
    size_t commentEnd = 0;
    for (size_t i = 0, next; i < in.size(); i = next) {
        const char c = in[i];
        const char following = i + 1 < in.size() ? in[i + 1] : '\0';
        next = i + 1;
        const bool isEscaped = previous == '\\' && std::strchr("`$~'", c) != nullptr;
        const bool startsWord = previous == '\0' || isSpace(previous);
        const bool isComment = c == '/' && (following == '/' || following == '*');
        if (previous == '\\' && c == '\\') {
            previous = '\0';
            continue;
        }
        if (isEscaped)
            out.pop_back();
        else if (isComment && !inComments && !isNested && i >= commentEnd)
            commentEnd = behind(in, following == '/' ? "\n" : "*/", i + 2);
        if (isEscaped || i < commentEnd) {
            out += c;
        } else if (c == '$' && following == '{') {
            next = behindBraces(in, i + 1);
            if (next == std::string::npos)
                return out + in.substr(i);
            out += valueOf(of(in.substr(i + 2, next - i - 3), true), "");
        } else if (c == '$' && endOfName(in, i + 1, '_') > i + 1) {
            const size_t end = endOfName(in, i + 1, '_');
            const int length = in[end] == ':' ? UT_String::modifierNameLength(&in[end]) : 0;
            next = end + static_cast<size_t>(length);
            out += valueOf(in.substr(i + 1, end - i - 1), in.substr(end, next - end));
        } else if (c == '~' && startsWord) {
            next = endOfName(in, i + 1, '\0');
            out += next == i + 1 ? home : in.substr(i, next - i);
            count += next == i + 1;
        } else if (c == '`' && runsCommands && !isNested) {
            next = std::min(closingQuote(in, i) + 1, in.size());
            out += '<' + in.substr(i + 1, closingQuote(in, i) - i - 1) + '>';
            ++count;
        } else if (c == '\'') {
            next = std::min(closingQuote(in, i) + 1, in.size());
            out += in.substr(i + 1, closingQuote(in, i) - i - 1);
        } else {
            out += c;
        }
        previous = c == '\'' && !isEscaped && i >= commentEnd ? '\0' : in[next - 1];
    }
    return out;
}

std::string joined(const std::vector<std::string> &words)
{
    std::string all;
    for (const std::string &word : words)
        all += word + '|';
    return all;
}

std::string repeated(const std::string &text, int times)
{
    std::string all;
    while (times-- > 0)
        all += text;
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
