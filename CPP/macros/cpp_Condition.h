// The expressions of #if and #elif.
//
// Values are 32-bit signed integers and wrap. From the tightest level down:
//   ! ~      * / %      + -      < > <= >=      == !=      & | ^      && ||
// Each level is left-associative; "&", "|" and "^" share one, and so do "&&" and
// "||". A '-' directly in front of a digit belongs to the number. Dividing by
// zero gives 1000, the remainder 0; "~" gives the low 16 bits.
//
// Macros are not expanded: a macro's name stands for the number at the start of
// its body (which must not be empty), any other name for 0. There are
//   defined(NAME)       whether there is such a macro
//   environment(NAME)   whether the environment has such a variable
//   access("path")      whether the file can be read; variables are expanded
//   strcmp(a, b)        C's strcmp; a macro's name stands for its body
// in all of which the first argument starts right behind the parenthesis.
#pragma once

class cpp_MacroTable;

// What was found on the way: why an expression is none, and the first macro in it whose body
// is no decimal number. Null where there is nothing to tell.
struct cpp_ConditionFault {
    const char *error = nullptr;
    const char *place = nullptr; // of the error, in the text
    const char *oddMacro = nullptr;
};

// 1 true (also any other number than 0), 0 false (also a blank text), -1 syntax error.
[[nodiscard]] int evaluateCondition(const cpp_MacroTable &macros, const char *text,
                                    cpp_ConditionFault *fault = nullptr);

// The newline behind the condition at the front of a text, where that is surely an expression
// which there is nothing to tell about: enough when its value does not matter. Null for less
// common forms as well: those have to be evaluated.
// REQUIRES: a newline in front of `end`
[[nodiscard]] const char *plainConditionEnd(const cpp_MacroTable &macros, const char *text,
                                            const char *end);
