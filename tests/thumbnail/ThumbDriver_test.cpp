#include "tests/support/Cases.h"
#include "tests/thumbnail/ThumbrenderTest.h"

#include <filesystem>

using CommandLine = ThumbrenderTest;

TEST_F(CommandLine, RunsFollowTheirTable)
{
    expectTable(TEST_DATA "/data/runs",
                [this](const std::string &setting, const char *in) { return told(in, {setting}); });
}

TEST_F(CommandLine, UsageTextNamesTheProgramAsItWasCalled)
{
    std::filesystem::create_symlink(BIN_DIR "/thumbrender", path("thumbtool"));
    const ProgramRun run = runLine("$RUN ./thumbtool", {"HOME=" + path("home")}, path(""));
    EXPECT_EQ(0U, run.err.find("Usage: thumbtool [options] palette_file\n"));
}
