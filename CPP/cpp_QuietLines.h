// Quiet lines: whole lines at the front of a text that leave nothing but empty lines.
//
// These are definitions of new macros without parameters, and comments with lines of their
// own: what headers consist of. Taking them at once spares them the stages.
#pragma once

class cpp_MacroTable;

// Takes all quiet lines and defines their macros. Returns the place behind them, `from`
// when there are none. With `strips`, "//" and "/*" start comments. A line that may go on
// behind `end`, or that holds a backslash or a quote in front of a comment, is not quiet.
const char *takeQuietLines(cpp_MacroTable &macros, bool strips, const char *from, const char *end);

// Whether a slash is the first of "//" or of the sign of a block comment.
bool startsComment(const char *slash, const char *end);

// Behind the line on which the comment ends that a slash starts; null when it is none, or
// when anything else than white space follows it, or when lines may be joined.
const char *skipComment(const char *slash, const char *end);
