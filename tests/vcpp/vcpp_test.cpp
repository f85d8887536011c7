// Whole runs of the command.
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"

namespace
{
class Vcpp : public testing::Test
{
protected:
    ProgramRun run(std::vector<std::string> arguments, const std::string &input = "",
                   const std::string &outputTo = "", const std::string &inputFrom = "",
                   const std::string &folder = "")
    {
        ProgramRun vcpp;
        arguments.insert(arguments.begin(), BIN_DIR "/vcpp");
        vcpp.arguments = arguments;
        vcpp.environment = {"HOME=" + myFolder.path()};
        vcpp.folder = folder.empty() ? myFolder.path() : folder;
        vcpp.input = input;
        vcpp.outputTo = outputTo;
        vcpp.inputFrom = inputFrom;
        vcpp.run();
        return vcpp;
    }

    ScratchDirectory myFolder;
};
} // namespace

TEST_F(Vcpp, RunsFollowTheirTable)
{
    expectTable(TEST_DATA "/data/runs", [this](const std::string &arguments, const char *in) {
        const ProgramRun vcpp =
            run(plainSplitWords(arguments), in, "", "", TEST_DATA "/data/files");
        const bool isBadUsage = vcpp.status == 2 && !vcpp.err.empty();
        return std::to_string(vcpp.status) + ' ' + vcpp.out + '|' + (isBadUsage ? "?" : vcpp.err);
    });
    EXPECT_EQ(0u, run({"--help"}).out.find("Usage: vcpp [options] FILE\n"));
}

TEST_F(Vcpp, ReadsTheFileOfAnyName)
{
    for (const char *name : {" two words'.in", "\"quoted\"", "<a \"b", "-dash", "new\nline"}) {
        SCOPED_TRACE(name);
        myFolder.write(name, "text\n#foo\n");
        const ProgramRun vcpp = run({"-PH", "--", name});
        EXPECT_EQ("text\n\n", vcpp.out);
        EXPECT_EQ(std::string("# error cpp error: \"") + name +
                      "\":2 Undefined directive \"foo\"\n",
                  vcpp.err);
    }
}

TEST_F(Vcpp, EndsEachDiagnosticWithANewline)
{
    myFolder.write("new\nline", "'\n");
    EXPECT_EQ("# error cpp error: \"new\nline\":1 Mismatched quotation marks\n",
              run({"new\nline"}).err);
}

TEST_F(Vcpp, InputThatCannotBeReadIsReported)
{
    const ProgramRun vcpp = run({"-"}, "", "", "/");
    EXPECT_EQ(1, vcpp.status);
    EXPECT_EQ("vcpp: cannot read the standard input: Is a directory\n", vcpp.err);
}

TEST_F(Vcpp, AFullDeviceIsReported)
{
    for (const size_t size : {size_t{10}, size_t{1000000}}) {
        for (const char *argument : {"-", "--help", "--version"}) {
            SCOPED_TRACE(argument);
            const ProgramRun vcpp = run({argument}, std::string(size, '1'), "/dev/full");
            EXPECT_EQ(1, vcpp.status);
            EXPECT_EQ("vcpp: cannot write the output: No space left on device\n", vcpp.err);
        }
    }
}
