// Growable arrays of pointers: UT_PtrArray<T *> for any kind of object, and its
// plain form UT_VoidPtrArray without a virtual table.
//
// An array never owns what its elements point to: whoever fills it deletes the
// objects. The elements' own order is that of their addresses. See UT_ArrayCore for
// the other operations.
#pragma once

#include "UT/UT_ArrayCore.h"

#include <type_traits>

struct ut_PointerForm {
    static constexpr bool ZERO_FILLED = true;
    static constexpr unsigned APPEND_AHEAD = 1; // capacities 5, 10, 15, ...
};

template <class T>
class ut_PointerCore : public UT_ArrayCore<T, ut_PointerForm>
{
    using Core = UT_ArrayCore<T, ut_PointerForm>;
    static_assert(std::is_pointer_v<T>, "an array of pointers holds pointers");

public:
    // Appends; when `check` is set, an equal pointer stays alone and its index is
    // returned. O(n) with `check`.
    unsigned uniqueAppend(const T &value, bool check)
    {
        const int index = check ? this->find(value) : -1;
        return index >= 0 ? static_cast<unsigned>(index) : this->append(value);
    }

    // In an order of the caller's: `compare` gets the addresses of the value and
    // of an element, so each argument points to a T.
    using Core::sortedInsert;
    unsigned sortedInsert(const T &value, UT_Compare compare)
    {
        const auto order = [&](const T &element) { return compare(&element, &value); };
        bool isNew = false;
        const unsigned index = this->lowerBound(order, isNew);
        return isNew ? this->insertAt(value, index) : index;
    }

    // Removes null elements and keeps the order of the rest, O(n); the second
    // form then gives back the free slots. Both return the new number of entries.
    unsigned collapse()
    {
        unsigned kept = 0;
        for (const T element : *this)
            if (element != nullptr)
                (*this)(kept++) = element;
        this->truncate(kept);
        return kept;
    }

    unsigned collapseToFit()
    {
        this->setCapacity(collapse());
        return this->entries();
    }

protected:
    ~ut_PointerCore() = default;
    ut_PointerCore() = default;
    ut_PointerCore(const ut_PointerCore &) = default;
    ut_PointerCore &operator=(const ut_PointerCore &) = default;
};

class UT_VoidPtrArray : public ut_PointerCore<void *>
{
};

template <class T>
class UT_PtrArray : public ut_PointerCore<T>
{
public:
    UT_PtrArray() = default;
    UT_PtrArray(const UT_PtrArray &) = default;
    UT_PtrArray &operator=(const UT_PtrArray &) = default;
    virtual ~UT_PtrArray() = default;
};
