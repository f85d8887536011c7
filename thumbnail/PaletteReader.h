// Reads the head of a palette file and has its thumb nail rendered.
//
// The head is lines of text, up to a line whose first word is ShopData or to the
// end of the file; what follows belongs to the shader operators:
//
//     # a comment: '#' in the first column
//     ShaderType surface                      what kind of shader this is
//     VVaskel    "v_plastic diff 1 0 0"       the shader for our own renderer
//     RIB        'plastic "Kd" 0.8'           for RenderMan-compliant ones
//     MI         ...                          for mental ray
//     BeginIfdExtra
//     ...                                     scene text, copied line by line
//     EndIfdExtra
//     ShopData
//
// Words are split as in a shell (UT_String::splitWords). A key line has exactly
// two words, any other line is ignored; the last line with a key wins, and ""
// counts as absent. A key is written exactly so. Inside an extra block nothing
// but EndIfdExtra in the first column has a meaning; several blocks are joined,
// and one that the file's end cuts short is kept. A line ends at its first NUL.
#pragma once

class UT_Args;

// Handles one palette file to its end: reads it, chooses a renderer, runs it.
// The picture takes the file's name with ".jpg" in place of ".palette", or behind
// a name that does not end so. Failures go to reportError. The file is only read.
// A file that cannot be read to the end of its head gives no picture.
// Memory grows with the longest line and with the extra blocks.
void readPalette(const char *fileName, UT_Args &args);
