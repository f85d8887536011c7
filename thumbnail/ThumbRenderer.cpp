#include "thumbnail/ThumbRenderer.h"

#include "CPP/CPP_Manager.h"
#include "UT/UT_EnvControl.h"
#include "UT/UT_MakeRule.h"
#include "UT/UT_PathSearch.h"
#include "UT/UT_StringList.h"
#include "thumbnail/ThumbDriver.h"
#include "thumbnail/thumb_Definitions.h"
#include "thumbnail/thumb_RendererPipe.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

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

// Line markers are "# " and a number; every other line with a '#' is a diagnostic.
bool isLineMarker(const char *line)
{
    return strlen(line) >= 3 && isdigit(static_cast<unsigned char>(line[2])) != 0;
}

void sendLine(thumb_RendererPipe &renderer, const char *line)
{
    while (isspace(static_cast<unsigned char>(*line)) != 0)
        ++line;
    if (*line == '\0')
        return;
    renderer.write(line);
    if (line[strlen(line) - 1] != '\n')
        renderer.write("\n");
}

// Goes on after the renderer stopped reading: the template's diagnostics count.
void sendScene(thumb_RendererPipe &renderer, CPP_Manager &preprocessor)
{
    UT_String line;
    while (preprocessor.getLine(line)) {
        const char *text = line;
        if (*text != '#')
            sendLine(renderer, text);
        else if (!isLineMarker(text))
            reportError("%s", text);
    }
}

void runRenderer(const ThumbRenderer &row, CPP_Manager &preprocessor)
{
    thumb_RendererPipe renderer;
    if (!renderer.open(row.myCommand)) {
        reportError("Unable to start renderer '%s'", row.myCommand);
        return;
    }
    if (row.myKind == THUMB_IFD && row.myIfdExtra.isNonEmpty()) {
        renderer.write(row.myIfdExtra);
        renderer.write("\n");
    }
    sendScene(renderer, preprocessor);
    if (!renderer.close())
        reportError("Renderer '%s' stopped before it read the whole scene", row.myCommand);
}

void writeDependencies(const CPP_Manager &preprocessor, const char *pictureName)
{
    const UT_StringList &opened = preprocessor.getOpenedFiles();
    std::vector<std::string> files;
    for (int i = 0; i < opened.entries(); ++i)
        files.emplace_back(opened(i));
    std::string error;
    if (!UTaddPictureRule(pictureName, files, error))
        reportError("%s", error.c_str());
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

void renderThumbnail(ThumbRenderer &row, UT_Args &args, const char *pictureName)
{
    CPP_Manager preprocessor;
    UT_String script;
    if (!UT_PathSearch::getInstance(UT_VELDRIN_PATH).findFile(script, row.myScript)) {
        reportError("Unable to find render script %s", row.myScript);
        return;
    }
    thumb_Definitions definitions;
    if (!definitions.build(row, args, pictureName))
        return;
    preprocessor.parseOptions(definitions.count(), definitions.words());
    if (!preprocessor.openFile(script, false)) {
        reportError("Unable to open render script '%s'", script);
        return;
    }
    UT_EnvControl::instance().setString(ENV_VELDRIN_ZEL_DEFAULT_MATTE, "__default_matte");
    runRenderer(row, preprocessor);
    writeDependencies(preprocessor, pictureName);
}

void appendShaderPath(UT_String &define)
{
    if (const char *path = UT_EnvControl::instance().getString(ENV_VELDRIN_RI_SHADERPATH)) {
        define += path;
    } else {
        UT_StringList found;
        UT_PathSearch::getInstance(UT_VELDRIN_PATH).findAllFiles("ri_shaders", found);
        define += ".:&";
        for (int i = 0; i < found.entries(); ++i) {
            define += ":";
            define += found(i);
        }
    }
    define += "\"";
}
