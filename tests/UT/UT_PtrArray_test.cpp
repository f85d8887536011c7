#include "UT/UT_PtrArray.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace
{
using Words = UT_PtrArray<const char *>;

int compareTexts(const void *a, const void *b)
{
    return std::strcmp(*static_cast<const char *const *>(a), *static_cast<const char *const *>(b));
}
} // namespace

TEST(PtrArray, CollapseDropsNullsAndKeepsTheOrder)
{
    Words array;
    for (const char *const word : {"", "b", "", "", "a", "c", ""})
        array.append(*word ? word : nullptr);
    const unsigned capacity = array.capacity();
    EXPECT_EQ(3u, array.collapse());
    EXPECT_EQ("bac", std::string(array(0)) + array(1) + array(2));
    EXPECT_EQ(capacity, array.capacity());
    EXPECT_EQ(3u, array.collapseToFit());
    EXPECT_EQ(3u, array.capacity());
}

TEST(PtrArray, UniqueAppendLooksForTheValueOnlyWhenAsked)
{
    Words array;
    const char *const words[] = {"a", "b"};
    EXPECT_EQ(0u, array.uniqueAppend(words[0], true));
    EXPECT_EQ(0u, array.uniqueAppend(words[0], true));
    EXPECT_EQ(1u, array.uniqueAppend(words[0], false));
    EXPECT_EQ(2u, array.uniqueAppend(words[1], true));
}

TEST(PtrArray, SortedInsertKeepsTheGivenOrderAndOneOfEachValue)
{
    Words array;
    std::string indices;
    for (const char *const word : {"pear", "apple", "fig", "apple", "quince", "pear"})
        indices += std::to_string(array.sortedInsert(word, compareTexts));
    EXPECT_EQ("001032", indices);
    EXPECT_EQ(4u, array.entries());
}
