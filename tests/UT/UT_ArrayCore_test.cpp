#include "UT/UT_IntegerArray.h"
#include "UT/UT_PtrArray.h"
#include "UT/UT_RefArray.h"
#include "tests/support/Random.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

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

// The arrays' operations and their growth, told with a vector.
template <class T, unsigned AHEAD>
struct PlainArray {
    std::vector<T> all;
    unsigned slots = 0;

    auto begin() const { return all.begin(); }
    auto end() const { return all.end(); }
    auto at(size_t i) { return all.begin() + static_cast<ptrdiff_t>(i); }
    T &operator()(unsigned i) { return all[i]; }
    unsigned entries() const { return static_cast<unsigned>(all.size()); }
    unsigned capacity() const { return slots; }
    bool operator==(const PlainArray &other) const { return all == other.all; }

    unsigned grown(unsigned n) { return n + (n <= 127 ? 4 : n <= 1023 ? 128 : n / 8); }
    unsigned open(unsigned i, unsigned count, unsigned ahead)
    {
        const unsigned before = std::max(entries(), i);
        slots = before + count > slots ? grown(before + count - 1 + ahead) : slots;
        all.resize(before);
        all.insert(at(i), count, T());
        return i;
    }
    unsigned insert(unsigned i) { return open(i, 1, i < entries() ? AHEAD : 0); }
    unsigned insertGap(unsigned i, unsigned count) { return open(i, count, 0); }
    unsigned insertAt(T value, unsigned i) { return all[open(i, 1, 0)] = value, i; }
    unsigned append(T value)
    {
        const unsigned i = open(entries(), 1, AHEAD);
        return all[i] = value, i;
    }
    unsigned removeIndex(unsigned i) { return all.erase(at(i)), i; }
    int find(T value, unsigned start = 0)
    {
        const auto found = std::find(at(start), all.end(), value);
        return found == all.end() ? -1 : static_cast<int>(found - all.begin());
    }
    int findAndRemove(T value)
    {
        const int i = find(value);
        return i < 0 ? i : static_cast<int>(removeIndex(static_cast<unsigned>(i)));
    }
    unsigned concat(PlainArray other)
    {
        slots += slots - entries() <= other.entries() ? other.entries() : 0;
        all.insert(all.end(), other.begin(), other.end());
        return entries();
    }
    void setCapacity(unsigned n) { all.resize(std::min(entries(), slots = n)); }
    void reverse() { std::reverse(all.begin(), all.end()); }
    void cycle(unsigned n)
    {
        std::rotate(all.rbegin(), all.rbegin() + static_cast<int>(n % entries()), all.rend());
    }
    void constant(T value) { std::fill(all.begin(), all.end(), value); }
    void moveBlock(unsigned from, unsigned to, unsigned count)
    {
        const std::vector<T> moved(at(from), at(from + count));
        all.erase(at(from), at(from + count));
        all.insert(at(to), moved.begin(), moved.end());
    }
    void sort(UT_Compare) { std::sort(all.begin(), all.end(), std::less<T>()); }
    unsigned sortedInsert(T value)
    {
        const auto place = std::lower_bound(all.begin(), all.end(), value, std::less<T>());
        const auto i = static_cast<unsigned>(place - all.begin());
        return i < entries() && all[i] == value ? i : insertAt(value, i);
    }
    void merge(PlainArray other, int direction, bool unique)
    {
        all.insert(all.end(), other.begin(), other.end());
        sort(nullptr);
        if (unique)
            all.erase(std::unique(all.begin(), all.end()), all.end());
        if (direction <= 0)
            reverse();
    }
    void unite(PlainArray other) { merge(other, 1, true); }
    void intersect(PlainArray other) { keepWhere(other, true); }
    void subtract(PlainArray other) { keepWhere(other, false); }
    void keepWhere(PlainArray other, bool present)
    {
        const auto goes = [&](const T &t) { return (other.find(t) >= 0) != present; };
        all.erase(std::remove_if(all.begin(), all.end(), goes), all.end());
    }
    int bsearch(const void *key, UT_Compare) { return find(*static_cast<const T *>(key)); }
};

template <class Array>
class ArrayCore : public testing::Test
{
protected:
    using T = std::decay_t<decltype(*Array().begin())>;
    using List = std::vector<T>;
    using Plain = PlainArray<T, std::is_same_v<Array, UT_VoidPtrArray>>;

    static int compare(const void *a, const void *b)
    {
        const T &first = *static_cast<const T *>(a), &second = *static_cast<const T *>(b);
        return std::less<T>()(first, second) ? -1 : first != second;
    }
    template <class A>
    static A of(const List &values)
    {
        A made;
        for (const T &element : values)
            made.append(element);
        return made;
    }
    template <class A>
    static List listOf(const A &a)
    {
        return List(a.begin(), a.end());
    }
    unsigned below(size_t limit) { return static_cast<unsigned>(random.below(limit)); }
    List values(size_t count)
    {
        List list(count);
        for (T &element : list)
            Element::set(element, below(12));
        return list;
    }

    // Does the same to both, now and then.
    template <class Operation>
    void both(Operation operation)
    {
        if (plain.all.empty() || below(3) > 0 || HasFailure())
            return;
        EXPECT_EQ(operation(plain), operation(array));
        EXPECT_EQ(plain.all, listOf(array));
        EXPECT_EQ(plain.capacity(), array.capacity());
    }
    void change();

    Random random;
    testing::ScopedTrace trace{__FILE__, __LINE__, random.seed()};
    Array array;
    Plain plain;
};

using Arrays = testing::Types<UT_IntegerArray, UT_VoidPtrArray, UT_RefArray<Value>>;
TYPED_TEST_SUITE(ArrayCore, Arrays, ); // the comma: pedantic clang wants all arguments

template <class Array>
void ArrayCore<Array>::change()
{
    const unsigned n = plain.entries(), at = below(n + 9), from = below(n + 1);
    const unsigned count = below(n - from + 1), to = below(n - count + 1), kept = below(n + 1);
    const List list = values(1 + below(5));
    const T value = list[0];
    const bool isNew = std::is_same_v<T, Value>; // and no leftover of an older element
    const auto put = [&](T &slot) { return isNew ? slot : slot = value; };
    both([&](auto &a) { return a.moveBlock(from, to, count), 0; });
    both([&](auto &a) { return a.append(value); });
    both([&](auto &a) { return a.append(a(0)); });
    both([&](auto &a) { return a.insertAt(value, at); });
    both([&](auto &a) { return a.insertAt(a(a.entries() - 1), 0); });
    both([&](auto &a) { return put(a(a.insert(at))); });
    both([&](auto &a) { return put(a(a.insert(0))); });
    both([&](auto &a) { return put(a(a.insertGap(at, 1))); });
    both([&](auto &a) { return a.insertGap(0, 3), put(a(0)), put(a(1)), put(a(2)); });
    both([&](auto &a) { return a.removeIndex(kept % a.entries()); });
    both([&](auto &a) { return a.find(value, kept % (a.entries() + 1)); });
    both([&](auto &a) { return a.findAndRemove(value); });
    both([&](auto &a) { return a.concat(of<std::decay_t<decltype(a)>>(list)); });
    both([&](auto &a) { return a.concat(a); });
    both([&](auto &a) { return a.setCapacity(kept), 0; });
    both([&](auto &a) { return a.reverse(), 0; });
    both([&](auto &a) { return a.cycle(at + n), 0; });
    both([&](auto &a) { return a.sort(compare), a.bsearch(&value, compare) >= 0; });
    both([&](auto &a) { return a.sort(compare), a.sortedInsert(value) < a.entries(); });
    both([&](auto &a) { return a.constant(value), 0; });

    Array copy(array);
    EXPECT_TRUE(copy == array && copy.capacity() == array.entries());
    copy.append(value);
    EXPECT_TRUE(copy != array);
    array.swap(copy);
    EXPECT_EQ(copy.entries() + 1, array.entries());
    array = copy; // into slots that are there
    EXPECT_EQ(plain.grown(copy.entries() + std::is_same_v<Array, UT_VoidPtrArray>),
              array.capacity());
    plain.slots = array.capacity();
}
} // namespace

TYPED_TEST(ArrayCore, EveryOperationDoesWhatItDoesToAVector)
{
    for (const size_t start : {0u, 3u, 120u, 127u, 1020u, 1023u, 2000u})
        for (int round = 0; round < 20; ++round) {
            this->plain.all = this->values(start);
            this->plain.slots = static_cast<unsigned>(start);
            this->array.setCapacity(0);
            this->array = this->template of<TypeParam>(this->plain.all);
            ASSERT_EQ(this->plain.append({}), this->array.append({}));
            for (int step = 0; step < 10; ++step)
                this->change();
        }
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
        values.push_back({});
        for (const auto &value : values)
            ASSERT_EQ(value, this->array.heapPop());
    }
}

TYPED_TEST(ArrayCore, SetOperationsDoWhatTheyDoToVectors)
{
    for (unsigned round = 0; round < 500; ++round) {
        auto mine = this->values(round % 9), theirs = this->values(round % 7);
        std::sort(mine.begin(), mine.end());
        std::sort(theirs.begin(), theirs.end());
        const auto same = [&](const auto &edit) {
            auto a = this->template of<TypeParam>(mine);
            auto b = this->template of<typename TestFixture::Plain>(mine);
            edit(a, this->template of<TypeParam>(theirs));
            edit(b, this->template of<typename TestFixture::Plain>(theirs));
            ASSERT_EQ(b.all, this->listOf(a));
        };
        same([&](auto &a, const auto &b) { a.merge(b, 1, round % 2 > 0); });
        same([](auto &a, const auto &b) { a.unite(b); });
        same([](auto &a, const auto &b) { a.intersect(b); });
        same([](auto &a, const auto &b) { a.subtract(b); });
        std::reverse(mine.begin(), mine.end());
        std::reverse(theirs.begin(), theirs.end());
        same([&](auto &a, const auto &b) { a.merge(b, -1, round % 2 > 0); });
    }
}
