#include "UT/UT_QuickSort.h"

#include "tests/support/Random.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>

namespace
{
using Keys = std::vector<int>;

// Visits lists of many lengths with few and many different keys, in any order, ascending
// and descending.
void forEachList(const std::function<void(const Keys &)> &visit)
{
    Random random;
    for (size_t n = 0; n < 200; ++n)
        for (const size_t different : {size_t{3}, size_t{20}, size_t{1} << 31}) {
            Keys keys(n == 199 ? 1000 : n % 50);
            SCOPED_TRACE(testing::Message() << random.seed() << ": list " << n);
            for (int &key : keys)
                key = static_cast<int>(random.below(different) - different / 2);
            visit(keys);
            std::sort(keys.begin(), keys.end());
            visit(keys);
            visit(Keys(keys.rbegin(), keys.rend()));
        }
}

// Checks the keys and their index against the standard library's sort.
template <class Key, class Less, class... Sign>
void expectSorted(const std::vector<Key> &keys, Less less, Sign... isSigned)
{
    UT_QuickSort sorter;
    std::vector<Key> sorted = keys, twin = keys;
    sorter.sort(sorted.data(), static_cast<int>(keys.size()), true, isSigned...);
    std::sort(twin.begin(), twin.end(), less);
    ASSERT_EQ(twin, sorted);
    Keys index(sorter.index().begin(), sorter.index().end());
    ASSERT_EQ(keys.size(), index.size());
    for (unsigned k = 0; k < index.size(); ++k) {
        ASSERT_EQ(sorted[k], keys[static_cast<size_t>(sorter(k))]);
        const bool isInOrder = k == 0 || sorted[k - 1] != sorted[k] || index[k - 1] < index[k];
        ASSERT_TRUE(isInOrder || keys.size() >= 20) << "not stable";
    }
    std::sort(index.begin(), index.end());
    ASSERT_EQ(index.end(), std::adjacent_find(index.begin(), index.end()));
}

// Elements of N words that all hold the key.
template <size_t N>
void expectSelected(const Keys &keys, size_t k)
{
    using Element = std::array<int, N>;
    std::vector<Element> elements(keys.size());
    for (size_t i = 0; i < keys.size(); ++i)
        elements[i].fill(keys[i]);
    std::vector<Element> sorted = elements;
    std::sort(sorted.begin(), sorted.end());
    const auto compare = [](const void *a, const void *b) {
        const auto &first = *static_cast<const Element *>(a);
        return (first > *static_cast<const Element *>(b)) -
               (first < *static_cast<const Element *>(b));
    };
    const auto n = static_cast<unsigned>(keys.size()), wanted = static_cast<unsigned>(k);
    if (N == 1)
        UT_QuickSort::select(elements.data(), n, wanted, compare);
    else
        UT_QuickSort::select(elements.data(), n, wanted, sizeof(Element), compare);
    ASSERT_TRUE(elements[k] == sorted[k]);
    for (size_t i = 0; i < n; ++i)
        ASSERT_TRUE(i < k ? elements[i] <= sorted[k] : elements[i] >= sorted[k]);
    std::sort(elements.begin(), elements.end());
    ASSERT_TRUE(elements == sorted);
}
} // namespace

TEST(QuickSort, SortsSignedUnsignedAndFloatKeysWithTheirIndex)
{
    forEachList([](const Keys &keys) {
        const auto lessUnsigned = [](int a, int b) {
            return static_cast<unsigned>(a) < static_cast<unsigned>(b);
        };
        expectSorted(keys, std::less<int>(), true);
        expectSorted(keys, lessUnsigned, false);
        expectSorted(std::vector<float>(keys.begin(), keys.end()), std::less<float>());
    });
}

TEST(QuickSort, TheIndexIsThatOfTheLastSortThatAskedForOne)
{
    int keys[] = {3, 1, 2};
    UT_QuickSort sorter;
    sorter.sort(keys, 3, true, true);
    sorter.sort(keys, 2, false, true);
    EXPECT_EQ((Keys{1, 2, 0}), Keys(sorter.index().begin(), sorter.index().end()));
    sorter.sort(keys, 2, true, true);
    EXPECT_EQ(2u, sorter.index().capacity());
}

TEST(QuickSort, SelectPutsTheWantedElementInItsPlaceForEveryWidth)
{
    forEachList([](const Keys &keys) {
        for (size_t k = 0; k < keys.size(); k += 1 + keys.size() / 10) {
            expectSelected<1>(keys, k);
            expectSelected<6>(keys, k);
        }
    });
    expectSelected<131072 / sizeof(int)>({5, 3, 9, 1, 7}, 2); // beyond the stack
}
