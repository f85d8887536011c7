// Whole runs of the command.
#include "tests/support/Cases.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"

#include <filesystem>

TEST(Vcpp, RunsFollowTheirTable)
{
    const ScratchDirectory folder;
    std::filesystem::copy(TEST_DATA "/data/files", folder.path(),
                          std::filesystem::copy_options::recursive);
    expectTable(TEST_DATA "/data/runs", [&folder](const std::string &line, const char *in) {
        const ProgramRun run = runLine("vcpp() { $RUN '" BIN_DIR "/vcpp' \"$@\"; }; " + line,
                                       {"HOME=" + folder.path()}, folder.path(), in);
        const bool isBadUsage = run.status == 2 && !run.err.empty();
        return std::to_string(run.status) + ' ' + run.out + '|' + (isBadUsage ? "?" : run.err);
    });
}
