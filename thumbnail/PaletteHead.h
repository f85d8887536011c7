// The head of a palette file: what it tells of its shader.
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

#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"

// The values of the keys, unset where the palette has none, and the extra blocks, each
// of their lines with its newline.
struct PaletteHead {
    UT_String shaderType;
    UT_String vvaskelShader;
    UT_String ribShader;
    UT_String miShader;
    UT_ScratchBuffer ifdExtra;
};

// Reads a palette's head. False, with a message that names the file, when it is no regular
// file (a pipe would have us wait, a device has no end), cannot be opened or read, or when
// its head is longer than 128 MB, which bounds the memory that a palette can ask for.
// REQUIRES: a fresh head
[[nodiscard]] bool readPaletteHead(const char *fileName, PaletteHead &head, UT_String &error);
