#include "tests/support/PlainReader.h"

#include "UT/UT_ScratchBuffer.h"

namespace
{
std::string told(int answer, const std::string &found, int64_t position, bool hasError)
{
    return std::to_string(answer) + " [" + found + "] " + std::to_string(position) +
           (hasError ? " error" : "");
}
} // namespace

bool PlainReader::skipSpace()
{
    take("\\s*");
    return !isAtEnd();
}

PlainReader::Text PlainReader::line(char delimiter)
{
    if (isAtEnd())
        return {};
    const size_t end = text.find(delimiter, at);
    std::string found = text.substr(at, end - at);
    at = std::min(end, text.size() - 1) + 1;
    if (end != text.npos && delimiter == '\n' && !found.empty() && found.back() == '\r')
        found.pop_back();
    return found;
}

PlainReader::Text PlainReader::word()
{
    return skipSpace() ? Text(take("\\S+")) : Text();
}

PlainReader::Text PlainReader::string()
{
    if (!skipSpace())
        return {};
    const bool isQuoted = took("\"");
    const std::string first = isQuoted || took("\\\\(?=\")") ? "" : take("[\\s\\S]");
    const std::string rest =
        take(isQuoted ? "([^\"\\\\]|\\\\[\"\\\\]?)*" : "([^\\s\\\\]|\\\\[\"\\\\]?)*");
    take(isQuoted ? "\"?" : "");
    return first + std::regex_replace(rest, std::regex("\\\\([\"\\\\])"), "$1");
}

int PlainReader::number(Text &found)
{
    if (!skipSpace())
        return 0;
    found = take("(?=[-+.0-9])[-+]?[0-9]*(\\.[0-9]*)?([eE][-+]?[0-9]*)?");
    if (found->empty())
        return (found = word()).has_value();
    return found->find_first_of(".eE") == text.npos ? 1 : 2;
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
    const int character = isAtEnd() ? -1 : static_cast<signed char>(text[at]);
    const bool isCharacter = reader == READERS - 1;
    at += isCharacter && !isAtEnd();
    const int answer = isCharacter ? character : READINGS[reader](*this, found);
    return told(answer, found.value_or(""), static_cast<int64_t>(at), false);
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
