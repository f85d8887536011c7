// Stage "strip": takes the comments out of a line, in place.
//
// A line comment cuts the line. A block comment becomes blanks, so that what
// follows it stays in its column; one that goes on on the next line cuts this
// one behind its sign. Comment signs inside quotes are text. A quote is closed
// by the next of its kind not directly behind a backslash; one that nothing
// closes on its line hides nothing.
#pragma once

class UT_ScratchBuffer;

// `bySlash`: "//" and "/*" start comments. `byHash`: '#' starts a line comment,
// but not on a line that begins with one; its newline goes too. `isOpen`: the
// line begins inside a block comment. Returns whether it ends inside one.
// O(length), however many quotes are left open.
[[nodiscard]] bool stripComments(UT_ScratchBuffer &line, bool bySlash, bool byHash, bool isOpen);
