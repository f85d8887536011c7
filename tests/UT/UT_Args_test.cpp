#include "UT/UT_Args.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"
#include "tests/support/PlainText.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace
{
// A writable argv of the words in `line`; an argument set of it.
struct Line {
    explicit Line(const char *line) : words(plainSplitWords(line))
    {
        for (std::string &word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        args.initialize(argc(), argv.data());
    }
    int argc() const { return static_cast<int>(words.size()); }

    std::vector<std::string> words;
    std::vector<char *> argv;
    UT_Args args;
};

// Each letter seen with its place and values: "g1=ball,q4,".
std::string optionsOf(const UT_Args &args)
{
    std::string all;
    for (char c = 1; c != 127; ++c) {
        if (args.found(c) == 0)
            continue;
        all += c + std::to_string(args.found(c));
        for (int slot = 0; slot < 4; ++slot)
            if (args.getValue(c, slot) != nullptr)
                all += std::string("=") + args.getValue(c, slot);
        all += ',';
    }
    return all;
}

std::string operandsOf(const UT_Args &args)
{
    std::string all;
    for (int i = 1; i < args.argc(); ++i)
        all += std::string(args.argv(i)) + '|';
    return all;
}

std::string commandLine(const UT_Args &args, int firstArg, bool withOptions, const char *before)
{
    UT_ScratchBuffer out;
    out.append(before);
    EXPECT_TRUE(args.makeCommandLine(out, firstArg, withOptions));
    return out.buffer();
}
} // namespace

TEST(Args, TakesOptionsOutAndKeepsOperands)
{
    const struct {
        const char *spec, *line, *options;
        int argc;
        const char *operands;
    } cases[] = {
        {"bg:qr:s", "prog -bs file", "b1,s1,", 2, "file|"},
        {"bg:qr:s", "prog -gsphere x", "g1=sphere,", 2, "x|"},
        {"bg:qr:s", "prog -g sphere -r prman x y", "g1=sphere,r3=prman,", 3, "x|y|"},
        {"bg:qr:s", "prog -r", "", -1, ""},
        {"bg:qr:s", "prog -r -q x", "r1=-q,", 2, "x|"},
        {"bg:qr:s", "prog -q", "q1,", 1, ""},
        {"bg:qr:s", "prog x -q", "", 3, "x|-q|"},
        {"bg:qr:s", "prog -qz y", "q1,", 3, "-qz|y|"},
        {"bg:qr:s", "prog -b -zq y", "b1,", 3, "-zq|y|"},
        {"bg:qr:s", "prog -- -q", "", 2, "-q|"},
        {"bg:qr:s", "prog -q --", "q1,", 1, ""},
        {"bg:qr:s", "prog - x", "", 3, "-|x|"},
        {"bg:qr:s", "prog -q - x", "q1,", 3, "-|x|"},
        {"bg:qr:s", "prog -bgqs x", "b1,g1=qs,", 2, "x|"},
        {"bg:qr:s", "prog -bg cube -q -q x", "b1,g1=cube,q4,", 2, "x|"},
        {"bg:qr:s", "prog -gx -g y z", "g2=y,", 2, "z|"},
        {"bg:qr:s", "prog -g -- x", "g1=--,", 2, "x|"},
        {"bg:qr:s", "prog", "", 1, ""},
        {"x::", "prog -xA B c", "x1=A=B,", 2, "c|"},
        {"x::", "prog -x A B c", "x1=A=B,", 2, "c|"},
        {"x::", "prog -xA", "", -1, ""},
        {"x::::y", "prog -x 1 2 3 4 -y 5", "x1=1=2=3=4,y6,", 2, "5|"},
        {"x::::::y", "prog -x1 2 3 4 -y 5", "x1=1=2=3=4,y5,", 2, "5|"},
        {"x::", "prog -xA B -xC", "", -1, ""},
        {"bg:qr:s", "prog -: x", ":1,", 2, "x|"},
        {nullptr, "prog -q x", "", 3, "-q|x|"},
        {"", "prog -q x", "", 3, "-q|x|"},
        {"q", "prog -q\xe9 x", "q1,", 3, "-q\xe9|x|"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        Line line(c.line);
        line.args.stripOptions(c.spec);
        EXPECT_EQ(c.options, optionsOf(line.args));
        EXPECT_EQ(c.argc, line.args.argc());
        EXPECT_EQ(c.operands, operandsOf(line.args));
        if (c.argc >= 0)
            EXPECT_EQ(nullptr, line.args.argv(c.argc));
        else
            EXPECT_STREQ(line.words[1].c_str(), line.args.argv(1)) << "left as it was";
    }
}

TEST(Args, ASecondScanForgetsTheFirst)
{
    Line line("prog -b x -q");
    line.args.stripOptions("bq");
    EXPECT_EQ("b1,", optionsOf(line.args));
    line.args.setArg(1, "-q");
    line.args.appendArg("y");
    EXPECT_EQ("-q|-q|y|", operandsOf(line.args));
    line.args.stripOptions("bq");
    EXPECT_EQ("q2,", optionsOf(line.args));
    EXPECT_EQ("y|", operandsOf(line.args));
}

TEST(Args, ANewVectorLeavesNothingOfTheOld)
{
    Line line("prog a b c");
    line.args.initialize(2, line.argv.data());
    EXPECT_EQ(nullptr, line.args.argv(2));
    line.args.setArg(1, "-r");
    line.args.stripOptions("r:");
    line.args.appendArg("x");
    EXPECT_EQ(0, line.args.argc());
    EXPECT_STREQ("x", line.args.argv(2));
}

TEST(Args, RebuildsTheCommandLine)
{
    Line line("'my prog' -b -gsph -x 'a b' '' op1 '' 'o p'");
    line.args.stripOptions("bg:x::");
    EXPECT_EQ("my prog -b -g sph -x 'a b' '' op1 '' 'o p'",
              commandLine(line.args, 0, true, "gone"));
    EXPECT_EQ("my prog op1 '' 'o p'", commandLine(line.args, 0, false, ""));
    EXPECT_EQ("cd;op1 '' 'o p'", commandLine(line.args, 1, false, "cd;"));
    EXPECT_EQ("; -b -g sph -x 'a b' '' 'o p'", commandLine(line.args, 3, true, ";"));
    EXPECT_EQ("", commandLine(line.args, 9, false, ""));
    UT_String out("old");
    EXPECT_TRUE(line.args.makeCommandLine(out, 0));
    EXPECT_STREQ("my prog -b -g sph -x 'a b' '' op1 '' 'o p'", out);
}

TEST(Args, ListsTheOptionsSeen)
{
    Line line("prog -r a -gb -x C D");
    line.args.stripOptions("g:r:x::");
    testing::internal::CaptureStdout();
    line.args.dumpOptions();
    EXPECT_EQ("g=b\nr=a\nx=C\n", testing::internal::GetCapturedStdout());
}

TEST(Args, QuotesWhatAShellWouldNotTake)
{
    const struct {
        const char *word, *quoted;
    } cases[] = {
        {"it's", R"('it\'s')"},
        {"", "''"},
        {"plain-1.x/*;[!", "plain-1.x/*;[!"},
        {"a b", "'a b'"},
    };
    for (const auto &c : cases) {
        UT_ScratchBuffer out;
        UT_Args::appendQuotedWord(out, c.word, false);
        EXPECT_STREQ(c.quoted, out.buffer());
        UT_Args::appendQuotedWord(out, c.word, true);
        EXPECT_EQ(std::string(c.quoted) + " " + c.quoted, out.buffer());
    }
    for (const char special : std::string(" \t\"\\$#=&<>|()")) {
        const std::string word = std::string("a") + special;
        UT_ScratchBuffer out;
        UT_Args::appendQuotedWord(out, word.c_str(), false);
        EXPECT_EQ("'" + word + "'", out.buffer());
    }
}

namespace
{
// Every answer with its value and the next word's index: "a1 b=x3 ?z3 -1@4".
std::string getoptTrace(const char *spec, const char *words)
{
    Line line(words);
    std::string trace;
    optind = 1;
    for (;;) {
        const int c = getopt(line.argc(), line.argv.data(), spec);
        if (c == -1)
            return trace + "end" + std::to_string(optind);
        trace += static_cast<char>(c);
        if (c == '?')
            trace += static_cast<char>(optopt);
        else if (optarg != nullptr)
            trace += std::string("=") + optarg;
        trace += std::to_string(optind) + ' ';
    }
}
} // namespace

TEST(Getopt, ReadsOptionsUpToTheFirstOperand)
{
    const struct {
        const char *spec, *line, *trace, *messages;
    } cases[] = {
        {"ab:", "prog -ab", "a1 ?b2 end2", "prog: option requires an argument -- b\n"},
        {"ab:", "prog -ab x y", "a1 b=x3 end3", ""},
        {"ab:", "prog -abx -a y", "a1 b=x2 a3 end3", ""},
        {"ab:", "prog -b -a x", "b=-a3 end3", ""},
        {"ab:", "prog -a -- -a", "a2 end3", ""},
        {"ab:", "prog - -a", "end1", ""},
        {"ab:", "prog x -a", "end1", ""},
        {"ab:", "a/prog -az:a", "a1 ?z1 ?:1 a2 end2",
         "a/prog: illegal option -- z\na/prog: illegal option -- :\n"},
        {"ab:", "prog", "end1", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        opterr = 1;
        testing::internal::CaptureStderr();
        EXPECT_EQ(c.trace, getoptTrace(c.spec, c.line));
        EXPECT_EQ(c.messages, testing::internal::GetCapturedStderr());
        opterr = 0;
        testing::internal::CaptureStderr();
        EXPECT_EQ(c.trace, getoptTrace(c.spec, c.line));
        EXPECT_EQ("", testing::internal::GetCapturedStderr());
    }
    opterr = 1;
}
