// Skipped lines: whole lines at the front of skipped text, as far as it can be told without
// the stages what they do to the open conditionals.
//
// Most of what is skipped are definitions, other conditionals and comments.
#pragma once

#include "CPP/lines/cpp_DirectiveWords.h"

#include <string_view>

class CPP_File;
class cpp_MacroTable;

struct cpp_SkippedLine {
    const char *end = nullptr; // behind its newline, or that of the comment that ends it;
                               // null: the line is left to the stages
    const cpp_DirectiveWord *directive = nullptr; // null: it is none
    bool isOneLine = false;                       // no comment goes on behind it
    std::string_view condition = {};              // what stands behind the directive's word

    bool is(cpp_DirectiveNumber number) const
    {
        return directive != nullptr && directive->number == number;
    }
};

// With `strips`, "//" and "/*" start comments. A line whose end only the stages find, and a
// directive that is unknown, are left to them. O(length of the line).
cpp_SkippedLine readSkippedLine(bool strips, const char *from, const char *end);

// Takes the skipped lines of a file that are in memory, up to where text counts again or to a
// line for the stages, and has them change the file's conditionals. Returns their number,
// which is bounded.
int skipLines(CPP_File &file, const cpp_MacroTable &macros, bool strips);
