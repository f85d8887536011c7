#include "thumbnail/PaletteReader.h"

#include "thumbnail/PaletteHead.h"
#include "thumbnail/RenderJob.h"
#include "thumbnail/ThumbRenderer.h"
#include "thumbnail/ThumbState.h"

namespace
{

UT_String pictureNameOf(const char *fileName)
{
    UT_String name(UT_String::ALWAYS_DEEP, fileName);
    if (!name.changeSuffix(thePaletteSuffix, thePictureSuffix))
        name += thePictureSuffix;
    return name;
}

} // namespace

void readPalette(const char *fileName, UT_Args &args)
{
    PaletteHead head;
    UT_String error;
    if (!readPaletteHead(fileName, head, error)) {
        reportError("%s", error);
        return;
    }
    ThumbRenderer *row = chooseRenderer(head.vvaskelShader, head.ribShader, head.miShader);
    if (head.shaderType.isNonEmpty() && row != nullptr) {
        row->myShaderType = head.shaderType;
        row->myIfdExtra = head.ifdExtra.buffer();
        renderThumbnail(*row, args, pictureNameOf(fileName));
    } else {
        reportError("Missing critical thumbnail data in palette %s", fileName);
    }
}
