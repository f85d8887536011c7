#include "UT/UT_IntegerArray.h"
#include "UT/UT_PtrArray.h"
#include "UT/UT_RefArray.h"
#include "tests/support/Random.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>

namespace
{
// Elements stand for the numbers from 0, a new element, in ascending order. Those
// held by value own memory, so that sanitizers see what is lost.
using Value = std::vector<int>;

struct Element { // nothing looks where the pointers point
    static void set(int32_t &e, unsigned n) { e = static_cast<int32_t>(n); }
    static void set(void *&e, unsigned n) { e = reinterpret_cast<void *>(n * (UINTPTR_MAX / 16)); }
    static void set(Value &e, unsigned n) { e.assign(n != 0, static_cast<int>(n)); }
};

template <class Array>
class ArrayCore : public testing::Test
{
protected:
    using T = std::decay_t<decltype(*Array().begin())>;
    using List = std::vector<T>;
    static constexpr unsigned AHEAD = std::is_same_v<Array, UT_VoidPtrArray>;

    static bool less(const T &a, const T &b) { return std::less<T>()(a, b); }
    static int compare(const void *a, const void *b)
    {
        const T &first = *static_cast<const T *>(a), &second = *static_cast<const T *>(b);
        return less(first, second) ? -1 : first != second;
    }
    static Array arrayOf(const List &values)
    {
        Array made;
        for (const T &element : values)
            made.append(element);
        return made;
    }
    static auto at(const List &l, unsigned i) { return l.begin() + static_cast<ptrdiff_t>(i); }
    static List listOf(const Array &a) { return List(a.begin(), a.end()); }

    unsigned below(size_t limit) { return static_cast<unsigned>(random.below(limit)); }
    List values(size_t count)
    {
        List values(count);
        for (T &element : values)
            Element::set(element, below(12));
        return values;
    }

    // Makes room in the list as the array does, for copies of the value.
    unsigned open(unsigned index, unsigned count, unsigned ahead, const T &value)
    {
        const auto before = std::max(static_cast<unsigned>(list.size()), index);
        const unsigned n = before + count - 1 + ahead;
        if (before + count > capacity)
            capacity = n + (n <= 127 ? 4 : n <= 1023 ? 128 : n / 8);
        list.resize(before);
        list.insert(at(list, index), count, value);
        return index;
    }
    void change();

    Random random;
    testing::ScopedTrace trace{__FILE__, __LINE__, random.seed()};
    Array array;
    List list; // what it should be
    unsigned capacity = 0;
};

using Arrays = testing::Types<UT_IntegerArray, UT_VoidPtrArray, UT_RefArray<Value>>;
TYPED_TEST_SUITE(ArrayCore, Arrays, ); // the comma: pedantic clang wants all arguments

// Does one operation of many to the array and, in other words, to the list.
template <class Array>
void ArrayCore<Array>::change()
{
    if (list.empty())
        open(array.append({}), 1, AHEAD, {});
    const auto n = static_cast<unsigned>(list.size());
    const unsigned far = below(n + 9), from = below(n), count = 1 + below(n - from);
    const unsigned to = below(n - count + 1);
    const List more = values(below(6)), old = list;
    const T value = values(1)[0];
    const auto begin = list.begin(), end = list.end(), found = std::find(begin, end, value);
    const int place = found == end ? -1 : static_cast<int>(found - begin);
    const auto put = [&](unsigned i) { return std::is_same_v<T, Value> ? T() : array(i) = value; };
    const T fresh = std::is_same_v<T, Value> ? T() : value; // others may hold anything at first
    int number = static_cast<int>(below(17));
    const auto both = [&](auto onArray, auto onList) {
        if (number-- == 0) {
            EXPECT_EQ(onList(), onArray());
        }
    };
    both([&] { return array.append(far % 2 ? value : array(from)); },
         [&] { return open(n, 1, AHEAD, far % 2 ? value : old[from]); });
    both([&] { return array.insertAt(value, far); }, [&] { return open(far, 1, 0, value); });
    both([&] { return array.insertAt(array(n - 1), 0); },
         [&] { return open(0, 1, 0, old[n - 1]); });
    both([&] { return put(array.insert(far)); },
         [&] { return open(far, 1, far < n ? AHEAD : 0, fresh), fresh; });
    both([&] { return array.insertGap(far, 2), put(far), put(far + 1); },
         [&] { return open(far, 2, 0, fresh), fresh; });
    both([&] { return array.removeIndex(from); }, [&] { return list.erase(at(list, from)), from; });
    both([&] { return array.find(value); }, [&] { return place; });
    both([&] { return array.find(value, from) >= 0; },
         [&] { return std::find(at(list, from), list.cend(), value) != list.cend(); });
    both([&] { return array.findAndRemove(value); },
         [&] { return list.erase(found, found + (place >= 0)), place; });
    both([&] { return array.setCapacity(far + 1), 0; },
         [&] { return list.resize(std::min(n, capacity = far + 1)), 0; });
    both([&] { return array.reverse(), 0; }, [&] { return std::reverse(begin, end), 0; });
    both([&] { return array.cycle(2 * n + from), 0; },
         [&] { return std::rotate(begin, end - static_cast<ptrdiff_t>(from), end), 0; });
    both([&] { return array.constant(value), 0; }, [&] { return std::fill(begin, end, value), 0; });
    both([&] { return array.moveBlock(from, to, count), 0; },
         [&] {
             list.erase(at(list, from), at(list, from + count));
             list.insert(at(list, to), at(old, from), at(old, from + count));
             return 0;
         });
    both([&] { return far % 2 ? array.concat(array) : array.concat(arrayOf(more)); },
         [&] {
             const List &other = far % 2 ? old : more;
             capacity += capacity - n <= other.size() ? static_cast<unsigned>(other.size()) : 0;
             list.insert(end, other.begin(), other.end());
             return static_cast<unsigned>(list.size());
         });
    both([&] { return array.sort(compare), array.bsearch(&value, compare) >= 0; },
         [&] { return std::sort(begin, end, less), place >= 0; });
    both([&] { return array.sort(compare), array(array.sortedInsert(value)); },
         [&] {
             std::sort(begin, end, less);
             const auto index = std::lower_bound(begin, end, value, less) - begin;
             return place < 0 ? open(static_cast<unsigned>(index), 1, 0, value), value : value;
         });
    ASSERT_EQ(list, listOf(array));
    ASSERT_EQ(capacity, array.capacity());
}
} // namespace

TYPED_TEST(ArrayCore, EveryOperationDoesWhatItDoesToAList)
{
    for (int round = 0; round < 105 && !this->HasFailure(); ++round) {
        const unsigned starts[] = {0, 3, 120, 127, 1020, 1023, 2000};
        this->capacity = starts[round % 7];
        this->list = this->values(this->capacity);
        this->array.setCapacity(0);
        this->array = this->arrayOf(this->list);
        for (int step = 0; step < 40 && !this->HasFailure(); ++step)
            this->change();
    }
    TypeParam copy(this->array), longer(copy);
    longer.append(copy(0));
    EXPECT_TRUE(copy == this->array && copy != longer);
    const unsigned slots = longer.capacity();
    longer.swap(copy);
    EXPECT_EQ(slots, copy.capacity());
    copy = longer; // into slots that are there
    EXPECT_TRUE(copy == longer && copy.capacity() == slots);
}

TYPED_TEST(ArrayCore, AHeapKeepsParentsAtHalfTheIndexAndPopsTheGreatest)
{
    for (size_t size = 0; size < 100; ++size) {
        auto values = this->values(size);
        for (const auto &value : values) {
            ASSERT_EQ(value, this->array(this->array.heapPush(value)));
            for (unsigned i = 1; i < this->array.entries(); ++i)
                ASSERT_LE(0, this->compare(&this->array(i / 2), &this->array(i)));
        }
        std::sort(values.rbegin(), values.rend());
        values.push_back({}); // from the empty one
        for (const auto &value : values)
            ASSERT_EQ(value, this->array.heapPop());
    }
}

TYPED_TEST(ArrayCore, SetOperationsDoWhatTheStandardOnesDo)
{
    using Values = typename TestFixture::List;
    for (unsigned round = 0; round < 1000; ++round) {
        Values mine = this->values(round % 9), theirs = this->values(round % 7);
        std::sort(mine.begin(), mine.end());
        std::sort(theirs.begin(), theirs.end());
        Values all, united, common, rest;
        std::merge(mine.begin(), mine.end(), theirs.begin(), theirs.end(), std::back_inserter(all));
        std::unique_copy(all.begin(), all.end(), std::back_inserter(united));
        for (const auto &t : mine)
            (std::count(theirs.begin(), theirs.end(), t) ? common : rest).push_back(t);
        const auto expect = [&](const Values &expected, auto edit) {
            TypeParam edited = this->arrayOf(mine);
            edit(edited, this->arrayOf(theirs));
            ASSERT_EQ(expected, this->listOf(edited));
        };
        expect(all, [](auto &a, const auto &b) { a.merge(b, 1, false); });
        expect(united, [](auto &a, const auto &b) { a.unite(b); });
        expect(common, [](auto &a, const auto &b) { a.intersect(b); });
        expect(rest, [](auto &a, const auto &b) { a.subtract(b); });
        for (Values *const one : {&mine, &theirs, &all, &united})
            std::reverse(one->begin(), one->end());
        expect(all, [](auto &a, const auto &b) { a.merge(b, -1, false); });
        expect(united, [](auto &a, const auto &b) { a.merge(b, 0, true); });
    }
}

TEST(IntegerArray, SortsAscendingAndPrintsItself)
{
    UT_IntegerArray array;
    for (const int number : {3, INT32_MIN, -1, 2})
        array.append(number);
    array.sort();
    testing::internal::CaptureStdout();
    array.display();
    EXPECT_EQ("-2147483648 -1 2 3 \n", testing::internal::GetCapturedStdout());
}
