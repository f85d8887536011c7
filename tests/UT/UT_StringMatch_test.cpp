#include "UT/UT_String.h"
#include "UT/UT_WordList.h"
#include "tests/support/PlainText.h"

#include <gtest/gtest.h>

TEST(StringMatch, MatchesTheWholeText)
{
    const struct {
        const char *text, *pattern;
        bool exact, anyCase;
    } cases[] = {
        {"file.c", "*.c", true, true},    {"file.c", "*.C", false, true},
        {"file.c", "file", false, false}, {"", "*", true, true},
        {"", "?", false, false},          {"", "", true, true},
        {"ab", "a**b", true, true},       {"ab", "[xa]?", true, true},
        {"a", "[A]", false, true},        {"a", "[]", false, false},
        {"a", "[a", false, false},        {"b", "[a-c]", false, false},
        {"*", "\\*", true, true},         {"a", "\\*", false, false},
        {"abab", "*a*b", true, true},     {nullptr, "*", false, false},
        {"a", nullptr, false, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.pattern));
        EXPECT_EQ(c.exact, UT_String(c.text).match(c.pattern));
        EXPECT_EQ(c.anyCase, UT_String(c.text).match(c.pattern, false));
    }
}

TEST(StringMatch, AgreesWithThePlainMatcher)
{
    std::vector<std::string> texts;
    forEachString("aB]\\", 3, [&texts](const std::string &text) { texts.push_back(text); });
    forEachString("abB*?[]\\", 4, [&texts](const std::string &pattern) {
        for (const std::string &text : texts)
            for (const bool exact : {true, false})
                ASSERT_EQ(plainMatch(text.c_str(), pattern.c_str(), exact),
                          UT_String(text.c_str()).match(pattern.c_str(), exact))
                    << text << " with " << pattern;
    });
}

TEST(StringMatch, TheRightmostMatchingPatternDecides)
{
    UT_WordList patterns;
    for (const char *pattern : {"*.c", "^x*", "xy.*"})
        patterns.setArg(patterns.getArgc(), pattern);
    for (const bool otherwise : {true, false}) {
        EXPECT_TRUE(UT_String("a.c").matchAny(patterns, otherwise));
        EXPECT_FALSE(UT_String("xz.c").matchAny(patterns, otherwise));
        EXPECT_TRUE(UT_String("xy.o").matchAny(patterns, otherwise));
        EXPECT_EQ(otherwise, UT_String("a.o").matchAny(patterns, otherwise));
    }
}
