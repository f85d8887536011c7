// Where a line ends, told from the bytes in memory: for those who take whole lines of a file
// at once and so spare them the stages.
//
// Only ends that no stage would see otherwise count. A line that may be joined with the next
// one, that may go on behind the bytes at hand, or that has a quote in front of a comment,
// has none here and is left to the stages.
#pragma once

struct cpp_LineEnd {
    const char *stop = nullptr;   // behind the line's text, at its newline or its comment
    const char *behind = nullptr; // its newline, or that of the comment; null: there is none

    explicit operator bool() const { return behind != nullptr; }
    bool isComment() const { return *stop == '/'; }
};

// The end of the line that holds `from`. With `strips`, "//" and "/*" start comments.
// O(length of the line and its comment).
cpp_LineEnd findLineEnd(bool strips, const char *from, const char *end);

// Behind the line on which the comment ends that a slash starts; null when it is none, or
// when anything else than white space follows it, or when lines may be joined.
const char *skipComment(const char *slash, const char *end);
