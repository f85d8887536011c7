#include "tests/thumbnail/ThumbrenderTest.h"

#include <algorithm>

namespace
{

const char *const DEFINITIONS[] = {
    "OUTPUT_PICTURE", "SHADER_PATH",   "NO_SHADOWS",    "GEO_TUBE",    "GEO_GRID",
    "GEO_SPHERE",     "GEO_TEAPOT",    "NO_BACKGROUND", "SURF_SHADER", "DISP_SHADER",
    "LIGHT_SHADER",   "SHADOW_SHADER", "FOG_SHADER",
};

std::string showDefinitions()
{
    std::string text;
    for (const std::string name : DEFINITIONS)
        text += "#ifdef " + name + "\n'" + name + "' " + name + "\n#endif\n";
    return text;
}

void addDefault(std::vector<std::string> &settings, const std::string &name,
                const std::string &value)
{
    const auto sets = [&](const std::string &setting) { return setting.rfind(name + "=", 0) == 0; };
    if (std::none_of(settings.begin(), settings.end(), sets))
        settings.push_back(name + "=" + value);
}

} // namespace

ThumbrenderTest::ThumbrenderTest()
{
    scratch.makeDirectory("runs");
    scratch.makeDirectory("home");
    withTemplate(showDefinitions());
}

void ThumbrenderTest::withPalette(const std::string &name, const std::string &text) const
{
    scratch.write("runs/" + name, text);
}

void ThumbrenderTest::withTemplate(const std::string &text) const
{
    for (const char *suffix : {"ifd", "rib", "mi"})
        scratch.write(std::string("share/veldrin/shop/palette/shadeball.") + suffix, text);
}

ProgramRun ThumbrenderTest::thumbrender(const std::vector<std::string> &arguments,
                                        const std::vector<std::string> &settings) const
{
    ProgramRun program;
    program.arguments = {BIN_DIR "/thumbrender"};
    program.arguments.insert(program.arguments.end(), arguments.begin(), arguments.end());
    program.environment = settings;
    addDefault(program.environment, "HOME", path("home"));
    addDefault(program.environment, "VDX", path("share"));
    addDefault(program.environment, "PATH", renderer.folder() + ":/usr/bin:/bin");
    program.folder = path("runs");
    program.run();
    return program;
}
