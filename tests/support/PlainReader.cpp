#include "tests/support/PlainReader.h"

#include "UT/UT_ScratchBuffer.h"

#include <functional>

bool PlainReader::skipWhitespace()
{
    take("\\s*");
    return !isAtEnd();
}

bool PlainReader::skipPast(char delimiter)
{
    std::string skipped;
    return getLine(skipped, delimiter);
}

bool PlainReader::getLine(std::string &to, char delimiter)
{
    if (isAtEnd())
        return false;
    const size_t end = text.find(delimiter, at);
    to = text.substr(at, end - at);
    at = std::min(end, text.size() - 1) + 1;
    if (end != text.npos && delimiter == '\n' && !to.empty() && to.back() == '\r')
        to.pop_back();
    return true;
}

bool PlainReader::getWord(std::string &to)
{
    return skipWhitespace() && !(to = take("\\S+")).empty();
}

bool PlainReader::getString(std::string &to)
{
    if (!skipWhitespace())
        return false;
    const bool isQuoted = took("\"");
    const std::string first = isQuoted || took("\\\\(?=\")") ? "" : take("[\\s\\S]");
    const std::string rest =
        take(isQuoted ? "([^\"\\\\]|\\\\[\"\\\\]?)*" : "([^\\s\\\\]|\\\\[\"\\\\]?)*");
    take(isQuoted ? "\"?" : "");
    to = first + std::regex_replace(rest, std::regex("\\\\([\"\\\\])"), "$1");
    return true;
}

int PlainReader::getNonCommentLine(std::string &to, char comment, bool)
{
    int lines = 0;
    for (to = ""; to.empty() && skipWhitespace(); ++lines) {
        getLine(to, '\n');
        to = to[0] == comment ? "" : to;
    }
    return lines;
}

namespace
{
// 1 for one without a fraction or an exponent, 2 with them.
int getNumber(PlainReader &in, std::string &to)
{
    if (!in.skipWhitespace())
        return 0;
    to = in.take("(?=[-+.0-9])[-+]?[0-9]*(\\.[0-9]*)?([eE][-+]?[0-9]*)?");
    return to.empty() ? in.getWord(to) : to.find_first_of(".eE") == to.npos ? 1 : 2;
}

int getNumber(UT_IStream &is, UT_ScratchBuffer &to)
{
    bool isFloating = false;
    const bool isFound = is.getSource().getNumberToken(to, isFloating);
    return isFound + (isFound && isFloating);
}

// The next character, which must come again after going back; -2 when it does not.
int getTwice(PlainReader &in)
{
    return in.isAtEnd() ? -1 : static_cast<signed char>(in.text[in.at++]);
}

int getTwice(UT_IStream &is)
{
    const int64_t before = is.tellg();
    const int peeked = is.peekChar(), c = is.getChar();
    const int64_t moved = is.tellg() - before; // byte 255 looks like the end
    const bool isAlike = static_cast<char>(peeked) == static_cast<char>(c);
    return isAlike && is.unread(1) == moved && is.getChar() == c ? c : -2;
}

template <class Reader, class Text>
std::string answer(size_t reader, Reader &in, Text &to)
{
    const std::function<int()> readings[PlainReader::READERS] = {
        [&] { return in.getLine(to, ';'); }, [&] { return in.getLine(to, '\n'); },
        [&] { return in.getWord(to); },      [&] { return in.getString(to); },
        [&] { return getNumber(in, to); },   [&] { return in.getNonCommentLine(to, ';', false); },
        [&] { return in.skipWhitespace(); }, [&] { return in.skipPast(';'); },
        [&] { return getTwice(in); },
    };
    return std::to_string(readings[reader]()) + " [";
}
} // namespace

std::string PlainReader::read(size_t reader)
{
    std::string found;
    const std::string start = answer(reader, *this, found);
    return start + found + "] " + std::to_string(at);
}

std::string readFrom(UT_IStream &is, size_t reader)
{
    UT_ScratchBuffer found;
    const std::string start = answer(reader, is, found);
    return start + std::string(found.buffer(), static_cast<size_t>(found.length())) + "] " +
           std::to_string(is.tellg()) + (is.hasError() ? " error" : "");
}
