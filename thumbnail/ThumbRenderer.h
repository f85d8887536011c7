// The renderers that thumbrender knows, the choice among them, and one render
// job: a scene template goes through the preprocessor into a renderer's standard
// input, and the renderer writes the picture.
//
// To add a renderer: a row in the table, and a row in the table of names.
#pragma once

#include "UT/UT_String.h"

class UT_Args;

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

// Renders one picture and returns when the renderer has ended. Failures go to
// reportError, as do the preprocessor's diagnostics, which do not stop the job.
//
// The template sees these definitions:
//
//     OUTPUT_PICTURE    the name in double quotes. One that would not survive this
//                       is refused: with a double quote or a newline in it, or,
//                       for RIB and MI, a backslash.
//     SHADER_PATH       for RIB: where shaders are looked for, in double quotes
//     NO_SHADOWS, NO_BACKGROUND                           for -s and -b
//     GEO_TUBE, GEO_GRID, GEO_SPHERE or GEO_TEAPOT        for -g
//     SURF_SHADER, DISP_SHADER, LIGHT_SHADER, SHADOW_SHADER or FOG_SHADER
//                       by the shader's type: the shader itself
//
// An IFD renderer gets the palette's extra text in front of the scene.
//
// When VELDRIN_THUMB_DEPFILE names a file, a rule for make is appended to it: the picture
// depends on the template and on all that it includes.
void renderThumbnail(ThumbRenderer &row, UT_Args &args, const char *pictureName);

// Appends where RenderMan shaders are looked for, and a closing '"': the setting
// VELDRIN_RI_SHADERPATH, or else ".:&" and each ri_shaders on the main search path.
void appendShaderPath(UT_String &define);
