// What the text readers of UT_IStream find, told over a text that is there as a whole.
#pragma once

#include "UT/UT_IStream.h"
#include "tests/support/PlainScanner.h"

#include <string_view>

// The names are the stream's. Comments inside of lines are text.
struct PlainReader : PlainScanner {
    static constexpr size_t READERS = 9;

    bool skipWhitespace();
    bool skipPast(char delimiter);
    bool getLine(std::string &to, char delimiter);
    bool getWord(std::string &to);
    bool getString(std::string &to);
    int getNonCommentLine(std::string &to, char comment, bool inLines = false);

    // One of the readers, by number, reads: what it answers and finds, and its new place.
    std::string read(size_t reader);
};

// The same with the stream's readers.
std::string readFrom(UT_IStream &is, size_t reader);

// A stream over a text that outlives it.
inline UT_IStream streamOver(std::string_view text, bool binary = false)
{
    return UT_IStream(text.data(), static_cast<int>(text.size()), binary);
}
