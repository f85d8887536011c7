#include "UT/UT_QuickSort.h"

#include "tests/support/Random.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

namespace
{
using Keys = std::vector<int>;

// Lists of many lengths with few and many different keys, in any order, ascending
// and descending.
std::vector<Keys> keySets()
{
    std::vector<Keys> sets;
    Random random;
    for (size_t n = 0; n < 200; ++n)
        for (const size_t different : {size_t{3}, n / 4 + 1, size_t{1} << 31}) {
            Keys keys(n == 199 ? 1000 : n % 50);
            for (int &key : keys)
                key = static_cast<int>(random.below(different) - different / 2);
            sets.push_back(keys);
            std::sort(keys.begin(), keys.end());
            sets.push_back(keys);
            sets.emplace_back(keys.rbegin(), keys.rend());
        }
    return sets;
}

// Checks the keys and their index against the standard library's sort.
template <class Key, class Less, class... Sign>
void expectSorted(const std::vector<Key> &keys, Less less, Sign... isSigned)
{
    UT_QuickSort sorter;
    std::vector<Key> sorted = keys, twin = keys, picked;
    sorter.sort(sorted.data(), static_cast<int>(keys.size()), true, isSigned...);
    std::sort(twin.begin(), twin.end(), less);
    Keys index(sorter.index().begin(), sorter.index().end());
    for (unsigned k = 0; k < index.size(); ++k) {
        picked.push_back(keys[static_cast<size_t>(sorter(k))]);
        const bool isInOrder = k == 0 || picked[k - 1] != picked[k] || index[k - 1] < index[k];
        ASSERT_TRUE(isInOrder || keys.size() >= 20) << "not stable";
    }
    ASSERT_EQ(twin, sorted);
    ASSERT_EQ(twin, picked);
    std::sort(index.begin(), index.end());
    for (size_t i = 0; i < keys.size(); ++i)
        ASSERT_EQ(static_cast<int>(i), index[i]);
}

int compareInts(const void *a, const void *b)
{
    int first, second;
    std::memcpy(&first, a, sizeof first);
    std::memcpy(&second, b, sizeof second);
    return (first > second) - (first < second);
}

// Records of any width that begin with a key.
void expectSelected(Keys keys, size_t k, size_t width)
{
    std::string records(keys.size() * width, '#');
    for (size_t i = 0; i < keys.size(); ++i)
        std::memcpy(&records[i * width], &keys[i], sizeof(int));
    const auto n = static_cast<unsigned>(keys.size()), wanted = static_cast<unsigned>(k);
    if (width == sizeof(int))
        UT_QuickSort::select(&records[0], n, wanted, compareInts);
    else
        UT_QuickSort::select(&records[0], n, wanted, width, compareInts);
    Keys result(n);
    for (size_t i = 0; i < n; ++i)
        std::memcpy(&result[i], &records[i * width], sizeof(int));
    for (unsigned i = 0; i < n; ++i)
        ASSERT_TRUE(i < k ? result[i] <= result[k] : result[i] >= result[k]);
    std::sort(result.begin(), result.end());
    std::sort(keys.begin(), keys.end());
    ASSERT_EQ(keys, result);
}
} // namespace

TEST(QuickSort, SortsSignedUnsignedAndFloatKeysWithTheirIndex)
{
    for (const Keys &keys : keySets()) {
        SCOPED_TRACE(testing::PrintToString(keys));
        expectSorted(keys, std::less<int>(), true);
        expectSorted(
            keys, [](int a, int b) { return static_cast<unsigned>(a) < static_cast<unsigned>(b); },
            false);
        expectSorted(std::vector<float>(keys.begin(), keys.end()), std::less<float>());
    }
}

TEST(QuickSort, TheIndexIsThatOfTheLastSortThatAskedForOne)
{
    int keys[] = {3, 1, 2}, others[] = {2, 1};
    UT_QuickSort sorter;
    sorter.sort(keys, 3, true, true);
    sorter.sort(others, 2, false, true);
    EXPECT_EQ((Keys{1, 2, 0}), Keys(sorter.index().begin(), sorter.index().end()));
    sorter.sort(others, 2, true, true);
    EXPECT_EQ(2u, sorter.index().capacity());
}

TEST(QuickSort, SelectPutsTheWantedElementInItsPlaceForEveryWidth)
{
    for (const Keys &keys : keySets()) {
        SCOPED_TRACE(testing::PrintToString(keys));
        for (size_t k = 0; k < keys.size(); k += 1 + keys.size() / 10)
            for (const size_t width : {size_t{4}, size_t{5}, size_t{24}})
                expectSelected(keys, k, width);
    }
    for (const size_t width : {size_t{131071}, size_t{131072}})
        expectSelected({5, 3, 9, 1, 7}, 2, width);
}
