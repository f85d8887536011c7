// The process environment, kept sorted so that a look-up is a bisection.
//
// The first operation copies the entries that `environ` (POSIX) holds and points
// `environ` at the copy, so what is set here is inherited by child processes.
// Entries without a '=' are dropped. When something points `environ` elsewhere, the
// next operation copies again and frees the copy made before.
//
// The copy owns its entries: setenv, putenv and unsetenv of the C library must not
// be mixed with these. No locks. Names and values are not null.
#pragma once

// The value, or null when the variable is not set. O(log n); the text stays until
// this variable changes.
const char *UTgetenv(const char *name);

// Adds the variable or replaces its value, which may be a part of the old one.
// O(n) for a new variable.
void UTsetenv(const char *name, const char *value);

// The same from "NAME=value"; a text without '=' changes nothing.
void UTputenv(const char *text);

// Removes the variable; nothing happens when it is not set. O(n).
void UTunsetenv(const char *name);

// All entries, "NAME=value" each, in byte order, and a null. They stay ours; the
// next change makes the array invalid.
char **UTgetEnvironment();
