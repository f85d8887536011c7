#include "CPP/cpp_Macro.h"

#include "tests/support/preprocessed.h"

#include <gmock/gmock.h>

namespace
{
const auto IS_ENDLESS = testing::EndsWith("Macro recursion limit reached");

// What `use` becomes with these definitions.
std::string expanded(const std::string &definitions, const std::string &use,
                     const std::string &options = "-P")
{
    const std::string out = preprocessed(options, definitions + "\n" + use + "\n");
    return out.substr(out.find_first_not_of('\n'));
}
} // namespace

TEST(Macros, TellDateAndTimeInQuotes)
{
    // A day's tens are a blank below 10.
    EXPECT_THAT(expanded("", "__DATE__ __TIME__"),
                testing::MatchesRegex("\"[A-Z][a-z][a-z] [ 1-3][0-9] 20[0-9][0-9]\" "
                                      "\"[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\"\n"));
}

TEST(Macros, ArgumentsHaveALongestLengthAndNestingALimit)
{
    const std::string definition = "#define F(x) [x]", longest(8191, 'a');
    EXPECT_EQ("[" + longest + "]\n", expanded(definition, "F(" + longest + ")"));
    EXPECT_THAT(expanded(definition, "F(" + longest + "a)"), testing::HasSubstr("Invalid"));
    std::string chain = "#define M1 end\n";
    for (int i = 2; i <= 128; ++i)
        chain += "#define M" + std::to_string(i) + " M" + std::to_string(i - 1) + "\n";
    EXPECT_EQ("end\n", expanded(chain, "M127"));
    EXPECT_THAT(expanded(chain, "M128"), IS_ENDLESS);
    EXPECT_EQ("end\n", expanded(chain, "M128", "-P -r 129"));
    EXPECT_EQ("end\n", expanded(chain, "M127", "-P -r 0"));
    EXPECT_THAT(expanded(chain, "M1", "-P -r -5"), IS_ENDLESS);
}

TEST(Macros, AnyDepthOrGrowthEndsWithAMessage)
{
    EXPECT_THAT(expanded("#define X X", "X", "-P -r 1000000"), IS_ENDLESS);
    // Nothing is written, but 2^100 macros are met.
    std::string doubling = "#define F0()\n";
    for (int i = 1; i <= 100; ++i) {
        const std::string inner = "F" + std::to_string(i - 1) + "()";
        doubling += "#define F" + std::to_string(i) + "() " + inner + inner + "\n";
    }
    EXPECT_THAT(expanded(doubling, "F100()"), IS_ENDLESS);
    // Flat, but each stands for gigabytes: long bodies, arguments and file names.
    const std::string names = repeated("A ", 100000);
    EXPECT_THAT(expanded("#define A " + repeated("1", 100000), names), IS_ENDLESS);
    EXPECT_THAT(
        expanded("#define F(x) " + repeated("x##", 300000), "F(" + names.substr(0, 8000) + ")"),
        IS_ENDLESS);
    EXPECT_THAT(expanded("#line 1 " + repeated("f", 100000), repeated("__FILE__ ", 100000)),
                IS_ENDLESS);
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
    EXPECT_TRUE(manager.isMacroDefined("A") && !manager.isMacroDefined(""));
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
