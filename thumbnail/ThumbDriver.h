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
#pragma once

// Everything main does. Returns 0 after the last palette, whatever became of
// each; a command line without a palette ends the process through usage().
int runThumbDriver(int argc, char *argv[]);

// Writes the usage text to standard error, quiet or not, and ends the process
// with status 1.
[[noreturn]] void usage();
