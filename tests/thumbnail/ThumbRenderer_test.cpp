#include "thumbnail/ThumbRenderer.h"

#include "tests/thumbnail/ThumbrenderTest.h"
#include "thumbnail/ThumbDriver.h"

#include <sys/resource.h>

#include <cstring>
#include <filesystem>

TEST(RendererChoice, FollowsTheNameAndTheShadersAtHand)
{
    const struct {
        const char *name;
        const char *shaders; // which of v, r and m the palette has
        const char *command; // null when none fits
    } cases[] = {
        {nullptr, "vrm", "vaskel"},  {nullptr, "rm", "render"},
        {nullptr, "m", "ray"},       {nullptr, "", nullptr},
        {"", "rm", "render"},        {"xyz", "vrm", "vaskel"},
        {"Prman", "vrm", "vaskel"},  {"entropy", "vrm", "entropy -silent"},
        {"mi", "vrm", "ray"},        {"mx", "vrm", "vaskel"},
        {"m", "vrm", "vaskel"},      {"m", "rm", "render"},
        {"prman", "vrm", "render"},  {"prman", "vm", "vaskel"},
        {"prman", "m", "ray"},       {"r", "vrm", "renderdc"},
        {"vvaskel", "rm", "render"}, {"mi", "vr", "vaskel"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.name != nullptr ? c.name : "(none)") + " with " + c.shaders);
        theRendererName = c.name;
        const auto shader = [&](char which) { return strchr(c.shaders, which) ? "shader" : ""; };
        const UT_String v(shader('v')), r(shader('r')), m(strchr(c.shaders, 'm') ? "mi" : nullptr);
        const ThumbRenderer *row = chooseRenderer(v, r, m);
        ASSERT_EQ(c.command == nullptr, row == nullptr);
        if (row != nullptr) {
            EXPECT_STREQ(c.command, row->myCommand);
            EXPECT_STREQ(row->myKind == THUMB_MI ? "mi" : "shader", row->myShader);
        }
    }
    theRendererName = nullptr;
}

class RenderJob : public ThumbrenderTest
{
protected:
    RenderJob() { withPalette("x.palette", "ShaderType surface\nVVaskel v\nRIB r\n"); }

    const std::string stopped = "Renderer 'vaskel' stopped before it read the whole scene\n";
};

TEST_F(RenderJob, SendsTextAndReportsDiagnostics)
{
    withTemplate("  \t indented \n\n \t\n#pragma keep\n/* gone */\n#nonsense %s\nlast\\\\");
    const ProgramRun run = thumbrender({"x.palette"});
    EXPECT_EQ("indented \nlast\\\n", renderer.scene());
    const std::string script = path("share/veldrin/shop/palette/shadeball.ifd");
    EXPECT_EQ("#pragma keep\n\n# error cpp error: \"" + script +
                  "\":6 Undefined directive \"nonsense\"\n\n",
              run.err);
    EXPECT_EQ("", thumbrender({"-q", "x.palette"}).err);
}

TEST_F(RenderJob, RunsWithTheDefaultMatteAndNoDescriptorOfOurs)
{
    thumbrender({"x.palette"});
    EXPECT_NE(std::string::npos,
              renderer.environment().find("VELDRIN_ZEL_DEFAULT_MATTE=__default_matte\n"));
    EXPECT_EQ(std::string::npos, renderer.descriptors().find("x.palette"));
    EXPECT_EQ(std::string::npos, renderer.descriptors().find("shadeball"));
}

TEST_F(RenderJob, TakesTheFirstTemplateAndEveryShaderFolder)
{
    withTemplate("SHADER_PATH\n");
    const std::string own = scratch.write("home/veldrin9.0/ri_shaders/x.sl", "");
    const std::string installed = scratch.write("share/veldrin/ri_shaders", "");
    thumbrender({"-rprman", "x.palette"});
    const std::string expected =
        "\".:&:" + path("home/veldrin9.0/ri_shaders") + ":" + installed + "\"\n";
    EXPECT_EQ(expected, renderer.scene());

    scratch.write("home/veldrin9.0/shop/palette/shadeball.ifd", "own\n");
    thumbrender({"x.palette"});
    EXPECT_EQ(expected + "own\n", renderer.scene());
}

TEST_F(RenderJob, NamesTheTemplateThatIsMissing)
{
    std::filesystem::remove_all(path("share"));
    EXPECT_EQ("Unable to find render script shop/palette/shadeball.ifd\n"
              "Unable to open palette file y\n",
              thumbrender({"x.palette", "y"}).err);
}

TEST_F(RenderJob, RendererThatLeavesInputUnreadIsReported)
{
    const std::string big(1 << 20, 'x');
    const struct {
        const char *what, *script;
        std::string scene;
    } cases[] = {
        {"ends at once", "exit 0\n", "a\n"},
        {"ends at once, long scene", "exit 0\n", big},
        {"fails in the middle", "head -c 100 >/dev/null; exit 3\n", big},
        {"closes its input", "exec <&-; exit 3\n", "a\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        renderer.setScript(c.script);
        withTemplate(c.scene);
        const ProgramRun run = thumbrender({"x.palette", "x.palette"});
        EXPECT_EQ(0, run.status);
        EXPECT_EQ(stopped + stopped, run.err);
        EXPECT_EQ("", thumbrender({"-q", "x.palette"}).err);
    }
}

TEST_F(RenderJob, RendererThatTheShellCannotFindIsReported)
{
    renderer.remove();
    const ProgramRun run = thumbrender({"x.palette"}, {"PATH=/nowhere"});
    EXPECT_EQ(0, run.status);
    EXPECT_NE(std::string::npos, run.err.find("not found"));
    EXPECT_NE(std::string::npos, run.err.find(stopped));
}

TEST_F(RenderJob, RendererStartsWithTheDefaultForBrokenPipes)
{
    renderer.setScript("cat >/dev/null; kill -PIPE $$; echo survived >\"${0%/*}/../commands\"\n");
    EXPECT_EQ("", thumbrender({"x.palette"}).err);
    EXPECT_EQ("", renderer.commands());
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
    const ProgramRun run = thumbrender(std::vector<std::string>(60, "x.palette"));
    setrlimit(RLIMIT_NOFILE, &saved);

    std::string expected;
    for (int i = 0; i < 60; ++i)
        expected += stopped;
    EXPECT_TRUE(expected == run.err) << run.err.substr(0, 1000);
    EXPECT_EQ(0, run.status);
}
