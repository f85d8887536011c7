// What the text readers of UT_IStream find, told over a text that is there as a
// whole. Each reader gives nothing where the stream's one fails.
#pragma once

#include "UT/UT_IStream.h"
#include "tests/support/PlainScanner.h"

#include <optional>
#include <string_view>

struct PlainReader : PlainScanner {
    using Text = std::optional<std::string>;
    static constexpr size_t READERS = 9;

    bool skipSpace();
    Text line(char delimiter);
    Text word();
    Text string();
    int number(Text &found); // 1 for one without a fraction or an exponent, 2 with them
    int nonCommentLine(Text &found, char comment); // how many lines it took

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
