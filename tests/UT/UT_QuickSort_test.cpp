#include "UT/UT_QuickSort.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace
{
// Keys of all kinds: few different ones, many, ordered, equal.
std::vector<std::vector<int>> keySets()
{
    std::mt19937 random(7);
    std::vector<std::vector<int>> sets = {{}, {4}};
    for (const int n : {2, 3, 19, 20, 21, 100, 1000}) {
        std::vector<int> few, many, ascending, descending;
        for (int i = 0; i < n; ++i) {
            few.push_back(static_cast<int>(random() % 5) - 2);
            many.push_back(static_cast<int>(random()));
            ascending.push_back(i - n / 2);
            descending.push_back(n / 2 - i);
        }
        const std::vector<int> equal(static_cast<size_t>(n), 3);
        sets.insert(sets.end(), {few, many, ascending, descending, equal});
    }
    return sets;
}

// Sorts a copy and checks the result against std::sort and the index.
template <class Key, class... Sign>
void expectSorted(const std::vector<Key> &keys, Sign... isSigned)
{
    UT_QuickSort sorter;
    std::vector<Key> sorted = keys, twin = keys;
    sorter.sort(sorted.data(), static_cast<int>(keys.size()), true, isSigned...);
    std::sort(twin.begin(), twin.end(), [&](Key a, Key b) {
        return (isSigned && ...) ? a < b : static_cast<unsigned>(a) < static_cast<unsigned>(b);
    });
    EXPECT_EQ(twin, sorted);
    std::vector<Key> picked;
    for (const int position : sorter.index())
        picked.push_back(keys[static_cast<size_t>(position)]);
    EXPECT_EQ(twin, picked);
    std::set<int> positions(sorter.index().begin(), sorter.index().end());
    EXPECT_EQ(keys.size(), positions.size());
}

int compareInts(const void *a, const void *b)
{
    int first, second;
    std::memcpy(&first, a, sizeof first);
    std::memcpy(&second, b, sizeof second);
    return (first > second) - (first < second);
}

// Records of any width that begin with an int: the k-th and its neighbours after
// a selection.
void expectSelected(const std::vector<int> &keys, unsigned k, size_t width)
{
    std::string records(keys.size() * width, '#');
    for (size_t i = 0; i < keys.size(); ++i)
        std::memcpy(&records[i * width], &keys[i], sizeof(int));
    const auto n = static_cast<unsigned>(keys.size());
    if (width == sizeof(int))
        UT_QuickSort::select(&records[0], n, k, compareInts);
    else
        UT_QuickSort::select(&records[0], n, k, width, compareInts);
    std::vector<int> result(keys.size());
    for (size_t i = 0; i < keys.size(); ++i)
        std::memcpy(&result[i], &records[i * width], sizeof(int));

    for (unsigned i = 0; i < n; ++i)
        ASSERT_TRUE(i < k ? result[i] <= result[k] : result[i] >= result[k]);
    std::vector<int> sorted = keys;
    std::sort(sorted.begin(), sorted.end());
    std::sort(result.begin(), result.end());
    EXPECT_EQ(sorted, result);
}
} // namespace

TEST(QuickSort, SortsSignedUnsignedAndFloatKeysWithTheirIndex)
{
    for (const std::vector<int> &keys : keySets()) {
        SCOPED_TRACE(keys.size());
        expectSorted(keys, true);
        expectSorted(keys, false);
        expectSorted(std::vector<float>(keys.begin(), keys.end()));
    }
}

TEST(QuickSort, FewerThanTwentyKeysAreSortedStably)
{
    std::vector<int> keys(19);
    for (int i = 0; i < 19; ++i)
        keys[static_cast<size_t>(i)] = -(i % 3);
    const std::vector<int> before = keys;
    UT_QuickSort sorter;
    sorter.sort(keys.data(), 19, true, true);
    for (unsigned i = 1; i < 19; ++i)
        EXPECT_TRUE(keys[i - 1] < keys[i] || sorter(i - 1) < sorter(i));
}

TEST(QuickSort, TheIndexBelongsToTheLastSortThatAskedForOne)
{
    int keys[] = {3, 1, 2}, others[] = {2, 1};
    UT_QuickSort sorter;
    sorter.sort(keys, 3, true, true);
    EXPECT_THAT(keys, testing::ElementsAre(1, 2, 3));
    sorter.sort(others, 2, false, true);
    EXPECT_THAT(std::vector<int>(sorter.index().begin(), sorter.index().end()),
                testing::ElementsAre(1, 2, 0));
}

TEST(QuickSort, SelectPutsTheWantedElementInItsPlaceForEveryWidth)
{
    for (const std::vector<int> &keys : keySets()) {
        const auto n = static_cast<unsigned>(keys.size());
        SCOPED_TRACE(n);
        for (unsigned k = 0; k < n; k += 1 + n / 10)
            for (const size_t width : {size_t{4}, size_t{5}, size_t{24}})
                expectSelected(keys, k, width);
    }
    for (const size_t width : {size_t{131071}, size_t{131072}})
        expectSelected({5, 3, 9, 1, 7}, 2, width);
}
