#include "thumbnail/RenderJob.h"

#include "CPP/CPP_Manager.h"
#include "UT/UT_Character.h"
#include "UT/UT_EnvControl.h"
#include "UT/UT_MakeRule.h"
#include "UT/UT_PathSearch.h"
#include "UT/UT_StringList.h"
#include "thumbnail/ThumbRenderer.h"
#include "thumbnail/ThumbState.h"
#include "thumbnail/thumb_Definitions.h"
#include "thumbnail/thumb_RendererPipe.h"

#include <cstring>
#include <string>
#include <vector>

namespace
{

// Line markers are "# " and a number; every other line with a '#' is a diagnostic.
bool isLineMarker(const char *line)
{
    return strlen(line) >= 3 && UTisDigit(line[2]);
}

void sendLine(thumb_RendererPipe &renderer, const char *line)
{
    while (UTisSpace(*line))
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
