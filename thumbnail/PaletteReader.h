// Has a palette file's thumb nail rendered. PaletteHead.h tells what a palette holds.
#pragma once

class UT_Args;

// Handles one palette file to its end: reads it, chooses a renderer, runs it.
// The picture takes the file's name with ".jpg" in place of ".palette", or behind
// a name that does not end so. Failures go to reportError. The file is only read.
// A file that cannot be read to the end of its head gives no picture.
void readPalette(const char *fileName, UT_Args &args);
