#include "UT/UT_Environment.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace
{
// The plain twin of UTgetenv: looks at every entry.
const char *scanned(const std::string &name)
{
    for (char **entry = UTgetEnvironment(); *entry != nullptr; entry++)
        if (std::strncmp(*entry, (name + "=").c_str(), name.size() + 1) == 0)
            return *entry + name.size() + 1;
    return nullptr;
}

std::string orNull(const char *text)
{
    return text != nullptr ? text : "(null)";
}

// Runs in a child process: `environ` becomes `entries`, and the exit status tells
// whether the store then holds what `expected` lists.
[[noreturn]] void checkReplaced(const char *const *entries, const char *expected)
{
    environ = const_cast<char **>(entries);
    std::string all = orNull(UTgetenv("B"));
    for (char **entry = UTgetEnvironment(); *entry != nullptr; entry++)
        all += std::string("|") + *entry;
    std::fprintf(stderr, "%s", all.c_str());
    UTsetenv("B", "set");
    std::exit(
        all == expected && orNull(UTgetenv("B")) == "set" && environ == UTgetEnvironment() ? 0 : 1);
}
} // namespace

TEST(Environment, BisectionFindsWhatAScanFinds)
{
    const char *const names[] = {"UTT",   "UTT_", "UTT_A", "UTTA", "UTT0",
                                 "UTT A", "UTu",  "A",     "zz",   "\xc3\xa9"};
    for (const char *name : names) {
        UTsetenv(name, name);
        for (const char *other : names) {
            SCOPED_TRACE(std::string(name) + " then " + other);
            EXPECT_EQ(scanned(other), UTgetenv(other));
        }
    }
    for (const char *name : names) {
        EXPECT_STREQ(name, UTgetenv(name));
        UTunsetenv(name);
        EXPECT_EQ(nullptr, UTgetenv(name));
        EXPECT_EQ(nullptr, scanned(name));
    }
    UTunsetenv("UTT"); // not there any more
}

TEST(Environment, AValueMayBeAPartOfTheOldOne)
{
    UTsetenv("UTT", "first=second");
    UTsetenv("UTT", UTgetenv("UTT") + 6);
    EXPECT_STREQ("second", UTgetenv("UTT"));
    UTunsetenv("UTT");
}

TEST(Environment, PutSplitsAtTheFirstEqualsSign)
{
    UTputenv("UTT=a=b");
    EXPECT_STREQ("a=b", UTgetenv("UTT"));
    UTputenv("UTT=");
    EXPECT_STREQ("", UTgetenv("UTT"));
    UTunsetenv("UTT");
    UTputenv("UTT");
    EXPECT_EQ(nullptr, UTgetenv("UTT"));
}

TEST(Environment, ChildProcessesSeeChanges)
{
    UTsetenv("UTT_CHILD", "inherited");
    EXPECT_EQ(0, std::system("test \"$UTT_CHILD\" = inherited"));
    UTunsetenv("UTT_CHILD");
    EXPECT_EQ(0, std::system("test -z \"$UTT_CHILD\""));
}

TEST(Environment, AReplacedEnvironmentIsCopiedAgain)
{
    const struct {
        const char *what;
        const char *entries[4];
        const char *expected; // B's value and all entries
    } cases[] = {
        {"empty", {nullptr}, "(null)"},
        {"one entry", {"B=x", nullptr}, "x|B=x"},
        {"two entries", {"C=1", "A=2", nullptr}, "(null)|A=2|C=1"},
        {"entry without =", {"C=1", "LOST", "B=", nullptr}, "|B=|C=1"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EXIT(checkReplaced(c.entries, c.expected), testing::ExitedWithCode(0), "");
    }
    EXPECT_EXIT(checkReplaced(nullptr, "(null)"), testing::ExitedWithCode(0), "");
}
