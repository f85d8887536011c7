#include "thumbnail/ThumbDriver.h"

#include "tests/thumbnail/ThumbrenderTest.h"

#include <filesystem>

using CommandLine = ThumbrenderTest;

TEST_F(CommandLine, WithoutAPaletteGivesTheUsageText)
{
    const std::string usage = fileContents(TEST_DATA "/usage.err");
    const std::vector<std::string> cases[] = {
        {}, {"-q"}, {"-r"}, {"-bsg"}, {"--"}, {"-"}, {"-q", "-", "x.palette"},
    };
    for (const auto &arguments : cases) {
        SCOPED_TRACE(::testing::PrintToString(arguments));
        const ProgramRun run = thumbrender(arguments);
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(usage, run.err);
        EXPECT_EQ("", run.out);
    }
}

TEST_F(CommandLine, UsageTextNamesTheProgramAsItWasCalled)
{
    ProgramRun program;
    program.arguments = {path("thumbtool")};
    std::filesystem::create_symlink(BIN_DIR "/thumbrender", program.arguments[0]);
    program.environment = {"HOME=" + path("home")};
    program.run();
    EXPECT_EQ(0U, program.err.find("Usage: thumbtool [options] palette_file\n"));
}

TEST_F(CommandLine, ReportsEachFileAndGoesOn)
{
    withPalette("empty.palette", "");
    const struct {
        std::vector<std::string> arguments;
        const char *err;
    } cases[] = {
        {{"missing.palette"}, "Unable to open palette file missing.palette\n"},
        {{"-q", "missing.palette"}, ""},
        {{"-bsq", "missing.palette", "empty.palette"}, ""},
        {{"--", "-odd.palette"}, "Unable to open palette file -odd.palette\n"},
        {{"-x", "%s%n.palette"},
         "Unable to open palette file -x\nUnable to open palette file %s%n.palette\n"},
        {{"missing", "-q"},
         "Unable to open palette file missing\nUnable to open palette file -q\n"},
        {{"empty.palette", "-"},
         "Missing critical thumbnail data in palette empty.palette\n"
         "Unable to open palette file -\n"},
        {{"."}, "Missing critical thumbnail data in palette .\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments));
        const ProgramRun run = thumbrender(c.arguments);
        EXPECT_EQ(0, run.status);
        EXPECT_EQ(c.err, run.err);
        EXPECT_EQ("", renderer.commands());
    }
}

TEST_F(CommandLine, OptionsAndSettingsReachTheScene)
{
    withPalette("x.palette", "ShaderType surface\nVVaskel v\nRIB r\nMI m\n");
    const struct {
        std::vector<std::string> arguments;
        const char *setting;
        const char *command;
        const char *scene;
    } cases[] = {
        {{}, "A=", "vaskel\n", "'SURF_SHADER' v\n"},
        {{"-bs", "-g", "teapot"},
         "A=",
         "vaskel\n",
         "'NO_SHADOWS' \n'GEO_TEAPOT' \n'NO_BACKGROUND' \n'SURF_SHADER' v\n"},
        {{"-ggrid", "-gcylinder"}, "A=", "vaskel\n", "'GEO_TUBE' \n'SURF_SHADER' v\n"},
        {{"-r", "mi"}, "VELDRIN_THUMB_RENDER=entropy", "ray\n", "'SURF_SHADER' m\n"},
        {{}, "VELDRIN_THUMB_RENDER=mental", "vaskel\n", "'SURF_SHADER' v\n"},
        {{"-rentropy"},
         "VELDRIN_RI_SHADERPATH=",
         "entropy -silent\n",
         "'SHADER_PATH' \"\"\n'SURF_SHADER' r\n"},
    };
    std::string commands;
    std::string scenes;
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments));
        std::vector<std::string> arguments = c.arguments;
        arguments.push_back("x.palette");
        EXPECT_EQ("", thumbrender(arguments, {c.setting}).err);
        commands += c.command;
        scenes += std::string("'OUTPUT_PICTURE' \"x.jpg\"\n") + c.scene;
        EXPECT_EQ(commands, renderer.commands());
        EXPECT_EQ(scenes, renderer.scene());
    }
}
