// What is the same for all palettes of a run, and the messages that all parts write.
//
// Set once, by runThumbDriver, before the first palette.
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

// Writes one message and a newline to standard error, in a single write so that
// it cannot mix with the renderer's own; nothing when quiet. `format` takes one
// %s, which is `arg`. Text from outside belongs into `arg`, never into `format`; its
// control characters are written as '?'.
void reportError(const char *format, const char *arg);
