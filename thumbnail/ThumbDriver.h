// The run of thumbrender: its command line, its usage text, its messages.
//
// A palette is a file that holds one shader; its picture (the thumb nail) lies
// beside it, with ".jpg" in place of ".palette". Palettes are handled one after
// the other, each until its renderer has ended, in the order given.
//
// Options, all before the first palette:
//     -b           no background         -g type      sphere, grid, cylinder, teapot
//     -s           no shadows            -r renderer  instead of VELDRIN_THUMB_RENDER
//     -q           no messages
//
// The state below is set once, by runThumbDriver, before the first palette.
#pragma once

#include "UT/UT_String.h"

// The name for the usage text: argv[0] behind its last '/', not a copy.
extern const char *theProgramName;

// 1 when reportError is to stay silent, else 0.
extern int theQuietFlag;

// The renderer asked for with -r or VELDRIN_THUMB_RENDER; null when nobody did.
extern const char *theRendererName;

// ".palette" and ".jpg".
extern const UT_String thePaletteSuffix;
extern const UT_String thePictureSuffix;

// Everything main does. Returns 0 after the last palette, whatever became of
// each; a command line without a palette ends the process through usage().
int runThumbDriver(int argc, char *argv[]);

// Writes the usage text to standard error, quiet or not, and ends the process
// with status 1.
[[noreturn]] void usage();

// Writes one message and a newline to standard error, in a single write so that
// it cannot mix with the renderer's own; nothing when quiet. `format` takes one
// %s, which is `arg`. Text from outside belongs into `arg`, never into `format`; its
// control characters are written as '?'.
void reportError(const char *format, const char *arg);
