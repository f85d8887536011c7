#include "UT/UT_Args.h"

#include "UT/UT_ScratchBuffer.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <cstring>
#include <unistd.h>

namespace
{
// A writable argv of the words in `line`; an argument set of it.
struct Line {
    explicit Line(const std::string &line) : words(plainSplitWords(line))
    {
        args.initialize(argc(), argv.data());
    }
    int argc() const { return static_cast<int>(words.size()); }

    std::vector<std::string> words;
    std::vector<char *> argv = pointersTo(words);
    UT_Args args;
};

// Each letter seen with its place and values, then the words left: "g1=ball q4 | x y".
std::string shown(const UT_Args &args)
{
    std::string all;
    for (char c = 1; c != 127; ++c) {
        const int place = args.found(c);
        all += place != 0 ? c + std::to_string(place) : "";
        for (int slot = 0; slot < 4; ++slot)
            if (place != 0 && args.getValue(c, slot) != nullptr)
                all += std::string("=") + args.getValue(c, slot);
        all += place != 0 ? " " : "";
    }
    if (args.argc() < 0)
        return all + "incomplete " + args.argv(1);
    all += '|';
    for (int i = 1; i < args.argc(); ++i)
        all += std::string(" ") + args.argv(i);
    EXPECT_EQ(nullptr, args.argv(args.argc()));
    return all;
}

auto stripped(const char *letters)
{
    return [letters](const std::string &in) {
        Line line("prog " + in);
        line.args.stripOptions(letters);
        return shown(line.args);
    };
}
} // namespace

TEST(Args, TakesOptionsOutAndKeepsOperands)
{
    expectTable(TEST_DATA "/data/options", {{"bg:qr:s", stripped("bg:qr:s")},
                                            {"x::w:::::", stripped("x::w:::::")},
                                            {"", stripped("")},
                                            {"null", stripped(nullptr)}});
    std::string many;
    for (int i = 0; i < 256; ++i)
        many += "-b ";
    EXPECT_EQ("b255 |", stripped("b")(many)) << "256 would not be seen";
}

TEST(Args, NothingOfAnOlderScanOrVectorStays)
{
    Line line("prog -b x -q");
    line.args.stripOptions("bq");
    line.args.setArg(1, "-q");
    line.args.appendArg("y");
    EXPECT_EQ("b1 | -q -q y", shown(line.args));
    line.args.initialize(2, line.argv.data());
    line.args.stripOptions("b:");
    EXPECT_EQ("incomplete -b", shown(line.args));
    line.args.appendArg("x");
    EXPECT_STREQ("x", line.args.argv(2)) << "behind the last word";
}

TEST(Args, RebuildsTheCommandLine)
{
    Line line("'my prog' -b -gsph -x 'a b' '' op1 '' 'o p'");
    line.args.stripOptions("bg:x::");
    const auto rebuilt = [&line](int firstArg, bool withOptions) {
        UT_ScratchBuffer out;
        out.append("cd;");
        EXPECT_TRUE(line.args.makeCommandLine(out, firstArg, withOptions));
        return std::string(out.buffer());
    };
    EXPECT_EQ("my prog -b -g sph -x 'a b' '' op1 '' 'o p'", rebuilt(0, true));
    EXPECT_EQ("my prog op1 '' 'o p'", rebuilt(0, false));
    EXPECT_EQ("cd;op1 '' 'o p'", rebuilt(1, false));
    EXPECT_EQ("cd; -b -g sph -x 'a b' '' 'o p'", rebuilt(3, true));
    EXPECT_EQ("cd;", rebuilt(9, false));
    UT_String out("old");
    EXPECT_TRUE(line.args.makeCommandLine(out, 0));
    EXPECT_EQ(rebuilt(0, true), out.text());
    testing::internal::CaptureStdout();
    line.args.dumpOptions();
    EXPECT_EQ("b=\ng=sph\nx=a b\n", testing::internal::GetCapturedStdout());
}

TEST(Args, QuotesWhatAShellWouldNotTake)
{
    for (int c = 0; c < 256; ++c) {
        const std::string word = c == 0 ? "" : std::string("a") + static_cast<char>(c);
        const std::string escaped = c == '\'' ? "a\\'" : word;
        const bool isQuoted = std::strchr(" \t\"\\'$#=&<>|()", c) != nullptr;
        UT_ScratchBuffer out;
        UT_Args::appendQuotedWord(out, word.c_str(), c == 'x');
        EXPECT_EQ((c == 'x' ? " " : "") + (isQuoted ? '\'' + escaped + '\'' : word), out.buffer());
    }
}

TEST(Getopt, ReadsOptionsUpToTheFirstOperand)
{
    for (const int messages : {1, 0}) {
        opterr = messages;
        testing::internal::CaptureStderr();
        expectTable(
            TEST_DATA "/data/getopt", [](const std::string &letters, const std::string &in) {
                Line line("a/prog " + in);
                std::string trace;
                optind = 1;
                for (int c; (c = getopt(line.argc(), line.argv.data(), letters.c_str())) != -1;) {
                    trace += static_cast<char>(c);
                    trace += c == '?'            ? std::string(1, static_cast<char>(optopt))
                             : optarg != nullptr ? std::string("=") + optarg
                                                 : "";
                    trace += std::to_string(optind) + ' ';
                }
                return trace + "end" + std::to_string(optind);
            });
        EXPECT_EQ(messages == 0 ? ""
                                : "a/prog: option requires an argument -- b\n"
                                  "a/prog: illegal option -- z\na/prog: illegal option -- :\n",
                  testing::internal::GetCapturedStderr());
    }
    opterr = 1;
    Line longer("prog -abc"), other("prog -a");
    for (Line *line : {&longer, &other}) { // a caller that turns to another vector
        optind = 1;
        EXPECT_EQ('a', getopt(line->argc(), line->argv.data(), "abc"));
    }
}
