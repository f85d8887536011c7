// expand TEMPLATE [NAME=VALUE]...: shows what is left of a render template. It is looked for
// along the main search path (see UT/UT_PathSearch.h), so with VDX=PREFIX/share
//
//     expand shop/palette/shadeball.ifd GEO_TEAPOT "SURF_SHADER=v_metal"
//
// prints the scene of a metal teapot.
#include <CPP/CPP_Manager.h>
#include <UT/UT_PathSearch.h>

#include <cstdio>
#include <cstring>

namespace
{
int fail(const char *what, const char *name)
{
    std::fprintf(stderr, "expand: %s %s\n", what, name);
    return 1;
}

bool isBlank(const char *line)
{
    return line[std::strspn(line, " \t\n")] == '\0';
}

// Markers and diagnostics both begin with '#'; neither is a part of the scene.
void print(CPP_Manager &preprocessor)
{
    UT_String line;
    while (preprocessor.getLine(line))
        if (line.text()[0] == '#')
            std::fputs(line, stderr);
        else if (!isBlank(line))
            std::fputs(line, stdout);
}
} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2)
        return fail("expected the name of a", "template");
    UT_String path;
    if (!UT_PathSearch::getInstance(UT_VELDRIN_PATH).findFile(path, argv[1]))
        return fail("cannot find", argv[1]);
    CPP_Manager preprocessor;
    UT_String ignored;
    for (int i = 2; i < argc; ++i)
        preprocessor.defineMacro(argv[i], ignored, true);
    if (!preprocessor.openFile(path, false))
        return fail("cannot open", path);
    print(preprocessor);
    return 0;
}
