#include "UT/UT_WordList.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

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
    for (const char *matching : {"?", "[xbc]", "b", "**b", "\\b", "*[a-b]*"})
        EXPECT_TRUE(UT_String("b").match(matching)) << matching;
    for (const char *other : {"[a-c]", "[^a]", "[]", "[b", "B", "b?", "\\*", "", "[]b]"})
        EXPECT_FALSE(UT_String("b").match(other)) << other;
    EXPECT_FALSE(UT_String().match("*") || UT_String("a").match(nullptr));
    const UT_String s("one two");
    EXPECT_TRUE(s.contains("e t") && s.contains("e?t", false, true) && s.contains(""));
    EXPECT_FALSE(s.contains("e?t") || s.contains("E?t", false, true) || UT_String().contains(""));
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
