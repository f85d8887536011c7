#include "UT/UT_WordList.h"

#include <gtest/gtest.h>
#include <vector>

TEST(WordList, SetsWordsAsAVectorWithANullBehindThem)
{
    const char *const word = "w";
    const struct {
        int index;
        const char *value;
    } steps[] = {{2, word},      {0, word},   {1, nullptr},   {3, nullptr}, {253, word},
                 {254, word},    {255, word}, {256, nullptr}, {5000, word}, {4999, word},
                 {300, nullptr}, {300, word}, {0, nullptr}};
    UT_WordList words;
    char **const inlineSlots = words.getArgv();
    std::vector<const char *> plain;
    size_t most = 0;
    for (const auto &[at, value] : steps) {
        const size_t index = static_cast<size_t>(at);
        if (index >= plain.size() || value == nullptr)
            plain.resize(index + (value != nullptr ? 1 : 0));
        if (value != nullptr)
            plain[index] = value;
        most = std::max(most, index + 2);
        words.setArg(at, value);
        ASSERT_EQ(static_cast<int>(plain.size()), words.getArgc()) << at;
        ASSERT_TRUE(std::equal(plain.begin(), plain.end(), words.getArgv())) << at;
        ASSERT_EQ(nullptr, words.getArgv()[plain.size()]) << at;
        ASSERT_EQ(most <= 256, words.getArgv() == inlineSlots) << at;
    }
}
