#include "UT/UT_PtrArray.h"

#include <cstring>
#include <gmock/gmock.h>
#include <vector>

namespace
{
char objects[32]; // what the elements point to: ascending addresses

UT_VoidPtrArray pointers(std::initializer_list<int> numbers)
{
    UT_VoidPtrArray array;
    for (const int number : numbers)
        array.append(number < 0 ? nullptr : objects + number);
    return array;
}

// The elements as offsets into `objects`, null as -1.
std::vector<int> numbersOf(const UT_VoidPtrArray &array)
{
    std::vector<int> numbers;
    for (void *const element : array)
        numbers.push_back(element ? static_cast<int>(static_cast<char *>(element) - objects) : -1);
    return numbers;
}

int compareTexts(const void *a, const void *b)
{
    return std::strcmp(*static_cast<const char *const *>(a), *static_cast<const char *const *>(b));
}
} // namespace

using testing::ElementsAre;

TEST(PtrArray, GrowthCountsOneAheadExceptWhereAValueIsInserted)
{
    const struct {
        const char *what;
        unsigned before; // entries, in as many slots
        void (*grow)(UT_VoidPtrArray &);
        unsigned capacity;
    } cases[] = {
        {"append", 5, [](UT_VoidPtrArray &a) { a.append(nullptr); }, 10},
        {"append to many", 128, [](UT_VoidPtrArray &a) { a.append(nullptr); }, 257},
        {"append to very many", 2000, [](UT_VoidPtrArray &a) { a.append(nullptr); }, 2251},
        {"value inside", 5, [](UT_VoidPtrArray &a) { a.insertAt(nullptr, 1); }, 9},
        {"no value inside", 5, [](UT_VoidPtrArray &a) { a.insert(1); }, 10},
        {"value at the end", 5, [](UT_VoidPtrArray &a) { a.insertAt(nullptr, 5); }, 9},
        {"value behind the end", 5, [](UT_VoidPtrArray &a) { a.insertAt(nullptr, 10); }, 14},
        {"no value behind the end", 5, [](UT_VoidPtrArray &a) { a.insert(10); }, 14},
        {"large gap", 5, [](UT_VoidPtrArray &a) { a.insertGap(1, 20); }, 28},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_VoidPtrArray array;
        array.setCapacity(c.before);
        array.insertGap(0, c.before);
        ASSERT_EQ(c.before, array.capacity());
        c.grow(array);
        EXPECT_EQ(c.capacity, array.capacity());
    }
}

TEST(PtrArray, AFarInsertLeavesNullsBetween)
{
    UT_VoidPtrArray array;
    EXPECT_EQ(10u, array.insertAt(objects, 10));
    EXPECT_EQ(14u, array.capacity());
    EXPECT_THAT(numbersOf(array), ElementsAre(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 0));

    UT_VoidPtrArray used = pointers({1, 2, 3});
    used.removeIndex(2);
    used.removeIndex(1);
    used.insertAt(objects + 4, 3);
    EXPECT_THAT(numbersOf(used), ElementsAre(1, -1, -1, 4));
}

TEST(PtrArray, CollapseDropsNullsAndKeepsTheOrder)
{
    UT_VoidPtrArray array = pointers({-1, 3, -1, -1, 1, 2, -1});
    const unsigned capacity = array.capacity();
    EXPECT_EQ(3u, array.collapse());
    EXPECT_THAT(numbersOf(array), ElementsAre(3, 1, 2));
    EXPECT_EQ(capacity, array.capacity());
    EXPECT_EQ(3u, array.collapseToFit());
    EXPECT_EQ(3u, array.capacity());
}

TEST(PtrArray, UniqueAppendLooksForTheValueOnlyWhenAsked)
{
    UT_VoidPtrArray array = pointers({4, 5});
    EXPECT_EQ(0u, array.uniqueAppend(objects + 4, true));
    EXPECT_EQ(2u, array.uniqueAppend(objects + 4, false));
    EXPECT_EQ(3u, array.uniqueAppend(objects + 6, true));
}

TEST(PtrArray, SortedInsertKeepsTheGivenOrderAndOneOfEachValue)
{
    UT_PtrArray<const char *> words;
    for (const char *const word : {"pear", "apple", "fig", "apple", "quince", "pear"})
        words.sortedInsert(word, compareTexts);
    EXPECT_THAT(std::vector<const char *>(words.begin(), words.end()),
                ElementsAre(testing::StrEq("apple"), testing::StrEq("fig"), testing::StrEq("pear"),
                            testing::StrEq("quince")));
    EXPECT_EQ(2u, words.sortedInsert("pear", compareTexts));

    UT_VoidPtrArray array;
    for (const int number : {7, 3, 7, 9, 1})
        array.sortedInsert(objects + number);
    EXPECT_THAT(numbersOf(array), ElementsAre(1, 3, 7, 9));
}

TEST(PtrArray, SortAndBsearchUseTheCallersComparison)
{
    UT_PtrArray<const char *> words;
    for (const char *const word : {"c", "a", "b"})
        words.append(word);
    words.sort(compareTexts);
    const char *present = "b", *absent = "bb";
    EXPECT_EQ(1, words.bsearch(&present, compareTexts));
    EXPECT_EQ(-1, words.bsearch(&absent, compareTexts));
    words.setCapacity(0);
    words.sort(compareTexts);
    EXPECT_EQ(-1, words.bsearch(&present, compareTexts));
}
