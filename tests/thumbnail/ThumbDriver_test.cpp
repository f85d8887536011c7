#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"
#include "tests/thumbnail/ThumbrenderTest.h"

#include <filesystem>

using CommandLine = ThumbrenderTest;

TEST_F(CommandLine, RunsFollowTheirTable)
{
    expectTable(TEST_DATA "/data/runs", [this](const std::string &setting, const char *in) {
        return told(plainSplitWords(in), {setting});
    });
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
