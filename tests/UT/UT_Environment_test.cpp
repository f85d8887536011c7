#include "UT/UT_Environment.h"

#include "tests/support/Cases.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/PlainText.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

// All entries, which are in order.
static std::vector<std::string> entries()
{
    std::vector<std::string> all;
    for (char **entry = UTgetEnvironment(); *entry != nullptr; entry++)
        all.push_back(*entry);
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
    EXPECT_EQ(environ, UTgetEnvironment());
    return all;
}

TEST(Environment, BisectionFindsWhatAScanFinds)
{
    const std::vector<std::string> before = entries();
    std::map<std::string, std::string> plain;
    forEachString("A0_ \xc3", 3, [&plain](const std::string &behind) {
        const std::string name = "UT" + behind;
        UTsetenv(name.c_str(), "old");
        UTsetenv(name.c_str(), (plain[name] = name + "=x").c_str());
    });
    ASSERT_EQ(before.size() + plain.size(), entries().size());
    for (const auto &[name, value] : plain) {
        ASSERT_EQ(value, orNull(UTgetenv(name.c_str())));
        ASSERT_EQ(nullptr, UTgetenv((name + "A0A0").c_str()));
        UTunsetenv(name.c_str());
        ASSERT_EQ(nullptr, UTgetenv(name.c_str()));
        UTunsetenv(name.c_str());
    }
    EXPECT_EQ(before, entries());
}

TEST(Environment, PutSplitsAtTheFirstEqualsSign)
{
    UTputenv("UTT=a=b");
    EXPECT_STREQ("a=b", UTgetenv("UTT"));
    UTsetenv("UTT", UTgetenv("UTT") + 2);
    EXPECT_STREQ("b", UTgetenv("UTT")) << "a part of the old value";
    EXPECT_EQ(0, std::system("test \"$UTT\" = b")) << "children see it";
    UTputenv("UTT=");
    EXPECT_STREQ("", UTgetenv("UTT"));
    UTunsetenv("UTT");
    UTputenv("UTT");
    EXPECT_EQ(nullptr, UTgetenv("UTT"));
    EXPECT_EQ(0, std::system("test -z \"${UTT+set}\""));
}

TEST(Environment, AReplacedEnvironmentIsCopiedAgain)
{
    if (!isFreshProcess({"UTT"})) // one that is dropped
        return;
    expectEach({" -> (null)", "B=x -> x B=x", "C=1 A=2 -> (null) A=2 C=1", "C=1 LOST B= -> B= C=1",
                "(null) -> (null)"},
               [](const char *in) {
                   std::vector<std::string> texts = plainSplitWords(in != nullptr ? in : "");
                   std::vector<char *> foreign = pointersTo(texts);
                   environ = in != nullptr ? foreign.data() : nullptr;
                   std::string found = orNull(UTgetenv("B"));
                   for (const std::string &entry : entries())
                       found += (found.empty() ? "" : " ") + entry;
                   UTsetenv("B", "set");
                   EXPECT_STREQ("set", UTgetenv("B"));
                   return found;
               });
}
