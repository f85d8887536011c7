#include "UT/UT_WordList.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(WordList, SkippedSlotsAreNullAndANullCutsTheList)
{
    UT_WordList words;
    words.setArg(2, "c");
    EXPECT_EQ(3, words.getArgc());
    EXPECT_EQ(nullptr, words.getArg(0));
    EXPECT_EQ(nullptr, words.getArg(1));
    words.setArg(0, "a");
    EXPECT_EQ(3, words.getArgc());
    words.setArg(1, nullptr);
    EXPECT_EQ(1, words.getArgc());
    EXPECT_EQ(nullptr, words.getArgv()[1]);
    words.setArg(3, nullptr);
    EXPECT_EQ(3, words.getArgc());
    EXPECT_STREQ("a", words.getArg(0));
    EXPECT_EQ(nullptr, words.getArg(2));
    EXPECT_EQ(nullptr, words.getArgv()[3]);
}

TEST(WordList, LeavesItsInlineSlotsOnlyWhenTheyAreFull)
{
    UT_WordList words;
    const std::vector<std::string> texts(3000, "w");
    char **inlineSlots = words.getArgv();
    for (int i = 0; i < 3000; ++i) {
        words.setArg(i, texts[static_cast<size_t>(i)].c_str());
        ASSERT_EQ(i < 255, inlineSlots == words.getArgv()) << i;
        ASSERT_EQ(nullptr, words.getArgv()[i + 1]) << i;
    }
    for (int i = 0; i < 3000; ++i)
        ASSERT_EQ(texts[static_cast<size_t>(i)].c_str(), words.getArg(i)) << i;
}

TEST(WordList, OneStepMayGrowItManyTimes)
{
    UT_WordList words;
    words.setArg(5000, "z");
    EXPECT_EQ(5001, words.getArgc());
    EXPECT_EQ(nullptr, words.getArg(4999));
    EXPECT_STREQ("z", words.getArg(5000));
    EXPECT_EQ(nullptr, words.getArgv()[5001]);
}
