#include "tests/support/PlainText.h"

#include "UT/UT_String.h"
#include "tests/support/PlainScanner.h"

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

// What stands behind the quote here up to its like with no backslash in front, or the end.
std::string takeQuoted(PlainScanner &in)
{
    const std::string quote(1, in.text[in.at++]);
    const std::string inside = in.take(("([^\\\\" + quote + "]|\\\\" + quote + "?)*").c_str());
    in.take((quote + "?").c_str());
    return inside;
}

// "{...}" with as many of each; "" when they do not come out even.
std::string takeBraces(PlainScanner &in)
{
    int depth = 0;
    for (size_t i = in.at, start = i; i < in.text.size(); ++i) {
        depth += (in.text[i] == '{') - (in.text[i] == '}');
        if (depth == 0)
            return in.text.substr(start, (in.at = i + 1) - start);
    }
    return "";
}
} // namespace

std::vector<std::string> plainSplitWords(const std::string &text)
{
    std::vector<std::string> words;
    for (PlainScanner in{text}; in.take("\\s*"), !in.isAtEnd();) {
        words.emplace_back();
        for (std::string plain; !in.isAtEnd() && !isSpace(in.next());) {
            if ((plain = in.take("[^\\s\"']*[^\\s\"'\\\\]|\\\\(?![\"'])")).empty())
                plain = in.took("\\\\") ? in.take("[\"']") : takeQuoted(in);
            words.back() += plain;
        }
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

std::string PlainExpansion::of(const std::string &text, bool isNested)
{
    static const char *const COMMENT = "//[^\\n]*\\n?|/\\*([^*]|\\*(?!/))*(\\*/)?";
    std::string out, name;
    char previous = '\0';
    size_t commentEnd = 0;
    for (PlainScanner in{text}; !in.isAtEnd();) {
        const size_t start = in.at;
        const char c = in.next();
        const bool isEscaped = previous == '\\' && std::strchr("`$~'\\", c) != nullptr;
        if (isEscaped)
            out.pop_back();
        else if (!inComments && !isNested && start >= commentEnd)
            commentEnd = start + PlainScanner{text, start}.take(COMMENT).size();
        if (isEscaped || start < commentEnd) {
            out += text[in.at++];
        } else if (in.took("\\$(?=\\{)")) {
            const std::string braces = takeBraces(in);
            if (braces.empty())
                return out + text.substr(start);
            out += valueOf(of(braces.substr(1, braces.size() - 2), true), "");
        } else if (!(name = in.take("\\$\\w+")).empty()) {
            const int length = in.next() == ':' ? UT_String::modifierNameLength(&text[in.at]) : 0;
            const std::string modifiers = text.substr(in.at, static_cast<size_t>(length));
            in.at += modifiers.size();
            out += valueOf(name.substr(1), modifiers);
        } else if (c == '~' && (previous == '\0' || isSpace(previous))) {
            name = in.take("~[A-Za-z0-9]*");
            out += name == "~" ? home : name;
            count += name == "~";
        } else if (c == '`' && runsCommands && !isNested) {
            out += '<' + takeQuoted(in) + '>';
            ++count;
        } else {
            out += c == '\'' ? takeQuoted(in) : std::string(1, text[in.at++]);
            previous = c == '\'' ? '\0' : c;
            continue;
        }
        previous = isEscaped && c == '\\' ? '\0' : text[in.at - 1];
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

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
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
