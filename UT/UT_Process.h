// What each of our programs does first, so that a failing machine gets a message and a
// status in place of a crash.
#pragma once

#include <cstddef>

// Call it before anything else in main():
//
// - When memory runs out, operator new ends the process as UTallocate() does.
// - Descriptors 0 to 2 that somebody closed are opened so that reading or writing them
//   fails as before. The next file opened would take their place otherwise, and a
//   message would be written into it.
// - To write beyond a limit on file sizes fails (EFBIG) where it would end the process.
//   Programs that are started from here have the signal's default again.
// - A HOME that is not set becomes that of the user database (POSIX getpwuid), or empty: a
//   folder where everybody may write must not stand for it, since templates are found there.
void UTstartProgram();

// Ends the process with "Out of memory" on standard error and status 1. Takes no memory;
// of several threads the first one speaks.
[[noreturn]] void UTdieWithoutMemory();

// Replaces what could steer a terminal or forge a message's lines by '?': control
// characters other than the tab, also those of ISO 6429's second set, as UTF-8 or as a byte;
// other line ends, and what turns the direction of writing. For text from outside that goes
// into a message.
void UTmakePrintable(char *text, size_t length);
