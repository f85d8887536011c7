#include "UT/UT_PtrArray.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

static int compareTexts(const void *a, const void *b)
{
    return std::strcmp(*static_cast<const char *const *>(a), *static_cast<const char *const *>(b));
}

TEST(PtrArray, KeepsOneOfEachAndInTheGivenOrderWhenAskedTo)
{
    UT_PtrArray<const char *> sorted, unique;
    std::string sortedAt, uniqueAt;
    for (const char *const word : {"pear", "apple", "fig", "apple", "quince", "pear"}) {
        sortedAt += std::to_string(sorted.sortedInsert(word, compareTexts));
        uniqueAt += std::to_string(unique.uniqueAppend(sorted(0), *word != 'f'));
    }
    EXPECT_EQ("001032", sortedAt);
    EXPECT_EQ(4u, sorted.entries());
    EXPECT_EQ("012111", uniqueAt); // "pear" and then "apple", which is there twice
}

TEST(PtrArray, CollapseDropsNullsAndKeepsTheOrder)
{
    UT_PtrArray<const char *> array;
    for (const char *const word : {"", "b", "", "", "a", "c", ""})
        array.append(*word ? word : nullptr);
    const unsigned capacity = array.capacity();
    EXPECT_EQ(3u, array.collapse());
    EXPECT_EQ("bac", std::string(array(0)) + array(1) + array(2));
    EXPECT_EQ(capacity, array.capacity());
    EXPECT_EQ(3u, array.collapseToFit());
    EXPECT_EQ(3u, array.capacity());
}
