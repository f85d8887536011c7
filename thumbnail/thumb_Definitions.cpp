#include "thumbnail/thumb_Definitions.h"

#include "UT/UT_Args.h"
#include "UT/UT_EnvControl.h"
#include "UT/UT_PathSearch.h"
#include "UT/UT_StringList.h"
#include "thumbnail/ThumbRenderer.h"
#include "thumbnail/ThumbState.h"

#include <cstring>

namespace
{

struct Geometry {
    char letter; // the first one of -g's value
    const char *define;
};

const Geometry GEOMETRIES[] = {
    {'c', "-DGEO_TUBE"},
    {'g', "-DGEO_GRID"},
    {'s', "-DGEO_SPHERE"},
    {'t', "-DGEO_TEAPOT"},
};

struct ShaderType {
    const char *type;
    const char *define;
};

const ShaderType SHADER_TYPES[] = {
    {"surface", "-DSURF_SHADER="},  {"displace", "-DDISP_SHADER="}, {"light", "-DLIGHT_SHADER="},
    {"shadow", "-DSHADOW_SHADER="}, {"fog", "-DFOG_SHADER="},
};

} // namespace

bool thumb_Definitions::build(const ThumbRenderer &row, const UT_Args &args,
                              const char *pictureName)
{
    add("thumbrender");
    add("-x");
    if (!addPicture(row.myKind, pictureName))
        return false;
    if (row.myKind == THUMB_RIB)
        addShaderPath();
    if (args.found('s') != 0)
        add("-DNO_SHADOWS");
    if (args.found('g') != 0)
        addGeometry(args.getValue('g'));
    if (args.found('b') != 0)
        add("-DNO_BACKGROUND");
    return addShader(row);
}

// The definition is a text in double quotes, so a quote or a newline would end it.
// RIB and MI read a backslash in it as an escape, and the picture would land under
// another name; vaskel takes the name as it stands.
bool thumb_Definitions::addPicture(int kind, const char *pictureName)
{
    if (strpbrk(pictureName, kind == THUMB_IFD ? "\"\n" : "\"\n\\") != nullptr) {
        reportError("Unable to write picture '%s': a quote, newline or backslash in its name",
                    pictureName);
        return false;
    }
    myPicture = "-DOUTPUT_PICTURE=\"";
    myPicture += pictureName;
    myPicture += "\"";
    add(myPicture);
    return true;
}

void thumb_Definitions::addShaderPath()
{
    myShaderPath = "-DSHADER_PATH=\"";
    appendShaderPath(myShaderPath);
    add(myShaderPath);
}

void thumb_Definitions::addGeometry(const char *type)
{
    for (const Geometry &geometry : GEOMETRIES) {
        if (*type == geometry.letter)
            add(geometry.define);
    }
}

bool thumb_Definitions::addShader(const ThumbRenderer &row)
{
    for (const ShaderType &known : SHADER_TYPES) {
        if (strcmp(row.myShaderType, known.type) == 0) {
            myShader = known.define;
            myShader += row.myShader;
            add(myShader);
            return true;
        }
    }
    reportError("Unknown shader type %s", row.myShaderType);
    return false;
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
