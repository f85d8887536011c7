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
    expectTable(
        TEST_DATA "/data/variables",
        {{"all", [](const char *in) { return expanded(in); }},
         {"outside comments", [](const char *in) { return expanded(in, SOME, false); }},
         {"with commands", [](const char *in) { return expanded(in, SOME, true, runCommand); }},
         {"$F3",
          [](const char *in) {
              return expanded("$F3", {{"F", in}});
          }},
         {"B and C by turns", [](const char *in) {
              return expanded(in, {{"B", "C"}, {"C", "B"}});
          }}});
    EXPECT_EQ(2 + 9999u, expanded("$F99999999999999999999").size());
    const passwd *root = getpwnam("root");
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(std::string("1 ") + root->pw_dir + "/x", expanded("~root/x"));
    const ScopedVariable on("VELDRIN8_COMPATIBILITY", "1");
    EXPECT_EQ("1 /p/c.t:t", expanded("$J_1:t"));
}

TEST(ExpandVariables, TheEnvironmentIsTheUsualPlaceToLookNamesUp)
{
    const ScopedVariable job("JOB", "/proj");
    expectEach({"$JOB/${JOB} //~' -> /proj//proj //~", "(null) -> "},
               editing([](UT_String &s) { s.substituteVariables(); }));
    UT_ScratchBuffer out;
    UTexpandVariables(out, "$JOB ~ '${JOB}'", nullptr, nullptr, nullptr, false, false, true);
    EXPECT_STREQ("$JOB ~ ${JOB}", out.buffer());
}
