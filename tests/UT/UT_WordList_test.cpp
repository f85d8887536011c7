#include "UT/UT_WordList.h"

#include <gtest/gtest.h>
#include <vector>

TEST(WordList, SetsWordsAsAVectorWithANullBehindThem)
{
    UT_WordList words;
    char **const inlineSlots = words.getArgv();
    std::vector<const char *> plain;
    int most = 0;
    // Where a word is set, or null at ~index.
    for (const int step : {2, 0, ~1, ~3, 253, 254, 255, ~256, 5000, 4999, ~300, 300, ~0}) {
        const int index = step < 0 ? ~step : step;
        const char *value = step < 0 ? nullptr : "w";
        if (step < 0 || index >= static_cast<int>(plain.size()))
            plain.resize(static_cast<size_t>(step < 0 ? index : index + 1));
        if (step >= 0)
            plain[static_cast<size_t>(index)] = value;
        most = std::max(most, index + 2);
        words.setArg(index, value);
        ASSERT_EQ(static_cast<int>(plain.size()), words.getArgc()) << step;
        ASSERT_TRUE(std::equal(plain.begin(), plain.end(), words.getArgv())) << step;
        ASSERT_EQ(nullptr, words.getArgv()[plain.size()]) << step;
        ASSERT_EQ(most <= 256, words.getArgv() == inlineSlots) << step;
    }
}
