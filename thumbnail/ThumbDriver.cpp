#include "thumbnail/ThumbDriver.h"

#include "UT/UT_Args.h"
#include "UT/UT_EnvControl.h"
#include "thumbnail/PaletteReader.h"
#include "thumbnail/ThumbState.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

const char *const OPTION_SPEC = "bg:qr:s";

// Behind the line that names the program.
const char *const USAGE_LINES[] = {
    "This program will generate a palette thumb nail for",
    "the given shop palette file (see $VV/shop/palette)",
    "Options:",
    "  -q\t\tQuiet -- don't produce any output",
    "  -g type\tType of geometry to render",
    "\t\t    sphere - Render a shader ball",
    "\t\t    grid - Render a grid",
    "\t\t    cylinder - Render a cylinder",
    "\t\t    teapot - Render a teapot",
    "  -b\t\tTurn the background off",
    "  -s\t\tTurn shadows off",
    "  -r renderer\tForce the thumbnail to be rendered using",
    "\t\t    vaskel/vvaskel - Veldrin Vaskel renderer",
    "\t\t    prman - Pixar's RenderMan",
    "\t\t    entropy - ExLuna's Entropy",
    "\t\t    rdc - RenderDotC",
    "\t\t    mi - mentalimage's MentalRay",
    "\t\tIf no renderer is specified, an appropriate default",
    "\t\twill be chosen from the palette entry.",
    "Files referenced can be found in $VV/shop/palette/*.{ifd,rib,mi}",
};

const char *programName(const char *command)
{
    if (command == nullptr)
        return "";
    const char *slash = strrchr(command, '/');
    return slash != nullptr ? slash + 1 : command;
}

void readSettings(const UT_Args &args)
{
    if (args.found('r') != 0)
        theRendererName = args.getValue('r');
    if (args.found('q') != 0)
        theQuietFlag = 1;
}

} // namespace

int runThumbDriver(int argc, char *argv[])
{
    UT_Args args;
    theProgramName = programName(argv[0]);
    theRendererName = UT_EnvControl::instance().getString(ENV_VELDRIN_THUMB_RENDER);
    args.initialize(argc, argv);
    args.stripOptions(OPTION_SPEC);
    readSettings(args);

    // "-" would be standard input, which has no name to make a picture's from.
    if (args.argc() < 2 || strcmp(args.argv(1), "-") == 0)
        usage();
    for (int i = 1; i < args.argc(); ++i)
        readPalette(args.argv(i), args);
    return 0;
}

void usage()
{
    fprintf(stderr, "Usage: %s [options] palette_file\n", theProgramName);
    for (const char *line : USAGE_LINES)
        fprintf(stderr, "%s\n", line);
    exit(1);
}
