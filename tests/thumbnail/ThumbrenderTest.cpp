#include "tests/thumbnail/ThumbrenderTest.h"

#include "tests/support/PlainText.h"

#include <filesystem>

ThumbrenderTest::ThumbrenderTest()
{
    std::filesystem::copy(TEST_DATA "/data/palettes", path("runs"));
    scratch.makeDirectory("home");
    std::string shown;
    for (const std::string &name :
         plainSplitWords("OUTPUT_PICTURE SHADER_PATH NO_SHADOWS GEO_TUBE GEO_GRID GEO_SPHERE "
                         "GEO_TEAPOT NO_BACKGROUND SURF_SHADER DISP_SHADER LIGHT_SHADER "
                         "SHADOW_SHADER FOG_SHADER"))
        shown += "#ifdef " + name + "\n'" + name + "' " + name + "\n#endif\n";
    withTemplate(shown);
}

void ThumbrenderTest::withTemplate(const std::string &text) const
{
    for (const char *suffix : {"ifd", "rib", "mi"})
        scratch.write(std::string("share/veldrin/shop/palette/shadeball.") + suffix, text);
}

std::string ThumbrenderTest::told(const std::string &arguments,
                                  const std::vector<std::string> &settings) const
{
    const size_t commands = renderer.record("commands").size(),
                 scenes = renderer.record("scene").size();
    std::vector<std::string> environment = {"HOME=" + path("home"), "VDX=" + path("share"),
                                            "PATH=" + renderer.folder() + ":/usr/bin:/bin"};
    environment.insert(environment.end(), settings.begin(), settings.end());
    const ProgramRun run =
        runLine("$RUN '" BIN_DIR "/thumbrender' " + arguments, environment, path("runs"));
    const bool isUsage = run.err == fileContents(TEST_DATA "/data/usage");
    return std::to_string(run.status) + ' ' + run.out + (isUsage ? "usage" : run.err) + '|' +
           renderer.record("commands").substr(commands) + '|' +
           renderer.record("scene").substr(scenes);
}
