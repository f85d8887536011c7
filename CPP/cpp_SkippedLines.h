// Skipped lines: one whole line at the front of skipped text, as far as it can be told
// without the stages what it does to the open conditionals.
//
// Most of what is skipped are definitions, other conditionals and comments.
#pragma once

#include <string_view>

struct cpp_SkippedLine {
    enum Kind {
        UNKNOWN, // left to the stages: it may be joined, or hold a quote before a comment
        TEXT,    // nothing
        OPENS,   // a conditional inside skipped text
        ELIF,
        ELSE,
        CLOSES
    };

    Kind kind = UNKNOWN;
    const char *end = nullptr; // behind its newline, or that of the comment that ends it
    bool isOneLine = false;    // no comment goes on behind it
    std::string_view condition = {};
};

// With `strips`, "//" and "/*" start comments. UNKNOWN also when the line may go on behind
// `end`. O(length of the line).
cpp_SkippedLine readSkippedLine(bool strips, const char *from, const char *end);
