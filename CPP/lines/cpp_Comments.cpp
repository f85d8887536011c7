#include "CPP/lines/cpp_Comments.h"

#include "UT/UT_ScratchBuffer.h"

#include <cstring>

namespace
{
// Finds closing quotes: a quote not directly behind a backslash. Remembers that
// none of a kind is left, or else a line of unmatched quotes would be searched
// to its end for each of them.
class QuoteFinder
{
public:
    // Position of the quote that closes the one at `open`; -1 when there is none.
    int close(const UT_ScratchBuffer &line, int open)
    {
        const char *text = line.buffer();
        const char quote = text[open];
        bool &isUsedUp = quote == '"' ? noDoubleLeft : noSingleLeft;
        for (int i = open + 1; !isUsedUp && i < line.length(); ++i) {
            if (text[i] == quote && text[i - 1] != '\\')
                return i;
        }
        isUsedUp = true;
        return -1;
    }

private:
    bool noDoubleLeft = false;
    bool noSingleLeft = false;
};

bool holds(const UT_ScratchBuffer &line, char c)
{
    return std::memchr(line.buffer(), c, static_cast<size_t>(line.length())) != nullptr;
}

// The next slash from a position on; -1 when there is none.
int findSlash(const UT_ScratchBuffer &line, int from)
{
    const int length = line.length() - from;
    const void *slash =
        length > 0 ? std::memchr(line.buffer() + from, '/', static_cast<size_t>(length)) : nullptr;
    return slash != nullptr ? static_cast<int>(static_cast<const char *>(slash) - line.buffer())
                            : -1;
}

void cut(UT_ScratchBuffer &line, int length)
{
    line.truncate(length);
    line.append('\n');
}

// Blanks out an open block comment from `from` on. Position behind it; -1 when it
// does not end on this line, which is then cut.
int skipBlockComment(UT_ScratchBuffer &line, int from)
{
    char *text = line.buffer();
    int slash = findSlash(line, from + 1); // the sign's second character
    while (slash >= 0 && text[slash - 1] != '*')
        slash = findSlash(line, slash + 1);
    if (slash < 0) {
        cut(line, from);
        return -1;
    }
    std::memset(text + from, ' ', static_cast<size_t>(slash + 1 - from));
    return slash + 1;
}
} // namespace

bool stripComments(UT_ScratchBuffer &line, bool bySlash, bool byHash, bool isOpen)
{
    bySlash = bySlash && holds(line, '/');
    // The first character counts as it was written, also inside a comment.
    byHash = byHash && line.buffer()[0] != '#' && holds(line, '#');
    int i = isOpen ? skipBlockComment(line, 0) : 0;
    if (!bySlash && !byHash)
        return i < 0;

    QuoteFinder quotes;
    while (i >= 0 && i < line.length()) {
        const char *here = line.buffer() + i;
        if (*here == '"' || *here == '\'') {
            const int end = quotes.close(line, i);
            i = end < 0 ? i + 1 : end + 1;
        } else if (bySlash && here[0] == '/' && here[1] == '/') {
            cut(line, i);
            return false;
        } else if (bySlash && here[0] == '/' && here[1] == '*') {
            std::memset(line.buffer() + i, ' ', 2);
            i = skipBlockComment(line, i + 2);
        } else if (byHash && *here == '#' && i > 0) {
            line.truncate(i);
            return false;
        } else {
            ++i;
        }
    }
    return i < 0;
}
