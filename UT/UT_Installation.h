// Where an installed program finds the rest of its package: from its own place, so that
// nobody needs a variable and the tree works wherever it is moved to.
//
// A program counts as installed when the package's folder ("veldrin", with the templates)
// lies in the share folder that belongs to the program's own: with PREFIX/bin/vcpp that is
// PREFIX/share, or what the installation chose instead. Elsewhere, as in a build tree, these
// do nothing. Both change the environment store, which programs started from here inherit;
// call them in main(), before the settings are read.
#pragma once

// Sets VDX to that share folder when it is not set.
void UTuseInstalledData();

// Lets the program that is called `name` be found: when PATH leads to none, our own folder is
// searched behind all of PATH. So a PATH that has one decides.
void UTuseInstalledProgram(const char *name);
