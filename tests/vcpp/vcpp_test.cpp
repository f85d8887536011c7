// Whole runs of the command.
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>

namespace
{
class Vcpp : public testing::Test
{
protected:
    ProgramRun run(std::vector<std::string> arguments, const std::string &input = "",
                   const std::string &outputTo = "")
    {
        ProgramRun vcpp;
        arguments.insert(arguments.begin(), BIN_DIR "/vcpp");
        vcpp.arguments = arguments;
        vcpp.environment = {"HOME=" + myFolder.path()};
        vcpp.folder = myFolder.path();
        vcpp.input = input;
        vcpp.outputTo = outputTo;
        vcpp.run();
        return vcpp;
    }

    ScratchDirectory myFolder;
};
} // namespace

TEST_F(Vcpp, SeparatesTextFromDiagnostics)
{
    const ProgramRun vcpp = run({"-"}, "#define A 1\n#define A 2\n#foo\n#pragma x\nA\n#if 1\n");
    EXPECT_EQ("# 1 \"stdin\"\n\n\n\n#pragma x\n2\n\n", vcpp.out);
    EXPECT_EQ("# warning cpp warning: \"stdin\":2 Macro \"A\" redefined.  Using later definition\n"
              "# error cpp error: \"stdin\":3 Undefined directive \"foo\"\n"
              "# error cpp error: \"stdin\":6 Missing #endif\n",
              vcpp.err);
    EXPECT_EQ(1, vcpp.status);
}

TEST_F(Vcpp, AWarningAloneIsNoFailure)
{
    EXPECT_EQ(0, run({"stdin"}, "#define A 1\n#define A 2\n").status);
}

TEST_F(Vcpp, ReadsTheFileOfAnyName)
{
    myFolder.write(" two words'.in", "text\n");
    const ProgramRun vcpp = run({"-PH", " two words'.in"});
    EXPECT_EQ("text\n", vcpp.out);
    EXPECT_EQ(0, vcpp.status);
}

TEST_F(Vcpp, RejectsBadUsageWithoutOutput)
{
    const struct {
        const char *what;
        std::vector<std::string> arguments;
    } cases[] = {
        {"no file", {"-P"}},
        {"two files", {"a", "b"}},
        {"an unknown option", {"-q", "a"}},
        {"an option without its value", {"-D"}},
        {"a missing file", {"missing"}},
        {"a folder", {"."}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const ProgramRun vcpp = run(c.arguments);
        EXPECT_EQ(2, vcpp.status);
        EXPECT_EQ("", vcpp.out);
        EXPECT_NE("", vcpp.err);
    }
}

TEST_F(Vcpp, HelpAndVersionComeFirst)
{
    EXPECT_EQ("vcpp 9.0.653\n", run({"--version"}).out);
    const ProgramRun help = run({"--help"});
    EXPECT_EQ("Usage: vcpp [options] FILE\n", help.out.substr(0, help.out.find('\n') + 1));
    EXPECT_EQ(0, help.status);
}

TEST_F(Vcpp, AFullDeviceIsReported)
{
    for (const size_t size : {size_t{10}, size_t{1000000}}) {
        const ProgramRun vcpp = run({"-P", "-"}, std::string(size, '1'), "/dev/full");
        EXPECT_EQ(1, vcpp.status);
        EXPECT_EQ("vcpp: cannot write the output: No space left on device\n", vcpp.err);
    }
}
