// Definitions and what expansion makes of them.
#include "CPP/cpp_Macro.h"
#include "tests/support/preprocessed.h"

#include <gmock/gmock.h>

namespace
{
// What `use` becomes with these definitions, one a line.
std::string expanded(const std::string &definitions, const std::string &use,
                     const std::string &options = "-P")
{
    const std::string out = preprocessed(options, definitions + "\n" + use + "\n");
    const size_t start = out.find_first_not_of('\n');
    const size_t end = out.find_last_not_of('\n');
    return start == std::string::npos ? "" : out.substr(start, end + 1 - start);
}

std::string repeated(const std::string &text, int times)
{
    std::string all;
    while (times-- > 0)
        all += text;
    return all;
}
} // namespace

TEST(Macros, AreReplaced)
{
    const struct {
        const char *what, *definitions, *use, *out;
    } cases[] = {
        {"object", "#define A 1 + 2", "A(A) xA Ax 2A", "1 + 2(1 + 2) xA Ax 21 + 2"},
        {"white space at the end becomes one blank", "#define A 1   ", "[A]", "[1 ]"},
        {"empty body", "#define A", "[A]", "[]"},
        {"parameters", "#define SQ(x) ((x)*(x))", "SQ(a+1)", "((a+1)*(a+1))"},
        {"no parameters", "#define F() f", "F() F ( )", "f f"},
        {"stringized", "#define STR(x) #x", "STR(abc) STR(a b )", "\"abc\" \"a b \""},
        {"pasted", "#define CAT(a,b) a##b", "CAT(x,y)", "xy"},
        {"one hash behind a parameter", "#define P(a,b) a#b", "P(x,y)", "x y"},
        {"two hashes before a parameter", "#define P(a) n##a", "P(x)", "nx"},
        {"hash before another word", "#define P(a) #b a", "P(x)", "#b x"},
        {"hash beside a parameter without a name", "#define P(a,) # a", "P(x,y)", "# x"},
        {"parameter in quotes stays", "#define P(a) \"a\" 'a'", "P(x)", "\"a\" 'x'"},
        {"a parameter behind a digit", "#define P(a) 2a", "P(x)", "2x"},
        {"nested parentheses and quotes", "#define P(a,b) [b][a]", "P((1,2),\"),\")",
         "[\"),\"][(1,2)]"},
        {"escaped comma still divides", "#define P(a,b) [a][b]", "P(1\\,2)", "[1][2]"},
        {"backslashes in arguments", "#define P(a) [a]", "P(1\\\\\\\\\\q)", "[1\\q]"},
        {"arguments are expanded with the body", "#define N 7\n#define P(a) a #a", "P(N)",
         "7 \"N\""},
        {"marks in a body count", "#define P(a) a \"#0#\" #1#", "P(x)", "x \"x\" #1#"},
        {"not in quotes", "#define A 1", "\"A\" 'A \\' A' A", "\"A\" 'A \\' A' 1"},
        {"redefined the same", "#define A 1\n#define A 1", "A", "1"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.out, expanded(c.definitions, c.use));
    }
}

TEST(Macros, BackslashesGoInFrontOfPlainCharacters)
{
    EXPECT_EQ("\\x . \" \\n \\ '", expanded("", "\\\\x \\. \\\" \\n \\\\ \\'"));
}

TEST(Macros, TellDateAndTimeInQuotes)
{
    // A day's tens are a blank below 10.
    EXPECT_THAT(expanded("", "__DATE__ __TIME__"),
                testing::MatchesRegex("\"[A-Z][a-z][a-z] [ 1-3][0-9] 20[0-9][0-9]\" "
                                      "\"[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\""));
}

TEST(Macros, FailuresStopTheRun)
{
    const struct {
        const char *what, *definitions, *use, *message;
    } cases[] = {
        {"no list", "#define F(x) x", "F", "Invalid arguments for macro \"F\""},
        {"too few", "#define F(x,y) x", "F(1)", "Invalid arguments for macro \"F\""},
        {"too many", "#define F(x) x", "F(1,2)", "Invalid arguments for macro \"F\""},
        {"empty argument", "#define F(x) x", "F( )", "Invalid arguments for macro \"F\""},
        {"something for nothing", "#define F() x", "F(1)", "Invalid arguments for macro \"F\""},
        {"open list", "#define F(x) x", "F(1", "Invalid arguments for macro \"F\""},
        {"list behind the replacement", "#define F(x) x\n#define G F", "G(1)",
         "Invalid arguments for macro \"F\""},
        {"apostrophe", "", "don't", "Mismatched quotation marks"},
        {"itself", "#define X X", "X", "Macro recursion limit reached"},
        {"each other", "#define X Y\n#define Y X", "X", "Macro recursion limit reached"},
        {"fails inside", "#define X 'a", "X", "Mismatched quotation marks"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const std::string out =
            preprocessed("-P", std::string(c.definitions) + "\n" + c.use + "\nZ\n");
        EXPECT_NE(std::string::npos, out.find(c.message)) << out;
        EXPECT_EQ(out.size(), out.find(c.message) + std::string(c.message).size());
    }
}

TEST(Macros, ArgumentsHaveALongestLength)
{
    const std::string definition = "#define F(x) [x]";
    const std::string longest(8191, 'a');
    EXPECT_EQ("[" + longest + "]", expanded(definition, "F(" + longest + ")"));
    EXPECT_NE(std::string::npos, expanded(definition, "F(" + longest + "a)").find("Invalid"));
}

TEST(Macros, NestUpToTheLimit)
{
    std::string chain = "#define M1 end\n";
    for (int i = 2; i <= 128; ++i)
        chain += "#define M" + std::to_string(i) + " M" + std::to_string(i - 1) + "\n";
    EXPECT_EQ("end", expanded(chain, "M127"));
    EXPECT_NE(std::string::npos, expanded(chain, "M128").find("recursion limit"));
    EXPECT_EQ("end", expanded(chain, "M128", "-P -r 129"));
    EXPECT_EQ("end", expanded(chain, "M127", "-P -r 0"));
    EXPECT_NE(std::string::npos, expanded(chain, "M1", "-P -r -5").find("recursion limit"));
}

TEST(Macros, AnyDepthOrGrowthEndsWithAMessage)
{
    EXPECT_NE(std::string::npos, expanded("#define X X", "X", "-P -r 1000000").find("recursion"));
    // Nothing is written, but 2^100 macros are met.
    std::string doubling = "#define F0()\n";
    for (int i = 1; i <= 100; ++i) {
        const std::string inner = "F" + std::to_string(i - 1) + "()";
        doubling += "#define F" + std::to_string(i) + "() " + inner + inner + "\n";
    }
    EXPECT_NE(std::string::npos, expanded(doubling, "F100()").find("recursion"));
    // Flat, but each stands for gigabytes.
    const std::string names = repeated("A ", 100000);
    const struct {
        const char *what;
        std::string definition, use;
    } cases[] = {
        {"long bodies", "#define A " + repeated("1", 100000), names},
        {"long arguments", "#define F(x) " + repeated("x##", 300000),
         "F(" + names.substr(0, 8000) + ")"},
        {"long file name", "#line 1 " + repeated("f", 100000), repeated("__FILE__ ", 100000)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_NE(std::string::npos, expanded(c.definition, c.use).find("recursion limit"));
    }
}

TEST(Macros, CallsOverSeveralLinesKeepTheLineCount)
{
    EXPECT_EQ("\n[1][2 ] tail\n\n\nnext\n",
              preprocessed("-P", "#define F(a,b) [a][b]\nF(1,\n2\n) tail\nnext\n"));
    EXPECT_EQ("\n[1 2] 3\n\nnext\n",
              preprocessed("-P", "#define F(a) [a]\nF(1\n2) __LINE__\nnext\n"));
}

TEST(Macros, RedefinitionWarnsAndCounts)
{
    EXPECT_EQ(
        "\n# warning cpp warning: \"in\":2 Macro \"X\" redefined.  Using later definition\n2\n",
        preprocessed("-P", "#define X 1\n#define X 2\nX\n"));
    EXPECT_NE(std::string::npos, preprocessed("-P", "#define __FILE__\n").find("redefined"));
    EXPECT_NE(std::string::npos, preprocessed("-P", "#define LINUX x\n").find("redefined"));
}

TEST(Macros, BadNamesNeverMatch)
{
    EXPECT_EQ("1A +", expanded("#define 1A x\n#define + y\n#define\n#define (x) y", "1A +"));
}

TEST(Macros, FromCallers)
{
    CPP_Manager manager;
    UT_String result;
    EXPECT_TRUE(manager.defineMacroValue("A", "1 2"));
    EXPECT_TRUE(manager.defineMacroValue("A", "1 2"));
    EXPECT_FALSE(manager.defineMacroValue("A", "3"));
    EXPECT_TRUE(manager.defineMacro("B=(x)", result, true));
    EXPECT_TRUE(manager.defineMacro("F()\nnext line", result, false));
    EXPECT_EQ("", manager.findMacro("F")->myBody);
    EXPECT_TRUE(manager.isMacroDefined("A"));
    EXPECT_FALSE(manager.isMacroDefined(""));
    EXPECT_TRUE(manager.undefineMacro("  A rest", result));
    EXPECT_FALSE(manager.isMacroDefined("A"));
    const std::string longest(1024, 'n');
    manager.defineMacro(longest.c_str(), result, false);
    manager.undefineMacro((longest + "n").c_str(), result);
    EXPECT_FALSE(manager.isMacroDefined(longest.c_str()));

    UT_IStream in("", 0, false);
    ASSERT_TRUE(manager.openStream(&in, "name"));
    result.assignCopy("before ");
    EXPECT_TRUE(manager.expandLine(*manager.currentFile(), "__FILE__ LINUX", result, 0));
    EXPECT_STREQ("before \"name\" ", result);
    EXPECT_FALSE(manager.expandLine(*manager.currentFile(), "'", result, 128));
    EXPECT_STREQ("Mismatched quotation marks", result);
}
