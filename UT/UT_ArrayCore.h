// What the growable arrays share: UT_IntegerArray, UT_VoidPtrArray, UT_PtrArray
// and UT_RefArray.
//
//     data -> | 0 | 1 | ... | entries-1 | free ... |      one block from malloc
//             |<------------ capacity ------------>|
//
// Elements are numbered from 0 to entries() - 1. No operation checks an index: one
// outside the array is the caller's mistake unless an operation says otherwise.
// Searches give -1 when there is nothing to find.
//
// Growth: an array that is full when it holds n elements gets a capacity of
// n + 4 (n <= 127), n + 128 (n <= 1023) or n + n/8, so small arrays stay small and
// adding at the end costs amortised O(1). Nothing but setCapacity() and the
// operations that replace the whole content ever gives memory back.
//
// Elements move inside the block bit by bit (memmove, realloc), without running
// their constructors: an element type must not hold pointers into itself.
// References to elements last until the array grows.
//
// A Form says in what the arrays differ:
//   ZERO_FILLED   new slots are zero bytes, and elements need neither construction
//                 nor destruction; otherwise they are constructed and destroyed
//   APPEND_AHEAD  how far append() counts ahead in the growth rule
#pragma once

#include <cstddef>

using UT_Compare = int (*)(const void *a, const void *b);

template <class T, class Form>
class UT_ArrayCore
{
public:
    UT_ArrayCore() = default;
    UT_ArrayCore(const UT_ArrayCore &other) { *this = other; }

    // Copies the elements; the capacity grows to the other's entries if it is
    // smaller, and stays otherwise.
    UT_ArrayCore &operator=(const UT_ArrayCore &other);

    unsigned entries() const { return myEntries; }
    unsigned capacity() const { return myCapacity; }

    // Reallocates to exactly n slots. Elements from n on go; 0 frees the block.
    void setCapacity(unsigned n);

    // REQUIRES: i < entries()
    T &operator()(unsigned i) { return myData[i]; }
    const T &operator()(unsigned i) const { return myData[i]; }
    T &last() { return myData[myEntries - 1]; }
    const T &last() const { return myData[myEntries - 1]; }

    T *begin() { return myData; }
    T *end() { return myData + myEntries; }
    const T *begin() const { return myData; }
    const T *end() const { return myData + myEntries; }

    bool operator==(const UT_ArrayCore &other) const;
    bool operator!=(const UT_ArrayCore &other) const { return !(*this == other); }

    // ---- Adding and removing -------------------------------------------
    // These return the index of the element in question. A value may be an
    // element of the same array.

    unsigned append(const T &value);

    // Shifts the elements from `index` on up by one, O(n). Behind the end the
    // array is extended to `index` and the slots between become zero, or are
    // constructed.
    unsigned insertAt(const T &value, unsigned index);

    // The same without a value: a new element that needs no construction is
    // whatever the slot held before. insertGap opens `count` such slots.
    unsigned insert(unsigned index);
    unsigned insertGap(unsigned index, unsigned count);

    // Closes the gap, O(n). REQUIRES: index < entries()
    unsigned removeIndex(unsigned index);

    int findAndRemove(const T &value);

    // Appends all of the other's elements; returns the new number of entries.
    // The capacity grows by the other's entries when not more than that is free.
    unsigned concat(const UT_ArrayCore &other);

    // ---- Searching -----------------------------------------------------

    // First equal element from `start` on, or -1. O(n)
    [[nodiscard]] int find(const T &value, unsigned start = 0) const;

    // Sorting and searching with the C library; `compare` gets element addresses.
    // The search passes `key` to it as its first argument, and needs the array
    // in the comparison's ascending order.
    void sort(UT_Compare compare);
    [[nodiscard]] int bsearch(const void *key, UT_Compare compare) const;

    // Inserts into an ascending array; an equal element stays alone, and its
    // index is returned. O(log n) to find, O(n) to insert.
    unsigned sortedInsert(const T &value);

    // ---- Rearranging ---------------------------------------------------

    void reverse();

    // Rotates right: cycle(1) brings the last element to the front.
    void cycle(unsigned n);

    // Sets every element.
    void constant(const T &value);

    // Takes out the `count` elements at `from` and puts them back so that the
    // first of them is at `to`; those between slide over.
    // REQUIRES: from + count <= entries(), to + count <= entries()
    void moveBlock(unsigned from, unsigned to, unsigned count);

    void swap(UT_ArrayCore &other); // exchanges the blocks, O(1)

    // ---- Heap ----------------------------------------------------------
    // The array as a heap with the greatest element in slot 0. The parent of
    // slot i is i/2, its children are 2i and 2i + 1: slot 0 has the one child 1.

    unsigned heapPush(const T &value); // returns the slot it ends in
    T heapPop();                       // T() (zero) from an empty array

    // ---- Set operations ------------------------------------------------
    // On ascending arrays; `other` is not this array. The result gets a block of
    // its own. O(n + m)

    // All elements of both in order. `direction` > 0: both arrays, and the
    // result, are ascending; otherwise descending. With `unique` equal elements
    // come out once.
    void merge(const UT_ArrayCore &other, int direction, bool unique);

    void unite(const UT_ArrayCore &other) { merge(other, 1, true); }

    // Keep those of this array's elements that the other has, or has not.
    void intersect(const UT_ArrayCore &other) { keepWhere(other, true); }
    void subtract(const UT_ArrayCore &other) { keepWhere(other, false); }

protected:
    ~UT_ArrayCore() { setCapacity(0); }

    // Binary search: the index of an equal element, else `isNew` is set and it is
    // the index where the value belongs. order(element) < 0: before the value.
    template <class Order>
    unsigned lowerBound(Order order, bool &isNew) const;

    void truncate(unsigned n); // drops the elements from n on

private:
    class Held;

    static unsigned grown(unsigned n);
    static size_t bytes(unsigned n);
    static bool less(const T &a, const T &b);

    T *openSlots(unsigned index, unsigned count, unsigned ahead);
    void fill(unsigned from, unsigned to);
    void copyConstruct(const T *from, unsigned count);
    void moveBits(unsigned to, unsigned from, unsigned count);
    void rotate(unsigned from, unsigned middle, unsigned end);
    static void swapBits(T &a, T &b);
    void take(T &element, bool isWanted);
    void keepWhere(const UT_ArrayCore &other, bool present);

    T *myData = nullptr;
    unsigned myCapacity = 0;
    unsigned myEntries = 0;
};

#include "UT/UT_ArrayCoreImpl.h"
