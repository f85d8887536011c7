#include "UT/UT_KnownPath.h"

namespace
{
constexpr int NO_BASE = -1;
constexpr char LINUX_INTEL[] = "linux_intel";

constexpr UT_KnownPathRow ROWS[] = {
    // path, variable, default pattern, "^", base of "@"
    {UT_VELDRIN_PATH, ENV_VELDRIN_PATH, nullptr, nullptr, NO_BASE},
    {UT_VELDRIN_DSO_PATH, ENV_VELDRIN_DSO_PATH, "@/dso_^;@/dso", LINUX_INTEL, UT_VELDRIN_PATH},
    {UT_VELDRIN_IMAGE_DSO_PATH, ENV_VELDRIN_IMAGE_DSO_PATH, "@/dso/fb", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_AUDIO_DSO_PATH, ENV_VELDRIN_AUDIO_DSO_PATH, "@/dso/audio", nullptr,
     UT_VELDRIN_PATH},
    {UT_VELDRIN_OTL_PATH, ENV_VELDRIN_OTL_PATH, "@", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_OPLIBRARIES_PATH, ENV_VELDRIN_OPLIBRARIES_PATH, "@", nullptr, UT_VELDRIN_OTL_PATH},
    {UT_VELDRIN_OTLSCAN_PATH, ENV_VELDRIN_OTLSCAN_PATH, "@/otls", nullptr, UT_VELDRIN_OTL_PATH},
    {UT_VELDRIN_SCRIPT_PATH, ENV_VELDRIN_SCRIPT_PATH, "@/scripts", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_TAVEK_PATH, ENV_VELDRIN_TAVEK_PATH, "@/tavek", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_GALLERY_PATH, ENV_VELDRIN_GALLERY_PATH, "@/gallery", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_TEXTURE_PATH, ENV_VELDRIN_TEXTURE_PATH, ".;@/pic;@/map;@/maps", nullptr,
     UT_VELDRIN_PATH},
    {UT_VELDRIN_GEOMETRY_PATH, ENV_VELDRIN_GEOMETRY_PATH, ".;@/geo", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_CLIP_PATH, ENV_VELDRIN_CLIP_PATH, ".;@/clips;@/clip", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_DISPLACEMENT, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Displacement",
     UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_FOG, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Fog", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_LIGHT, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Light", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_SHADOW, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Shadow", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_SURFACE, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Surface", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_PHOTON, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Photon", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_BSDF, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "BSDF", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_CHOP, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Chop", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_COP2, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Cop2", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_IMAGE3D, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Image3d", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_SOP, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Sop", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_POP, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "Pop", UT_VELDRIN_PATH},
    {UT_VELDRIN_ZEL_PATH_CZEL, ENV_VELDRIN_ZEL_PATH, ".;@/zel/^", "CZel", UT_VELDRIN_PATH},
    {UT_VELDRIN_UI_PATH, ENV_VELDRIN_UI_PATH, ".;@/config", nullptr, UT_VELDRIN_PATH},
    {UT_VELDRIN_UI_APP_PATH, ENV_VELDRIN_UI_APP_PATH, "@/^", "Applications", UT_VELDRIN_UI_PATH},
    {UT_VELDRIN_UI_AUDIO_PATH, ENV_VELDRIN_UI_AUDIO_PATH, "@/^", "Audio", UT_VELDRIN_UI_PATH},
    {UT_VELDRIN_UI_CURSOR_PATH, ENV_VELDRIN_UI_CURSOR_PATH, "@/^", "Cursors", UT_VELDRIN_UI_PATH},
    {UT_VELDRIN_UI_ICON_PATH, ENV_VELDRIN_UI_ICON_PATH, "@/^", "Icons", UT_VELDRIN_UI_PATH},
    {UT_VELDRIN_DESK_PATH, ENV_VELDRIN_DESK_PATH, "@/^", "desktop", UT_VELDRIN_PATH},
    {UT_VELDRIN_MACRO_PATH, ENV_VELDRIN_MACRO_PATH, "@/^", "scripts/opmacros", UT_VELDRIN_PATH},
    {UT_VELDRIN_STOOLBAR_PATH, ENV_VELDRIN_STOOLBAR_PATH, "@/^", "stoolbar", UT_VELDRIN_PATH},
    {UT_VELDRIN_TOOLBAR_PATH, ENV_VELDRIN_TOOLBAR_PATH, "@/^", "toolbar", UT_VELDRIN_PATH},
    {UT_VELDRIN_CUSTOM_PATH, ENV_VELDRIN_CUSTOM_PATH, "@/^", "custom", UT_VELDRIN_PATH},
    {UT_VELDRIN_OUTLINEFONT_PATH, ENV_VELDRIN_OUTLINEFONT_PATH, "@/fonts", nullptr,
     UT_VELDRIN_PATH},
};

constexpr bool rowsAreInOrder()
{
    int expected = 0;
    for (const UT_KnownPathRow &row : ROWS) {
        // A base in front of its users: building a path cannot come back to itself.
        if (row.path != expected || row.baseKind >= expected)
            return false;
        expected++;
    }
    return expected == UT_NUM_KNOWN_PATHS;
}
static_assert(rowsAreInOrder(), "one row for each known path, in the enumerators' order");
} // namespace

const char *const UT_PLATFORM_TAG = LINUX_INTEL;

const UT_KnownPathRow &UTgetKnownPath(UT_KnownPath path)
{
    return ROWS[path];
}
