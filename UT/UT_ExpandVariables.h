// Expansion of the references that users write into texts.
//
//   $NAME     value of the variable NAME: letters, digits and '_'
//   ${text}   the same for any name; `text` is expanded first, as a text of its own
//             in which everything below but commands works
//   $F4       value of F, padded to 4 characters: with zeros behind its sign for a
//             number, with blanks in front for other texts. Widths above 9999 count
//             as 9999.
//   $NAME:t   value with modifiers (UT_String::applyModifiers), unless the toggle
//             VELDRIN8_COMPATIBILITY is 1. Not behind a brace.
//   ~ ~user   at the start or behind white space: the HOME setting, or that user's
//             home directory
//   `text`    what the command runner gives for `text`; without a runner, ordinary
//   'text'    `text` as it is, the quotes gone
//   \x        x itself, for a backquote, '$', '~', "'" and a second backslash; a
//             backslash in front of any other character stays
//
// Nothing fails. A variable that is not set gives nothing; an unknown user, and a '$'
// without a name, stay as written; a "${" without its '}' stays with all that
// follows; an open quote ends the text. A value is never expanded itself.
//
// Cost: one pass over the text for any depth of braces, without recursion.
#pragma once

class UT_ScratchBuffer;

// The value for a name, or the output of a command; null when there is none. `data`
// is what the caller of the expansion passed. The text is copied at once.
using UT_VariableLookup = const char *(*)(const char *name, void *data);
using UT_CommandRunner = const char *(*)(const char *command, void *data);

// Replaces `out`, which must not hold `in`, by the expanded text; a null `in` gives
// "". Returns how many references, home directories and commands were replaced.
// A null `lookup` means UTgetenv. With `expandInComments` false, texts from "//" to
// the end of the line and from "/*" to "*/" are copied; only \x works in them.
int UTexpandVariables(UT_ScratchBuffer &out, const char *in, UT_VariableLookup lookup,
                      UT_CommandRunner commandRunner, void *data, bool expandDollar,
                      bool expandTilde, bool expandInComments);

// The same with '$' and without commands.
int UTexpandVariables(UT_ScratchBuffer &out, const char *in, UT_VariableLookup lookup, void *data,
                      bool expandTilde, bool expandInComments);
