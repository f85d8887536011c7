#include "tests/support/PlainText.h"
#include "tests/thumbnail/ThumbrenderTest.h"

#include <sys/resource.h>

#include <filesystem>

using RenderJob = ThumbrenderTest;
using testing::HasSubstr;
using testing::Not;

namespace
{
const std::string STOPPED = "Renderer 'vaskel' stopped before it read the whole scene\n";
} // namespace

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
    EXPECT_THAT(renderer.environment(), HasSubstr("VELDRIN_ZEL_DEFAULT_MATTE=__default_matte\n"));
    EXPECT_THAT(renderer.descriptors(), Not(HasSubstr("vr.palette")));
    EXPECT_THAT(renderer.descriptors(), Not(HasSubstr("shadeball")));
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

TEST_F(RenderJob, NamesTheTemplateThatIsMissing)
{
    std::filesystem::remove_all(path("share"));
    EXPECT_EQ("0 Unable to find render script shop/palette/shadeball.ifd\n"
              "Unable to open palette file y\n||",
              told("vr.palette y"));
}

TEST_F(RenderJob, RendererThatLeavesInputUnreadIsReported)
{
    const std::string big(1 << 20, 'x');
    const std::pair<const char *, std::string> cases[] = {
        {"exit 0\n", "a\n"},
        {"exit 0\n", big},
        {"head -c 100 >/dev/null; exit 3\n", big},
        {"exec <&-; exit 3\n", "a\n"},
    };
    for (const auto &[script, scene] : cases) {
        SCOPED_TRACE(script);
        renderer.setScript(script);
        withTemplate(scene);
        EXPECT_EQ("0 " + STOPPED + STOPPED + "||", told("vr.palette vr.palette"));
        EXPECT_EQ("0 ||", told("-q vr.palette"));
    }
}

TEST_F(RenderJob, RendererThatTheShellCannotFindIsReported)
{
    renderer.remove();
    const std::string all = told("vr.palette");
    EXPECT_THAT(all, testing::AllOf(HasSubstr("not found"), HasSubstr(STOPPED)));
}

TEST_F(RenderJob, RendererStartsWithTheDefaultForBrokenPipes)
{
    renderer.setScript("cat >/dev/null; kill -PIPE $$; echo survived >\"${0%/*}/../commands\"\n");
    EXPECT_EQ("0 ||", told("vr.palette"));
}

TEST_F(RenderJob, ManyPalettesNeedNoMoreThanTwentyDescriptors)
{
    const std::string command = renderer.folder() + "/vaskel";
    std::filesystem::remove(command);
    std::filesystem::create_symlink("/bin/true", command);
    rlimit saved = {};
    getrlimit(RLIMIT_NOFILE, &saved);
    const rlimit twenty = {20, saved.rlim_max};
    setrlimit(RLIMIT_NOFILE, &twenty);
    const std::string all = told(repeated("vr.palette ", 60));
    setrlimit(RLIMIT_NOFILE, &saved);
    EXPECT_EQ("0 " + repeated(STOPPED, 60) + "||", all);
}
