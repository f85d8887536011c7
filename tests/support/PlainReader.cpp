#include "tests/support/PlainReader.h"

#include "UT/UT_ScratchBuffer.h"

#include <cctype>
#include <regex>

namespace
{
bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

std::string told(int answer, const std::string &found, int64_t position, bool hasError)
{
    return std::to_string(answer) + " [" + found + "] " + std::to_string(position) +
           (hasError ? " error" : "");
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

int PlainReader::number(Text &found)
{
    static const std::regex form("(?=[-+.0-9])[-+]?[0-9]*(\\.[0-9]*)?([eE][-+]?[0-9]*)?");
    std::cmatch match;
    if (!skipSpace())
        return 0;
    const char *const from = text.data() + position, *const end = text.data() + text.size();
    if (!std::regex_search(from, end, match, form, std::regex_constants::match_continuous))
        return (found = word()).has_value();
    position += static_cast<size_t>(match.length());
    found = match.str();
    return match.length(1) + match.length(2) > 0 ? 2 : 1;
}

int PlainReader::nonCommentLine(Text &found, char comment)
{
    int lines = 0;
    while ((!found || found->empty()) && skipSpace()) {
        found = line('\n');
        if ((*found)[0] == comment)
            found = "";
        ++lines;
    }
    return lines;
}

std::string PlainReader::read(size_t reader)
{
    using Reading = int (*)(PlainReader &, Text &);
    static constexpr Reading READINGS[READERS - 1] = {
        [](PlainReader &p, Text &to) -> int { return (to = p.line(';')).has_value(); },
        [](PlainReader &p, Text &to) -> int { return (to = p.line('\n')).has_value(); },
        [](PlainReader &p, Text &to) -> int { return (to = p.word()).has_value(); },
        [](PlainReader &p, Text &to) -> int { return (to = p.string()).has_value(); },
        [](PlainReader &p, Text &to) -> int { return p.number(to); },
        [](PlainReader &p, Text &to) -> int { return p.nonCommentLine(to, ';'); },
        [](PlainReader &p, Text &) -> int { return p.skipSpace(); },
        [](PlainReader &p, Text &) -> int { return p.line(';').has_value(); },
    };
    Text found;
    const int character = isAtEnd() ? -1 : static_cast<signed char>(text[position]);
    const bool isCharacter = reader == READERS - 1;
    position += isCharacter && !isAtEnd();
    const int answer = isCharacter ? character : READINGS[reader](*this, found);
    return told(answer, found.value_or(""), static_cast<int64_t>(position), false);
}

namespace
{
int getNumber(UT_IStream &is, UT_ScratchBuffer &to)
{
    bool isFloating = false;
    const bool isFound = is.getSource().getNumberToken(to, isFloating);
    return isFound + (isFound && isFloating);
}

// The next character, which must come again after going back; -2 when it does not.
int getTwice(UT_IStream &is, UT_ScratchBuffer &)
{
    const int64_t before = is.tellg();
    const int peeked = is.peekChar(), c = is.getChar();
    const int64_t moved = is.tellg() - before; // byte 255 looks like the end
    const bool isAlike = static_cast<char>(peeked) == static_cast<char>(c);
    return isAlike && is.unread(1) == moved && is.getChar() == c ? c : -2;
}
} // namespace

std::string readFrom(UT_IStream &is, size_t reader)
{
    using Reading = int (*)(UT_IStream &, UT_ScratchBuffer &);
    static constexpr Reading READINGS[PlainReader::READERS] = {
        [](UT_IStream &s, UT_ScratchBuffer &to) -> int { return s.getLine(to, ';'); },
        [](UT_IStream &s, UT_ScratchBuffer &to) -> int { return s.getLine(to, '\n'); },
        [](UT_IStream &s, UT_ScratchBuffer &to) -> int { return s.getWord(to); },
        [](UT_IStream &s, UT_ScratchBuffer &to) -> int { return s.getString(to); },
        getNumber,
        [](UT_IStream &s, UT_ScratchBuffer &to) { return s.getNonCommentLine(to, ';', false); },
        [](UT_IStream &s, UT_ScratchBuffer &) -> int { return s.skipWhitespace(); },
        [](UT_IStream &s, UT_ScratchBuffer &) -> int { return s.skipPast(';'); },
        getTwice,
    };
    UT_ScratchBuffer found;
    const int answer = READINGS[reader](is, found);
    const std::string text(found.buffer(), static_cast<size_t>(found.length()));
    return told(answer, text, is.tellg(), is.hasError());
}
