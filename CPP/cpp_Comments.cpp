// Stage "strip": takes the comments out of a line, in place.
//
// A block comment becomes blanks, so that what follows it stays in its column;
// a line comment cuts the line. Comment signs inside quotes count as text, and
// so does a quote that nothing closes on its line.
#include "CPP/CPP_Manager.h"

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
} // namespace

// Blanks out an open block comment from `from` on. Returns where text goes on;
// the line's length when the comment does not end on this line.
int CPP_Manager::skipBlockComment(UT_ScratchBuffer &line, int from)
{
    char *start = line.buffer() + from;
    const auto *end = static_cast<const char *>(
        memmem(start, static_cast<size_t>(line.length() - from), "*/", 2));
    setFlag(IN_BLOCK_COMMENT, end == nullptr);
    if (end == nullptr) {
        line.truncate(from);
        line.append('\n');
        return line.length();
    }
    const auto length = static_cast<size_t>(end + 2 - start);
    std::memset(start, ' ', length);
    return from + static_cast<int>(length);
}

void CPP_Manager::stripComments(UT_ScratchBuffer &line)
{
    int i = hasFlag(IN_BLOCK_COMMENT) ? skipBlockComment(line, 0) : 0;
    const bool strips = hasFlag(STRIP_COMMENTS);
    const bool bySlash = strips && !hasFlag(KEEP_SLASH_COMMENTS) && holds(line, '/');
    const bool byHash =
        strips && hasFlag(HASH_COMMENTS) && line.buffer()[0] != '#' && holds(line, '#');
    if (!bySlash && !byHash)
        return;

    QuoteFinder quotes;
    while (i < line.length()) {
        const char *here = line.buffer() + i;
        if (*here == '"' || *here == '\'') {
            const int end = quotes.close(line, i);
            i = end < 0 ? i + 1 : end + 1;
        } else if (bySlash && here[0] == '/' && here[1] == '/') {
            line.truncate(i);
            line.append('\n');
            return;
        } else if (bySlash && here[0] == '/' && here[1] == '*') {
            std::memset(line.buffer() + i, ' ', 2);
            i = skipBlockComment(line, i + 2);
        } else if (byHash && *here == '#' && i > 0) {
            line.truncate(i);
            return;
        } else {
            ++i;
        }
    }
}
