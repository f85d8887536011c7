// The operations of UT_ArrayCore; include that header instead.
#pragma once

#include "UT/UT_Memory.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

// A copy of a value, made before the block can move under the original, that ends
// up in a slot by relocation.
template <class T, class Form>
class UT_ArrayCore<T, Form>::Held
{
public:
    explicit Held(const T &value) { new (myBits) T(value); }
    void moveTo(T *slot) { std::memcpy(static_cast<void *>(slot), myBits, sizeof(T)); }

private:
    alignas(T) unsigned char myBits[sizeof(T)];
};

// ---- Storage ---------------------------------------------------------------

// The capacity of an array that has to hold more than n elements.
template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::grown(unsigned n)
{
    const unsigned bump = n <= 127 ? 4 : n <= 1023 ? 128 : n / 8;
    return n > UINT_MAX - bump ? UINT_MAX : n + bump;
}

// More than any object has where the product does not fit: the allocation fails
// instead of being too small.
template <class T, class Form>
size_t UT_ArrayCore<T, Form>::bytes(unsigned n)
{
    return n > SIZE_MAX / sizeof(T) ? SIZE_MAX : n * sizeof(T);
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::setCapacity(unsigned n)
{
    if (n == myCapacity)
        return;
    truncate(n);
    if (n == 0) {
        std::free(myData);
        myData = nullptr;
    } else {
        myData = static_cast<T *>(UTreallocate(myData, bytes(n)));
    }
    const unsigned old = std::exchange(myCapacity, n);
    if (Form::ZERO_FILLED && n > old)
        fill(old, n);
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::truncate(unsigned n)
{
    if (n >= myEntries)
        return;
    std::destroy(myData + n, myData + myEntries);
    myEntries = n;
}

// Gives the slots the content of a new element; they hold none yet.
template <class T, class Form>
void UT_ArrayCore<T, Form>::fill(unsigned from, unsigned to)
{
    if (from >= to)
        return;
    if constexpr (Form::ZERO_FILLED)
        std::memset(myData + from, 0, (to - from) * sizeof(T));
    else
        std::uninitialized_value_construct(myData + from, myData + to);
}

// Appends copies into slots that are free already.
template <class T, class Form>
void UT_ArrayCore<T, Form>::copyConstruct(const T *from, unsigned count)
{
    std::uninitialized_copy_n(from, count, myData + myEntries);
    myEntries += count;
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::moveBits(unsigned to, unsigned from, unsigned count)
{
    if (count != 0) // else there may be no block, and memmove wants one
        std::memmove(static_cast<void *>(myData + to), static_cast<void *>(myData + from),
                     count * sizeof(T));
}

// Like all moves inside the block it runs no constructor and no assignment, which
// for some types mean more than a move.
template <class T, class Form>
void UT_ArrayCore<T, Form>::swapBits(T &a, T &b)
{
    alignas(T) unsigned char spare[sizeof(T)];
    void *const first = &a;
    void *const second = &b;
    std::memcpy(spare, first, sizeof(T));
    std::memmove(first, second, sizeof(T));
    std::memcpy(second, spare, sizeof(T));
}

// Brings the element at `middle` to `from`, in [from, end).
template <class T, class Form>
void UT_ArrayCore<T, Form>::rotate(unsigned from, unsigned middle, unsigned end)
{
    if (from == end)
        return;
    const auto block = reinterpret_cast<unsigned char *>(myData);
    std::rotate(block + from * sizeof(T), block + middle * sizeof(T), block + end * sizeof(T));
}

// Makes `count` slots at `index` part of the array and leaves their content alone.
template <class T, class Form>
T *UT_ArrayCore<T, Form>::openSlots(unsigned index, unsigned count, unsigned ahead)
{
    const unsigned tail = index < myEntries ? myEntries - index : 0;
    const unsigned needed = std::max(index, myEntries) + count;
    if (needed > myCapacity)
        setCapacity(grown(needed - 1 + ahead));
    fill(myEntries, index);
    moveBits(index + count, index, tail);
    myEntries = needed;
    return myData + index;
}

// ---- Whole arrays ----------------------------------------------------------

template <class T, class Form>
UT_ArrayCore<T, Form> &UT_ArrayCore<T, Form>::operator=(const UT_ArrayCore &other)
{
    if (this == &other)
        return *this;
    truncate(0);
    if (myCapacity < other.myEntries)
        setCapacity(other.myEntries);
    copyConstruct(other.myData, other.myEntries);
    return *this;
}

template <class T, class Form>
bool UT_ArrayCore<T, Form>::operator==(const UT_ArrayCore &other) const
{
    return std::equal(begin(), end(), other.begin(), other.end());
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::swap(UT_ArrayCore &other)
{
    std::swap(myData, other.myData);
    std::swap(myCapacity, other.myCapacity);
    std::swap(myEntries, other.myEntries);
}

// ---- Adding and removing ---------------------------------------------------

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::append(const T &value)
{
    Held held(value);
    held.moveTo(openSlots(myEntries, 1, Form::APPEND_AHEAD));
    return myEntries - 1;
}

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::insertAt(const T &value, unsigned index)
{
    Held held(value);
    held.moveTo(openSlots(index, 1, 0));
    return index;
}

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::insert(unsigned index)
{
    openSlots(index, 1, index < myEntries ? Form::APPEND_AHEAD : 0);
    // A slot that needs no construction keeps what it holds.
    if constexpr (!Form::ZERO_FILLED)
        fill(index, index + 1);
    return index;
}

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::insertGap(unsigned index, unsigned count)
{
    openSlots(index, count, 0);
    if constexpr (!Form::ZERO_FILLED)
        fill(index, index + count);
    return index;
}

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::removeIndex(unsigned index)
{
    std::destroy_at(myData + index);
    --myEntries;
    moveBits(index, index + 1, myEntries - index);
    return index;
}

template <class T, class Form>
int UT_ArrayCore<T, Form>::findAndRemove(const T &value)
{
    const int index = find(value);
    if (index >= 0)
        removeIndex(static_cast<unsigned>(index));
    return index;
}

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::concat(const UT_ArrayCore &other)
{
    const unsigned count = other.myEntries; // the other may be this array
    if (myCapacity - myEntries <= count)
        setCapacity(myCapacity + count);
    copyConstruct(other.myData, count);
    return myEntries;
}

// ---- Searching -------------------------------------------------------------

template <class T, class Form>
bool UT_ArrayCore<T, Form>::less(const T &a, const T &b)
{
    return std::less<T>()(a, b); // orders pointers by address, too
}

template <class T, class Form>
int UT_ArrayCore<T, Form>::find(const T &value, unsigned start) const
{
    for (unsigned i = start; i < myEntries; ++i)
        if (myData[i] == value)
            return static_cast<int>(i);
    return -1;
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::sort(UT_Compare compare)
{
    if (myEntries != 0)
        std::qsort(myData, myEntries, sizeof(T), compare);
}

template <class T, class Form>
int UT_ArrayCore<T, Form>::bsearch(const void *key, UT_Compare compare) const
{
    if (myEntries == 0)
        return -1;
    const void *const found = std::bsearch(key, myData, myEntries, sizeof(T), compare);
    return found != nullptr ? static_cast<int>(static_cast<const T *>(found) - myData) : -1;
}

template <class T, class Form>
template <class Order>
unsigned UT_ArrayCore<T, Form>::lowerBound(Order order, bool &isNew) const
{
    unsigned low = 0, high = myEntries;
    while (low < high) {
        const unsigned middle = low + (high - low) / 2;
        const int difference = order(myData[middle]);
        if (difference == 0) {
            isNew = false;
            return middle;
        }
        if (difference < 0)
            low = middle + 1;
        else
            high = middle;
    }
    isNew = true;
    return low;
}

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::sortedInsert(const T &value)
{
    const auto order = [&value](const T &element) {
        return less(element, value) ? -1 : less(value, element) ? 1 : 0;
    };
    bool isNew = false;
    const unsigned index = lowerBound(order, isNew);
    return isNew ? insertAt(value, index) : index;
}

// ---- Rearranging -----------------------------------------------------------

template <class T, class Form>
void UT_ArrayCore<T, Form>::reverse()
{
    for (unsigned i = 0; i < myEntries / 2; ++i)
        swapBits(myData[i], myData[myEntries - 1 - i]);
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::cycle(unsigned n)
{
    if (myEntries != 0)
        rotate(0, myEntries - n % myEntries, myEntries);
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::constant(const T &value)
{
    for (T &element : *this)
        element = value;
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::moveBlock(unsigned from, unsigned to, unsigned count)
{
    if (from < to)
        rotate(from, from + count, to + count);
    else
        rotate(to, from, from + count);
}

// ---- Heap ------------------------------------------------------------------

template <class T, class Form>
unsigned UT_ArrayCore<T, Form>::heapPush(const T &value)
{
    unsigned slot = append(value);
    for (; slot != 0 && less(myData[slot / 2], myData[slot]); slot /= 2)
        swapBits(myData[slot / 2], myData[slot]);
    return slot;
}

template <class T, class Form>
T UT_ArrayCore<T, Form>::heapPop()
{
    // By exchange rather than by copying: a copy may depend on its original.
    T top{};
    if (myEntries == 0)
        return top;
    swapBits(top, myData[0]);
    swapBits(myData[0], last());
    removeIndex(myEntries - 1);

    // Wide enough for twice any index.
    uint64_t parent = 0;
    for (uint64_t child = 1; child < myEntries; child = 2 * parent) {
        // Slot 0 has no second child: slot 2 belongs to slot 1.
        if (child + 1 < myEntries && parent != 0 && less(myData[child], myData[child + 1]))
            ++child;
        if (!less(myData[parent], myData[child]))
            break;
        swapBits(myData[parent], myData[child]);
        parent = child;
    }
    return top;
}

// ---- Set operations --------------------------------------------------------

// Relocates an element of another array to the end of this one, or drops it.
template <class T, class Form>
void UT_ArrayCore<T, Form>::take(T &element, bool isWanted)
{
    if (isWanted)
        std::memcpy(static_cast<void *>(myData + myEntries++), static_cast<void *>(&element),
                    sizeof(T));
    else
        std::destroy_at(&element);
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::merge(const UT_ArrayCore &other, int direction, bool unique)
{
    // This array's elements move over, the other's are copied.
    UT_ArrayCore result;
    result.setCapacity(myEntries + other.myEntries);
    const auto before = [direction](const T &a, const T &b) {
        return direction > 0 ? less(a, b) : less(b, a);
    };
    unsigned mine = 0, theirs = 0;
    while (mine < myEntries || theirs < other.myEntries) {
        const bool isMine = theirs == other.myEntries ||
                            (mine < myEntries && !before(other.myData[theirs], myData[mine]));
        const T &next = isMine ? myData[mine] : other.myData[theirs];
        const bool isWanted = !unique || result.myEntries == 0 || before(result.last(), next);
        if (isMine)
            result.take(myData[mine++], isWanted);
        else
            result.copyConstruct(other.myData + theirs++, isWanted);
    }
    myEntries = 0; // every element has gone
    swap(result);
}

template <class T, class Form>
void UT_ArrayCore<T, Form>::keepWhere(const UT_ArrayCore &other, bool present)
{
    UT_ArrayCore result;
    result.setCapacity(myEntries);
    unsigned theirs = 0;
    for (T &element : *this) {
        while (theirs < other.myEntries && less(other.myData[theirs], element))
            ++theirs;
        const bool isThere = theirs < other.myEntries && !less(element, other.myData[theirs]);
        result.take(element, isThere == present);
    }
    myEntries = 0;
    swap(result);
}
