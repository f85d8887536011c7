// Sorts arrays of keys, with the permutation that sorted them if asked for, and
// finds the k-th smallest element of an array.
//
// Not stable for 20 keys and more. O(n log n) on average; many equal keys make it
// slower, O(n^2) when all are equal. The depth of recursion is O(log n).
//
// A run of thumbrender does not come here: this is for other users of the library.
#pragma once

#include "UT/UT_IntegerArray.h"

#include <cstddef>

class UT_QuickSort
{
public:
    UT_QuickSort() = default;
    UT_QuickSort(const UT_QuickSort &) = default;
    UT_QuickSort &operator=(const UT_QuickSort &) = default;
    virtual ~UT_QuickSort() = default;

    // Sorts n keys ascending, as signed or as unsigned numbers. NaNs come out at
    // an arbitrary place.
    void sort(int *keys, int n, bool makeIndex, bool isSigned);
    void sort(float *keys, int n, bool makeIndex);

    // The last sort with `makeIndex`: the position, before sorting, of the k-th
    // smallest key. REQUIRES: k < the number of keys of that sort
    int operator()(unsigned k) const { return myIndex(k); }
    const UT_IntegerArray &index() const { return myIndex; }

    // Reorders n elements of `width` bytes so that the k-th smallest (from 0) is
    // at position k, none before it is greater and none behind it is smaller.
    // O(n) on average. The form without a width has elements of 4 bytes.
    static void select(void *base, unsigned n, unsigned k, size_t width, UT_Compare compare);
    static void select(void *base, unsigned n, unsigned k, UT_Compare compare);

private:
    UT_IntegerArray myIndex;
};
