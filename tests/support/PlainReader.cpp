#include "tests/support/PlainReader.h"

#include <cctype>
#include <regex>

namespace
{
bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
} // namespace

bool PlainReader::skipSpace()
{
    while (!isAtEnd() && isSpace(text[position]))
        ++position;
    return !isAtEnd();
}

PlainReader::Text PlainReader::line(char delimiter)
{
    if (isAtEnd())
        return {};
    const size_t end = text.find(delimiter, position);
    std::string found = text.substr(position, end - position);
    position = std::min(end, text.size() - 1) + 1;
    if (end != text.npos && delimiter == '\n' && !found.empty() && found.back() == '\r')
        found.pop_back();
    return found;
}

PlainReader::Text PlainReader::word()
{
    std::string found;
    if (!skipSpace())
        return {};
    while (!isAtEnd() && !isSpace(text[position]))
        found += text[position++];
    return found;
}

PlainReader::Text PlainReader::string()
{
    std::string found;
    if (!skipSpace())
        return {};
    const bool isQuoted = text[position] == '"';
    if (isQuoted || text.compare(position, 2, "\\\"") == 0)
        ++position;
    else
        found += text[position++];
    while (!isAtEnd() && !(isQuoted ? text[position] == '"' : isSpace(text[position]))) {
        char c = text[position++];
        if (c == '\\' && !isAtEnd() && (text[position] == '"' || text[position] == '\\'))
            c = text[position++];
        found += c;
    }
    position += isQuoted && !isAtEnd();
    return found;
}

PlainReader::Text PlainReader::number(bool isFloating)
{
    static const std::regex form("(?=[-+.0-9])[-+]?[0-9]*(\\.[0-9]*)?([eE][-+]?[0-9]*)?");
    std::cmatch match;
    if (!skipSpace())
        return {};
    const char *const from = text.data() + position, *const end = text.data() + text.size();
    if (!std::regex_search(from, end, match, form, std::regex_constants::match_continuous))
        return isFloating ? Text() : word();
    position += static_cast<size_t>(match.length());
    const bool hasMark = match.length(1) + match.length(2) > 0;
    return hasMark == isFloating ? Text(match.str()) : Text();
}

PlainReader::Text PlainReader::nonCommentLine(char comment, int &lines)
{
    Text found;
    lines = 0;
    while ((!found || found->empty()) && skipSpace()) {
        found = line('\n');
        if ((*found)[0] == comment)
            found = "";
        ++lines;
    }
    return found;
}
