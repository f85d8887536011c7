// What the text readers of UT_IStream find, told over a text that is there as a
// whole. Each reader gives nothing where the stream's one fails.
#pragma once

#include <optional>
#include <string>

struct PlainReader {
    using Text = std::optional<std::string>;

    std::string text;
    size_t position = 0;

    bool isAtEnd() const { return position == text.size(); }
    bool skipSpace();
    Text line(char delimiter);
    Text word();
    Text string();
    Text number(bool isFloating); // only with the right `isFloating`

    Text nonCommentLine(char comment, int &lines);
};
