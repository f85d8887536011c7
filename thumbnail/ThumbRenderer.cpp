#include "thumbnail/ThumbRenderer.h"

#include "thumbnail/ThumbState.h"

#include <cstring>
#include <iterator>

namespace
{

enum RendererIndex { BUILT_IN, PRMAN, ENTROPY, RDC, MI, RENDERER_COUNT };

ThumbRenderer theRenderers[] = {
    {"vaskel", "shop/palette/shadeball.ifd", {}, {}, {}, THUMB_IFD},
    {"render", "shop/palette/shadeball.rib", {}, {}, {}, THUMB_RIB},
    {"entropy -silent", "shop/palette/shadeball.rib", {}, {}, {}, THUMB_RIB},
    {"renderdc", "shop/palette/shadeball.rib", {}, {}, {}, THUMB_RIB},
    {"ray", "shop/palette/shadeball.mi", {}, {}, {}, THUMB_MI},
};
static_assert(std::size(theRenderers) == RENDERER_COUNT, "one row for each RendererIndex");

struct RendererName {
    const char *prefix;
    RendererIndex index;
};

// The first row whose prefix fits counts.
const RendererName RENDERER_NAMES[] = {
    {"e", ENTROPY}, {"mi", MI}, {"m", BUILT_IN}, {"p", PRMAN}, {"r", RDC}, {"v", BUILT_IN},
};

// When no name decides.
const RendererIndex DEFAULT_ORDER[] = {BUILT_IN, PRMAN, MI};

// The palette's shaders, by ThumbSceneKind.
using Shaders = const UT_String *const[3];

ThumbRenderer *rowWithShader(RendererIndex index, Shaders &shaders)
{
    ThumbRenderer &row = theRenderers[index];
    const UT_String &shader = *shaders[row.myKind];
    if (!shader.isNonEmpty())
        return nullptr;
    row.myShader = shader;
    return &row;
}

const RendererName *findRendererName(const char *name)
{
    if (name == nullptr)
        return nullptr;
    for (const RendererName &known : RENDERER_NAMES) {
        if (strncmp(name, known.prefix, strlen(known.prefix)) == 0)
            return &known;
    }
    return nullptr;
}

} // namespace

ThumbRenderer *chooseRenderer(const UT_String &vvaskelShader, const UT_String &ribShader,
                              const UT_String &miShader)
{
    Shaders shaders = {&vvaskelShader, &ribShader, &miShader};
    if (const RendererName *named = findRendererName(theRendererName)) {
        if (ThumbRenderer *row = rowWithShader(named->index, shaders))
            return row;
    }
    for (RendererIndex index : DEFAULT_ORDER) {
        if (ThumbRenderer *row = rowWithShader(index, shaders))
            return row;
    }
    return nullptr;
}
