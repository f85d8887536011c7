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
                   const std::string &outputTo = "", const std::string &inputFrom = "")
    {
        ProgramRun vcpp;
        arguments.insert(arguments.begin(), BIN_DIR "/vcpp");
        vcpp.arguments = arguments;
        vcpp.environment = {"HOME=" + myFolder.path()};
        vcpp.folder = myFolder.path();
        vcpp.input = input;
        vcpp.outputTo = outputTo;
        vcpp.inputFrom = inputFrom;
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
    for (const char *name : {"-", "stdin", "stdin.zel"})
        EXPECT_EQ(0, run({name}, "#define A 1\n#define A 2\n").status);
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

TEST_F(Vcpp, NamesIncludesAsTheIncludingFileIsNamed)
{
    myFolder.write("main.in", "#include \"a.h\"\n#include \"./sub/b.h\"\n");
    myFolder.write("a.h", "a\n");
    myFolder.write("sub/a.h", "a below\n");
    myFolder.write("sub/b.h", "#include \"a.h\"\n#include \"./a.h\"\n");
    for (const char *name : {"main.in", "./main.in"}) {
        const std::string marker = std::string("\"") + name + "\"\n";
        EXPECT_EQ("# 1 " + marker + "\n# 1 \"a.h\"\na\n# 2 " + marker +
                      "\n# 1 \"./sub/b.h\"\n\n# 1 \"./sub/a.h\"\na below\n"
                      "# 2 \"./sub/b.h\"\n\n# 1 \"./a.h\"\na\n",
                  run({name}).out);
    }
}

TEST_F(Vcpp, EndsEachDiagnosticWithANewline)
{
    myFolder.write("new\nline", "'\n");
    EXPECT_EQ("# error cpp error: \"new\nline\":1 Mismatched quotation marks\n",
              run({"new\nline"}).err);
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
        {"an empty name", {""}},
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
    EXPECT_EQ("vcpp 9.0.653\n", run({"-P", "-q", "--version"}).out);
    EXPECT_EQ(2, run({"--", "--version"}).status);
    const ProgramRun help = run({"--help"});
    EXPECT_EQ("Usage: vcpp [options] FILE\n", help.out.substr(0, help.out.find('\n') + 1));
    EXPECT_EQ(0, help.status);
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
