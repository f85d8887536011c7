#include "UT/UT_IntegerArray.h"

#include <algorithm>
#include <climits>
#include <gmock/gmock.h>
#include <random>
#include <vector>

namespace
{
UT_IntegerArray integers(const std::vector<int> &values)
{
    UT_IntegerArray array;
    for (const int value : values)
        array.append(value);
    return array;
}

std::vector<int> valuesOf(const UT_IntegerArray &array)
{
    return {array.begin(), array.end()};
}
} // namespace

using testing::ElementsAre;

TEST(IntegerArray, CapacityGrowsByFourThenByBlocksThenByAnEighth)
{
    UT_IntegerArray array;
    std::vector<unsigned> capacities;
    while (array.entries() < 1300) {
        const unsigned before = array.capacity();
        array.append(0);
        if (array.capacity() != before)
            capacities.push_back(array.capacity());
    }
    ASSERT_EQ(42u, capacities.size());
    EXPECT_THAT(std::vector<unsigned>(capacities.begin(), capacities.begin() + 3),
                ElementsAre(4, 8, 12));
    EXPECT_THAT(std::vector<unsigned>(capacities.begin() + 30, capacities.end()),
                ElementsAre(124, 128, 256, 384, 512, 640, 768, 896, 1024, 1152, 1296, 1458));
}

TEST(IntegerArray, SetCapacityCutsTheElementsAndZeroesNewSlots)
{
    UT_IntegerArray array = integers({1, 2, 3, 4, 5});
    array.setCapacity(3);
    EXPECT_THAT(valuesOf(array), ElementsAre(1, 2, 3));
    array.setCapacity(6);
    array.insert(5);
    EXPECT_THAT(valuesOf(array), ElementsAre(1, 2, 3, 0, 0, 0));
    array.setCapacity(0);
    EXPECT_EQ(0u, array.entries());
    EXPECT_EQ(0u, array.capacity());
}

TEST(IntegerArray, EditingKeepsTheOtherElementsInOrder)
{
    const struct {
        const char *what;
        void (*edit)(UT_IntegerArray &);
        std::vector<int> result; // from 0 1 2 3 4
    } cases[] = {
        {"insert", [](UT_IntegerArray &a) { a.insertAt(9, 1); }, {0, 9, 1, 2, 3, 4}},
        {"insert own element", [](UT_IntegerArray &a) { a.insertAt(a(4), 0); }, {4, 0, 1, 2, 3, 4}},
        {"gap", [](UT_IntegerArray &a) { a.insertGap(5, 2); }, {0, 1, 2, 3, 4, 0, 0}},
        {"no gap", [](UT_IntegerArray &a) { a.insertGap(2, 0); }, {0, 1, 2, 3, 4}},
        {"remove", [](UT_IntegerArray &a) { a.removeIndex(0); }, {1, 2, 3, 4}},
        {"remove last", [](UT_IntegerArray &a) { a.removeIndex(4); }, {0, 1, 2, 3}},
        {"find and remove", [](UT_IntegerArray &a) { a.findAndRemove(3); }, {0, 1, 2, 4}},
        {"concat self", [](UT_IntegerArray &a) { a.concat(a); }, {0, 1, 2, 3, 4, 0, 1, 2, 3, 4}},
        {"reverse", [](UT_IntegerArray &a) { a.reverse(); }, {4, 3, 2, 1, 0}},
        {"cycle", [](UT_IntegerArray &a) { a.cycle(2); }, {3, 4, 0, 1, 2}},
        {"cycle round", [](UT_IntegerArray &a) { a.cycle(11); }, {4, 0, 1, 2, 3}},
        {"constant", [](UT_IntegerArray &a) { a.constant(-1); }, {-1, -1, -1, -1, -1}},
        {"move up", [](UT_IntegerArray &a) { a.moveBlock(0, 3, 2); }, {2, 3, 4, 0, 1}},
        {"move down", [](UT_IntegerArray &a) { a.moveBlock(3, 1, 2); }, {0, 3, 4, 1, 2}},
        {"sorted insert", [](UT_IntegerArray &a) { a.sortedInsert(-7); }, {-7, 0, 1, 2, 3, 4}},
        {"sorted insert again", [](UT_IntegerArray &a) { a.sortedInsert(3); }, {0, 1, 2, 3, 4}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_IntegerArray array = integers({0, 1, 2, 3, 4});
        c.edit(array);
        EXPECT_EQ(c.result, valuesOf(array));
    }
}

TEST(IntegerArray, ConcatGrowsWhenTheRoomIsNotLargerThanTheOther)
{
    UT_IntegerArray array = integers({1, 2}); // two slots free
    EXPECT_EQ(3u, array.concat(integers({3})));
    EXPECT_EQ(4u, array.capacity());
    EXPECT_EQ(4u, array.concat(integers({4})));
    EXPECT_EQ(5u, array.capacity());
}

TEST(IntegerArray, AssignmentKeepsACapacityThatIsLargeEnough)
{
    UT_IntegerArray array = integers({1, 2, 3, 4, 5});
    array = integers({7});
    EXPECT_THAT(valuesOf(array), ElementsAre(7));
    EXPECT_EQ(8u, array.capacity());
    EXPECT_EQ(integers({7}), array);
    EXPECT_NE(integers({7, 8}), array);
}

TEST(IntegerArray, SetOperationsOnAscendingArrays)
{
    using Values = std::vector<int>;
    const struct {
        const char *what;
        Values mine, theirs, merged, united, common, rest;
    } cases[] = {
        {"overlap", {1, 3, 5}, {3, 4}, {1, 3, 3, 4, 5}, {1, 3, 4, 5}, {3}, {1, 5}},
        {"negative first", {-2, 1}, {-3, -2}, {-3, -2, -2, 1}, {-3, -2, 1}, {-2}, {1}},
        {"repeats", {1, 1, 2}, {1, 2, 2}, {1, 1, 1, 2, 2, 2}, {1, 2}, {1, 1, 2}, {}},
        {"other empty", {1, 2}, {}, {1, 2}, {1, 2}, {}, {1, 2}},
        {"this empty", {}, {1, 2}, {1, 2}, {1, 2}, {}, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_IntegerArray merged = integers(c.mine), united = merged, common = merged, rest = merged;
        merged.merge(integers(c.theirs), 1, false);
        united.unite(integers(c.theirs));
        common.intersect(integers(c.theirs));
        rest.subtract(integers(c.theirs));
        EXPECT_EQ(c.merged, valuesOf(merged));
        EXPECT_EQ(c.united, valuesOf(united));
        EXPECT_EQ(c.common, valuesOf(common));
        EXPECT_EQ(c.rest, valuesOf(rest));
    }
    UT_IntegerArray descending = integers({5, 3, 1});
    descending.merge(integers({4, 3}), -1, true);
    EXPECT_THAT(valuesOf(descending), ElementsAre(5, 4, 3, 1));
}

TEST(IntegerArray, HeapKeepsParentsAtHalfTheIndexAndPopsTheGreatest)
{
    std::mt19937 random(1);
    UT_IntegerArray heap;
    std::vector<int> sorted;
    for (int i = 0; i < 200; ++i) {
        sorted.push_back(static_cast<int>(random() % 50) - 25);
        heap.heapPush(sorted.back());
        for (unsigned slot = 1; slot < heap.entries(); ++slot)
            ASSERT_GE(heap(slot / 2), heap(slot));
    }
    std::sort(sorted.rbegin(), sorted.rend());
    for (const int expected : sorted)
        ASSERT_EQ(expected, heap.heapPop());
    EXPECT_EQ(0, heap.heapPop());
}

TEST(IntegerArray, SortAndDisplay)
{
    UT_IntegerArray array = integers({3, INT_MIN, -1, 2});
    array.sort();
    testing::internal::CaptureStdout();
    array.display();
    EXPECT_EQ("-2147483648 -1 2 3 \n", testing::internal::GetCapturedStdout());
}
