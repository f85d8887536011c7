// Quiet lines: whole lines at the front of a text that leave nothing but empty lines.
//
// These are definitions of new macros without parameters, and comments with lines of their
// own: what headers consist of. Taking them at once spares them the stages.
#pragma once

class cpp_MacroTable;

// Takes all quiet lines and defines their macros. Returns the place behind them, `from`
// when there are none. With `strips`, "//" and "/*" start comments. A line whose end only
// the stages find (see cpp_LineEnd.h) is not quiet.
const char *takeQuietLines(cpp_MacroTable &macros, bool strips, const char *from, const char *end);
