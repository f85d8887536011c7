// Runs: whole lines at the front of a text that hold nothing any stage acts on.
//
// A kept run is copied out as it is: no directive, comment, quote, backslash or
// word, no line that only seems empty. A dropped run, in skipped text or inside a
// block comment, becomes as many empty lines: nothing in it can end that state or
// join two lines.
#pragma once

enum class cpp_RunKind { KEPT, DROPPED };

// Where the longest run at the front of a text ends: behind a newline, or at `from`.
// O(length up to the first byte that a stage acts on).
const char *runEnd(cpp_RunKind kind, const char *from, const char *end);

// A place up to which nothing ends a kept run, reached in large steps.
const char *skipInert(const char *from, const char *end);

// The end of a line that no stage changes before it is looked at as a whole: a newline, or
// else a slash, backslash, carriage return or NUL in front of it, or `end`.
const char *simpleLineEnd(const char *from, const char *end);

// Behind the letters, digits and '_' at the front of a text.
const char *nameEnd(const char *from, const char *end);

int countLines(const char *from, const char *end); // newlines

// The same, a byte at a time, for machines that compare no vectors.
const char *runEndByBytes(cpp_RunKind kind, const char *from, const char *end);
