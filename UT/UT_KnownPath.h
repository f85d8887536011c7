// The search paths that the package knows: one for each kind of file it looks for.
//
// Enumerators are UT_ and the variable's name; the shader contexts share one variable
// and have their own "^" text each.
#pragma once

#include "UT/UT_EnvSettings.h"

enum UT_KnownPath : int {
    UT_VELDRIN_PATH, // the main path, which most of the others build on
    UT_VELDRIN_DSO_PATH,
    UT_VELDRIN_IMAGE_DSO_PATH,
    UT_VELDRIN_AUDIO_DSO_PATH,
    UT_VELDRIN_OTL_PATH,
    UT_VELDRIN_OPLIBRARIES_PATH,
    UT_VELDRIN_OTLSCAN_PATH,
    UT_VELDRIN_SCRIPT_PATH,
    UT_VELDRIN_TAVEK_PATH,
    UT_VELDRIN_GALLERY_PATH,
    UT_VELDRIN_TEXTURE_PATH,
    UT_VELDRIN_GEOMETRY_PATH,
    UT_VELDRIN_CLIP_PATH,
    UT_VELDRIN_ZEL_PATH_DISPLACEMENT,
    UT_VELDRIN_ZEL_PATH_FOG,
    UT_VELDRIN_ZEL_PATH_LIGHT,
    UT_VELDRIN_ZEL_PATH_SHADOW,
    UT_VELDRIN_ZEL_PATH_SURFACE,
    UT_VELDRIN_ZEL_PATH_PHOTON,
    UT_VELDRIN_ZEL_PATH_BSDF,
    UT_VELDRIN_ZEL_PATH_CHOP,
    UT_VELDRIN_ZEL_PATH_COP2,
    UT_VELDRIN_ZEL_PATH_IMAGE3D,
    UT_VELDRIN_ZEL_PATH_SOP,
    UT_VELDRIN_ZEL_PATH_POP,
    UT_VELDRIN_ZEL_PATH_CZEL,
    UT_VELDRIN_UI_PATH,
    UT_VELDRIN_UI_APP_PATH,
    UT_VELDRIN_UI_AUDIO_PATH,
    UT_VELDRIN_UI_CURSOR_PATH,
    UT_VELDRIN_UI_ICON_PATH,
    UT_VELDRIN_DESK_PATH,
    UT_VELDRIN_MACRO_PATH,
    UT_VELDRIN_STOOLBAR_PATH,
    UT_VELDRIN_TOOLBAR_PATH,
    UT_VELDRIN_CUSTOM_PATH,
    UT_VELDRIN_OUTLINEFONT_PATH,
    UT_NUM_KNOWN_PATHS
};

// What a known path is built from. UT_PathSearch.h explains patterns, "^" and "@".
struct UT_KnownPathRow {
    UT_KnownPath path;
    UT_StrControl variable; // the setting that replaces the pattern
    const char *pattern;    // null for the main path, whose default is built
    const char *caretSubst; // what "^" becomes, or null
    int baseKind;           // the path whose folders "@" stands for, or -1
};

// REQUIRES: 0 <= path < UT_NUM_KNOWN_PATHS
const UT_KnownPathRow &UTgetKnownPath(UT_KnownPath path);

// "^" of the plug-in path: the platform this is built for.
extern const char *const UT_PLATFORM_TAG;
