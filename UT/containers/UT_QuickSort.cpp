#include "UT/UT_QuickSort.h"

#include "UT/UT_Memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <utility>

namespace
{
constexpr int INSERTION_LIMIT = 20;
constexpr size_t MAX_STACK_WIDTH = 131071;

// ---- Keys ------------------------------------------------------------------

int signedKey(int key)
{
    return key;
}

unsigned unsignedKey(int key)
{
    return static_cast<unsigned>(key);
}

float floatKey(float key)
{
    return key;
}

// The keys and, unless it is null, the index that moves along with them. `Order`
// turns a key into what is compared.
template <class Key, auto Order>
struct KeyedSort {
    Key *myKeys;
    int *myIndex;

    bool greater(int a, Key b) const { return Order(myKeys[a]) > Order(b); }

    void exchange(int a, int b) const
    {
        std::swap(myKeys[a], myKeys[b]);
        if (myIndex != nullptr)
            std::swap(myIndex[a], myIndex[b]);
    }

    void order(int a, int b) const // so that a holds the smaller key
    {
        if (greater(a, myKeys[b]))
            exchange(a, b);
    }

    // Shifts greater keys up; equal ones keep their order.
    void insertionSort(int first, int last) const
    {
        for (int i = first + 1; i <= last; ++i) {
            const Key key = myKeys[i];
            const int position = myIndex != nullptr ? myIndex[i] : 0;
            int slot = i;
            for (; slot > first && greater(slot - 1, key); --slot) {
                myKeys[slot] = myKeys[slot - 1];
                if (myIndex != nullptr)
                    myIndex[slot] = myIndex[slot - 1];
            }
            myKeys[slot] = key;
            if (myIndex != nullptr)
                myIndex[slot] = position;
        }
    }

    // Splits [first, last] around the median of its first, middle and last keys
    // and returns the median's final slot; equal keys go to the left.
    int partition(int first, int last) const
    {
        const int middle = first + (last - first) / 2;
        order(middle, last);
        order(first, last);
        order(middle, first);
        const Key pivot = myKeys[first];
        // Both scans look at the bounds: keys may be equal, or no numbers.
        int left = first + 1, right = last;
        for (;;) {
            while (left <= right && !greater(left, pivot))
                ++left;
            while (left <= right && greater(right, pivot))
                --right;
            if (left > right)
                break;
            exchange(left++, right--);
        }
        exchange(first, right);
        return right;
    }

    void sort(int first, int last) const
    {
        while (last - first + 1 >= INSERTION_LIMIT) {
            const int pivot = partition(first, last);
            // The parts do not depend on each other; sorting the smaller one
            // first bounds the recursion.
            if (pivot - first < last - pivot) {
                sort(first, pivot - 1);
                first = pivot + 1;
            } else {
                sort(pivot + 1, last);
                last = pivot - 1;
            }
        }
        insertionSort(first, last);
    }
};

template <class Key, auto Order>
void sortKeys(Key *keys, int n, UT_IntegerArray *index)
{
    const unsigned count = n > 0 ? static_cast<unsigned>(n) : 0;
    if (index != nullptr) {
        index->setCapacity(count);
        index->insertGap(index->entries(), count - index->entries());
        std::iota(index->begin(), index->end(), 0);
    }
    if (count != 0)
        KeyedSort<Key, Order>{keys, index != nullptr ? index->begin() : nullptr}.sort(0, n - 1);
}

// ---- Selection -------------------------------------------------------------

// Elements of any width; large ones are exchanged through the heap.
class WideElements
{
public:
    WideElements(void *base, size_t width)
        : myBase(static_cast<char *>(base)), myWidth(width),
          mySpare(width <= MAX_STACK_WIDTH ? myStack : UTallocate(width))
    {
    }
    ~WideElements()
    {
        if (mySpare != myStack)
            std::free(mySpare);
    }
    WideElements(const WideElements &) = delete;
    WideElements &operator=(const WideElements &) = delete;

    void *at(ptrdiff_t i) const { return myBase + static_cast<size_t>(i) * myWidth; }

    void exchange(ptrdiff_t a, ptrdiff_t b) const
    {
        std::memcpy(mySpare, at(a), myWidth);
        std::memmove(at(a), at(b), myWidth);
        std::memcpy(at(b), mySpare, myWidth);
    }

private:
    char *myBase;
    size_t myWidth;
    void *mySpare;
    char myStack[MAX_STACK_WIDTH];
};

// Elements of four bytes, exchanged through a register.
struct WordElements {
    char *myBase;

    void *at(ptrdiff_t i) const { return myBase + i * ptrdiff_t{sizeof(uint32_t)}; }

    void exchange(ptrdiff_t a, ptrdiff_t b) const
    {
        uint32_t first, second;
        std::memcpy(&first, at(a), sizeof first);
        std::memcpy(&second, at(b), sizeof second);
        std::memcpy(at(a), &second, sizeof second);
        std::memcpy(at(b), &first, sizeof first);
    }
};

template <class Elements>
void orderElements(const Elements &elements, ptrdiff_t a, ptrdiff_t b, UT_Compare compare)
{
    if (compare(elements.at(a), elements.at(b)) > 0)
        elements.exchange(a, b);
}

// Puts the median of the first, middle and last elements of [left, right] where it
// belongs, the smaller ones before it, and returns that position.
template <class Elements>
ptrdiff_t partitionElements(const Elements &elements, ptrdiff_t left, ptrdiff_t right,
                            UT_Compare compare)
{
    elements.exchange(left + (right - left) / 2, left + 1);
    orderElements(elements, left + 1, right, compare);
    orderElements(elements, left, right, compare);
    orderElements(elements, left + 1, left, compare);
    ptrdiff_t up = left + 1, down = right;
    for (;;) {
        do
            ++up;
        while (up < right && compare(elements.at(up), elements.at(left)) < 0);
        do
            --down;
        while (down > left && compare(elements.at(down), elements.at(left)) > 0);
        if (down < up)
            break;
        elements.exchange(up, down);
    }
    elements.exchange(left, down);
    return down;
}

// Narrows [left, right] to the side with the wanted position.
template <class Elements>
void selectElement(const Elements &elements, unsigned n, unsigned k, UT_Compare compare)
{
    const auto wanted = static_cast<ptrdiff_t>(k);
    ptrdiff_t left = 0;
    ptrdiff_t right = static_cast<ptrdiff_t>(n) - 1;
    while (right > left + 1) {
        const ptrdiff_t middle = partitionElements(elements, left, right, compare);
        if (middle < wanted)
            left = middle + 1;
        else
            right = middle - 1;
    }
    if (right == left + 1)
        orderElements(elements, left, right, compare);
}
} // namespace

void UT_QuickSort::sort(int *keys, int n, bool makeIndex, bool isSigned)
{
    UT_IntegerArray *const index = makeIndex ? &myIndex : nullptr;
    if (isSigned)
        sortKeys<int, signedKey>(keys, n, index);
    else
        sortKeys<int, unsignedKey>(keys, n, index);
}

void UT_QuickSort::sort(float *keys, int n, bool makeIndex)
{
    sortKeys<float, floatKey>(keys, n, makeIndex ? &myIndex : nullptr);
}

void UT_QuickSort::select(void *base, unsigned n, unsigned k, size_t width, UT_Compare compare)
{
    selectElement(WideElements(base, width), n, k, compare);
}

void UT_QuickSort::select(void *base, unsigned n, unsigned k, UT_Compare compare)
{
    selectElement(WordElements{static_cast<char *>(base)}, n, k, compare);
}
