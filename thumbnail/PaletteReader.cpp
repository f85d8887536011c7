#include "thumbnail/PaletteReader.h"

#include "UT/UT_IFStream.h"
#include "thumbnail/PaletteHead.h"
#include "thumbnail/ThumbDriver.h"
#include "thumbnail/ThumbRenderer.h"

namespace
{

void reportReadError(const char *fileName, const char *reason)
{
    UT_String text;
    text.sprintf("%s: %s", fileName, reason);
    reportError("Unable to read palette file %s", text);
}

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
    UT_IFStream in;
    if (!in.open(fileName, true)) {
        reportError("Unable to open palette file %s", fileName);
        return;
    }

    PaletteHead head;
    if (!readPaletteHead(in, head)) {
        reportReadError(fileName, in.getSource().getErrorText());
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
    in.close();
}
