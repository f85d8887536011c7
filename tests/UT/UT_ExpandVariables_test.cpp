#include "UT/UT_ExpandVariables.h"

#include "UT/UT_EnvControl.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"
#include "tests/support/ScopedVariable.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace
{
using Variables = std::map<std::string, std::string>;

const char *lookUp(const char *name, void *data)
{
    const auto *variables = static_cast<const Variables *>(data);
    const auto found = variables->find(name);
    return found != variables->end() ? found->second.c_str() : nullptr;
}

const char *runCommand(const char *command, void *)
{
    static std::string theOutput;
    theOutput = std::string("<") + command + ">";
    return std::strcmp(command, "fail") == 0 ? nullptr : theOutput.c_str();
}

Variables someVariables()
{
    return {{"JOB", "/proj"}, {"B", "X"},     {"AX", "ok"},        {"F", "7"},
            {"D", "$JOB"},    {"F3x", "f3x"}, {"N", "/a/b/c.txt"}, {"N:t", "odd"},
            {"", "nameless"}, {"NEG", "-7"},  {"JOB_X", "job x"},  {"_", "low"}};
}

std::string expanded(const char *in, const Variables &given = someVariables(),
                     bool inComments = true)
{
    Variables variables = given;
    UT_ScratchBuffer out;
    UTexpandVariables(out, in, lookUp, &variables, true, inComments);
    return out.buffer();
}

struct Case {
    const char *in, *out;
};
} // namespace

TEST(ExpandVariables, ReferencesBecomeValues)
{
    const Case cases[] = {
        {"$JOB/lib", "/proj/lib"},
        {"${JOB}lib", "/projlib"},
        {"$JOB_X-", "job x-"},
        {"$UNSET/x", "/x"},
        {"$", "$"},
        {"a$/b$ $-", "a$/b$ $-"},
        {"$_", "low"},
        {"$D", "$JOB"}, // a value is not expanded
        {"${A${B}}", "ok"},
        {"${A$B}", "ok"},
        {"${}", "nameless"},
        {"$${B}", "$X"},
        {"${JOB/lib", "${JOB/lib"},
        {"$B ${JOB {} $B 'x'", "X ${JOB {} $B 'x'"},
        {"}${B}{", "}X{"},
        {"${{B}}", ""},            // the name is {B}
        {"${'}B'}", "namelessB}"}, // the name ends at the first brace
        {"${B$}", ""},
        {"$B$B", "XX"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(c.out, expanded(c.in));
    }
    EXPECT_EQ("", expanded(nullptr));
}

TEST(ExpandVariables, FrameReferencesArePadded)
{
    const struct {
        const char *value, *in, *out;
    } cases[] = {
        {"7", "$F", "7"},        {"7", "$F3", "007"},     {"7", "${F3}", "007"},
        {"7", "$F3x", "f3x"},    {"-7", "$F4", "-007"},   {"+7", "$F4", "+007"},
        {"ab", "$F4", "  ab"},   {"-a", "$F4", "  -a"},   {"1234", "$F2", "1234"},
        {"", "$F2", "  "},       {"7a", "$F4", "007a"},   {"7", "$F0", "7"},
        {"a.b", "$F5:r", "  a"}, {"7", "$F3_", "unders"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.in) + " of " + c.value);
        EXPECT_EQ(c.out, expanded(c.in, {{"F", c.value}, {"F3x", "f3x"}, {"F3_", "unders"}}));
    }
    EXPECT_EQ(9999u, expanded("$F99999999999999999999").size());
}

TEST(ExpandVariables, ModifiersApplyUnlessTheToggleIsOn)
{
    const Case off[] = {
        {"$N:t", "c.txt"},          {"$N:r", "/a/b/c"},
        {"$N:t:r!", "c!"},          {"$N:s/a/z/ ", "/z/b/c.txt "},
        {"$N: t", "/a/b/c.txt: t"}, {"$UNSET:t/x", "/x"},
        {"${N}:t", "/a/b/c.txt:t"}, {"${N:t}", "odd"},
    };
    for (const Case &c : off) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(c.out, expanded(c.in));
    }
    const ScopedVariable on("VELDRIN8_COMPATIBILITY", "1");
    EXPECT_EQ("/a/b/c.txt:t", expanded("$N:t"));
}

TEST(ExpandVariables, BackslashesAndQuotesKeepText)
{
    const Case cases[] = {
        {"\\$JOB", "$JOB"},
        {"\\\\$JOB", "\\/proj"},
        {"\\\\\\$JOB", "\\$JOB"},
        {"a\\b", "a\\b"},
        {"\\~ \\' \\`", "~ ' `"},
        {"'$JOB' $B", "$JOB X"},
        {"'a\\'$B' $B", "a\\'$B X"},
        {"$B 'open $B", "X open $B"},
        {"\\", "\\"},
        {"`x $B`", "`x X`"}, // without a runner
        {"${'$B'}", ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(c.out, expanded(c.in));
    }
}

TEST(ExpandVariables, TildesAtTheStartOfAWordAreHomes)
{
    const ScopedVariable home("HOME", "/home/u");
    const Case cases[] = {
        {"~/x", "/home/u/x"},
        {"a~b", "a~b"},
        {"a ~\t~", "a /home/u\t/home/u"},
        {"~nosuchuser9/x", "~nosuchuser9/x"},
        {"$B~", "X~"},
        {"''~", "/home/u"},
        {"~root/x", "/root/x"},
        {"~~", "/home/u~"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(c.out, expanded(c.in));
    }
}

TEST(ExpandVariables, CommentsAreCopiedWhenAsked)
{
    const Case cases[] = {
        {"// $B\n$B", "// $B\nX"},
        {"/* $B */$B", "/* $B */X"},
        {"/*/ $B */$B", "/*/ $B */X"},
        {"/* '\n' ~ \\$B */'$B'", "/* '\n' ~ $B */$B"},
        {"// /* \n$B", "// /* \nX"},
        {"a/b $B", "a/b X"},
        {"/* $B", "/* $B"},
        {"${//B}", ""}, // the name itself has no comments
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(c.out, expanded(c.in, someVariables(), false));
    }
    EXPECT_EQ("// X", expanded("// $B"));
}

TEST(ExpandVariables, ARunnerReplacesCommands)
{
    const Case cases[] = {
        {"a`b $B`c", "a<b $B>c"}, {"`x\\`y`z", "<x\\`y>z"}, {"``", "<>"},        {"`fail`x", "x"},
        {"`open", "<open>"},      {"${`B`}", ""},           {"\\`a`b", "`a<b>"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.in);
        Variables variables = someVariables();
        UT_ScratchBuffer out;
        UTexpandVariables(out, c.in, lookUp, runCommand, &variables, true, true, true);
        EXPECT_STREQ(c.out, out.buffer());
    }
}

TEST(ExpandVariables, SwitchedOffKindsAreOrdinary)
{
    UT_ScratchBuffer out;
    UTexpandVariables(out, "$HOME ~ ${HOME}", nullptr, nullptr, nullptr, false, false, true);
    EXPECT_STREQ("$HOME ~ ${HOME}", out.buffer());
}

TEST(ExpandVariables, TheCountIsThatOfReplacements)
{
    const struct {
        const char *in;
        int count;
    } cases[] = {{"$JOB ~ $UNSET", 2}, {"${A${B}}", 2}, {"${NO${B}}", 1}, {"a", 0}, {"'$B'", 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.in);
        Variables variables = someVariables();
        UT_ScratchBuffer out;
        EXPECT_EQ(c.count, UTexpandVariables(out, c.in, lookUp, &variables, true, true));
    }
}

TEST(ExpandVariables, AMillionNestedBracesAreExpandedInOnePass)
{
    const int depth = 1000000;
    std::string in;
    for (int i = 0; i < depth; i++)
        in += "${";
    EXPECT_EQ(in + "B", expanded((in + "B").c_str())); // unbalanced
    in += "B" + std::string(depth, '}');
    EXPECT_EQ("B", expanded(in.c_str(), {{"B", "C"}, {"C", "B"}})); // they take turns
}

TEST(ExpandVariables, AStringTakesTheExpandedText)
{
    const ScopedVariable job("JOB", "/proj");
    UT_String text("$JOB/${JOB}");
    text.substituteVariables();
    EXPECT_STREQ("/proj//proj", text);
    UT_String unset;
    unset.substituteVariables();
    EXPECT_STREQ("", unset);
}
