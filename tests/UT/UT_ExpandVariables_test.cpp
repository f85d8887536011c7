#include "UT/UT_ExpandVariables.h"

#include "UT/UT_ScratchBuffer.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"
#include "tests/support/ScopedVariable.h"

#include <pwd.h>

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
    return std::string(command) == "fail" ? nullptr : theOutput.c_str();
}

const Variables SOME = {{"B", "X"}, {"AX", "ok"}, {"D", "$B"},    {"F", "7"},       {"F3x", "f3x"},
                        {"", "-"},  {"_", "low"}, {"N:t", "odd"}, {"J_1", "/p/c.t"}};

// The count of replacements and the text.
std::string expanded(const char *in, Variables variables = SOME, bool inComments = true,
                     UT_CommandRunner runner = nullptr)
{
    UT_ScratchBuffer out;
    out.append("old");
    const int count =
        UTexpandVariables(out, in, lookUp, runner, &variables, true, true, inComments);
    return std::to_string(count) + ' ' + out.buffer();
}
} // namespace

TEST(ExpandVariables, AgreesWithThePlainExpansion)
{
    const ScopedVariable home("HOME", "/home/u");
    const Variables variables = {{"B", "X"}, {"X", "B"}, {"F", "-7.r"}, {"", "+"}};
    for (const std::string alphabet :
         {"$B{}", "$B\\'~ ", "$F3_:r", "$B{}'\\", "/*$\n\\'B", "`$B\\'{}"}) {
        const bool runs = alphabet[0] == '`';
        const bool inComments = alphabet[0] != '/';
        forEachString(alphabet, alphabet.size() < 6 ? 7 : 5, [&](const std::string &in) {
            PlainExpansion plain = {variables, "/home/u", runs, inComments};
            const std::string out = plain.of(in);
            ASSERT_EQ(std::to_string(plain.count) + ' ' + out,
                      expanded(in.c_str(), variables, inComments, runs ? runCommand : nullptr))
                << in;
        });
    }
}

TEST(ExpandVariables, FollowsItsRules)
{
    const ScopedVariable home("HOME", "/home/u");
    expectEach({"$J_1/lib ${B}lib $UNSET:t/x $/ a$ -> 2 /p/c.t/lib Xlib /x $/ a$",
                "$D ${A${B}} ${NO${B}} ${{B}} ${'}B'} -> 5 $B ok   -B}",
                "$B ${J {} $B -> 1 X ${J {} $B",
                "$J_1:t:r! $J_1:s/p/z/ $J_1: t $F3x -> 4 c! /z/c.t /p/c.t: t f3x",
                "${N:t} ${J_1}:t -> 2 odd /p/c.t:t",
                "\\$B \\\\$B a\\b '$B' $B 'a\\'b -> 2 $B \\X a\\b $B X a\\'b",
                "~/x a~b ''~ ~~ ~nosuchuser9/x -> 3 /home/u/x a~b /home/u /home/u~ ~nosuchuser9/x",
                "$B ~ $UNSET `x` // $B -> 3 X /home/u  `x` // X", "(null) -> 0 "},
               [](const char *in) { return expanded(in); });
    expectEach(
        {"// $B\n$B -> 1 // $B\nX", "/*/ '$B */$B -> 1 /*/ '$B */X", "${//$B}/**//$B -> 2 /**//X"},
        [](const char *in) { return expanded(in, SOME, false); });
    expectEach({"a`b $B`c -> 1 a<b $B>c", "`fail`x -> 0 x", "`open -> 1 <open>"},
               [](const char *in) { return expanded(in, SOME, true, runCommand); });
    const passwd *root = getpwnam("root");
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(std::string("1 ") + root->pw_dir + "/x", expanded("~root/x"));
    const ScopedVariable on("VELDRIN8_COMPATIBILITY", "1");
    EXPECT_EQ("1 /p/c.t:t", expanded("$J_1:t"));
}

TEST(ExpandVariables, FrameReferencesArePadded)
{
    const char *const cases[][2] = {{"7", "1 007"},  {"-7", "1 -07"}, {"+7", "1 +07"},
                                    {"ab", "1  ab"}, {"-a", "1  -a"}, {"12", "1 012"},
                                    {"", "1    "},   {"7a", "1 07a"}, {"1234", "1 1234"}};
    for (const auto &[value, out] : cases) {
        for (const char *in : {"$F3", "${F3}", "$F03"})
            EXPECT_EQ(out, expanded(in, {{"F", value}})) << in << " of " << value;
    }
    EXPECT_EQ(2 + 9999u, expanded("$F99999999999999999999").size());
}

TEST(ExpandVariables, AMillionNestedBracesAreExpandedInOnePass)
{
    const int depth = 1000000;
    std::string in;
    for (int i = 0; i < depth; i++)
        in += "${";
    EXPECT_EQ("0 " + in + "B", expanded((in + "B").c_str())); // unbalanced
    in += "B" + std::string(depth, '}');
    EXPECT_EQ("1000000 B", expanded(in.c_str(), {{"B", "C"}, {"C", "B"}})); // they take turns
}

TEST(ExpandVariables, TheEnvironmentIsTheUsualPlaceToLookNamesUp)
{
    const ScopedVariable job("JOB", "/proj");
    expectEdits({"$JOB/${JOB} //~' -> /proj//proj //~", "(null) -> "},
                [](UT_String &s) { s.substituteVariables(); });
    UT_ScratchBuffer out;
    UTexpandVariables(out, "$JOB ~ '${JOB}'", nullptr, nullptr, nullptr, false, false, true);
    EXPECT_STREQ("$JOB ~ ${JOB}", out.buffer());
}
