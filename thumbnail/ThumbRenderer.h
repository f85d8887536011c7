// The renderers that thumbrender knows, and the choice among them.
//
// To add a renderer: a row in the table, and a row in the table of names.
#pragma once

#include "UT/UT_String.h"

// Scene languages.
enum ThumbSceneKind {
    THUMB_IFD, // our own renderer's
    THUMB_RIB, // RenderMan Interface Bytestream
    THUMB_MI   // mental ray
};

// One row of the renderer table. The rows live as long as the process.
struct ThumbRenderer {
    const char *myCommand; // run by a shell, nothing is added
    const char *myScript;  // the scene template, on the main search path

    // Of the palette being handled, borrowed from its reader.
    UT_String myShaderType;
    UT_String myShader;
    UT_String myIfdExtra;

    int myKind; // a ThumbSceneKind
};

// The row for the renderer name in force when the palette has a shader for it;
// otherwise the first of our own, RenderMan and mental ray that it has a shader
// for; null when it has none. Of the name only the beginning counts:
//
//     e  entropy    mi  mental ray    m, v  our own    p  RenderMan    r  RenderDotC
//
// An empty shader counts as none. The row's myShader borrows the shader chosen.
[[nodiscard]] ThumbRenderer *chooseRenderer(const UT_String &vvaskelShader,
                                            const UT_String &ribShader, const UT_String &miShader);
