// One render job: a scene template goes through the preprocessor into a renderer's
// standard input, and the renderer writes the picture.
#pragma once

class UT_Args;
struct ThumbRenderer;

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
