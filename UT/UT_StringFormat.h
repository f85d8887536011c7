// A printf conversion as the format of an output stream.
//
// A run of thumbrender does not come here: this is for other users of the library.
#pragma once

#include <iosfwd>

// Makes the next number that is written to `os` look as printf would write it
// with `format`, such as "%+08.3f": flags '#', '+', '-' and '0', a width, a
// precision and one of the conversions d o x X e E f g G. Everything that
// decides a number's looks is set; as with any stream, the width holds for one output.
//
// False, and the stream stays as it is, when `format` has no such conversion.
// Text in front of it or behind it is ignored with a warning on standard error.
bool UTapplyFormat(std::ostream &os, const char *format);
