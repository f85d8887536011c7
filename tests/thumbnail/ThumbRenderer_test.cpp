#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"
#include "tests/thumbnail/ThumbrenderTest.h"

#include <filesystem>

using RenderJob = ThumbrenderTest;
using testing::HasSubstr;

static const std::string STOPPED = "Renderer 'vaskel' stopped before it read the whole scene\n";

TEST_F(RenderJob, SendsTextAndReportsDiagnostics)
{
    withTemplate("  \t indented \n\n \t\n#pragma keep\n/* gone */\n#nonsense %s\nlast\\\\");
    const std::string script = path("share/veldrin/shop/palette/shadeball.ifd");
    EXPECT_EQ("0 #pragma keep\n\n# error cpp error: \"" + script +
                  "\":6 Undefined directive \"nonsense\"\n\n|vaskel\n|indented \nlast\\\n",
              told("vr.palette"));
    EXPECT_EQ("0 |vaskel\n|indented \nlast\\\n", told("-q vr.palette"));
}

TEST_F(RenderJob, RunsWithTheDefaultMatteAndNoDescriptorOfOurs)
{
    EXPECT_EQ("0 |vaskel\n|'OUTPUT_PICTURE' \"vr.jpg\"\n'SURF_SHADER' v\n", told("vr.palette"));
    EXPECT_THAT(renderer.record("environment"),
                HasSubstr("VELDRIN_ZEL_DEFAULT_MATTE=__default_matte\n"));
    EXPECT_THAT(renderer.record("descriptors"),
                testing::Not(testing::ContainsRegex("vr.palette|shadeball")));
}

TEST_F(RenderJob, TakesTheFirstTemplateAndEveryShaderFolder)
{
    withTemplate("SHADER_PATH\n");
    const std::string own = path("home/veldrin9.0/ri_shaders");
    scratch.write("home/veldrin9.0/ri_shaders/x.sl", "");
    const std::string installed = scratch.write("share/veldrin/ri_shaders", "");
    EXPECT_EQ("0 |render\n|\".:&:" + own + ":" + installed + "\"\n", told("-rprman vr.palette"));
    scratch.write("home/veldrin9.0/shop/palette/shadeball.ifd", "own\n");
    EXPECT_EQ("0 |vaskel\n|own\n", told("vr.palette"));
}

TEST_F(RenderJob, WhatIsWrongWithARendererIsReported)
{
    // A section's name is what the renderer does.
    expectTable(TEST_DATA "/data/renderers", [this](const std::string &script, const char *scene) {
        renderer.setScript(script + '\n');
        withTemplate(scene);
        EXPECT_EQ("0 ||", told("-q vr.palette"));
        return told("vr.palette vr.palette");
    });
    std::filesystem::remove_all(renderer.folder());
    EXPECT_THAT(told("vr.palette"), testing::AllOf(HasSubstr("not found"), HasSubstr(STOPPED)));
}

TEST_F(RenderJob, ManyPalettesNeedNoMoreThanTwentyDescriptors)
{
    renderer.setScript("exit 0\n");
    const std::string limit = scratch.write("limit", "ulimit -n 20\n");
    EXPECT_EQ("0 " + repeated(STOPPED, 60) + "||",
              told(repeated("vr.palette ", 60), {"BASH_ENV=" + limit}));
}
