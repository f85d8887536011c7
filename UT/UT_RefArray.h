// A growable array that holds its elements by value, constructs them in place and
// destroys them when they are removed or the array ends.
//
// append() and insertAt() make a copy of the value, insert() and the slots between
// the end and a far index a value-initialized element. Elements are moved bit by
// bit. Only the operations that a program uses ask for a copy constructor, an
// operator == or an operator <. See UT_ArrayCore.
//
// A run of thumbrender does not come here: errors that are collected are kept in these.
#pragma once

#include "UT/UT_ArrayCore.h"

struct ut_ValueForm {
    static constexpr bool ZERO_FILLED = false;
    static constexpr unsigned APPEND_AHEAD = 0; // capacities 4, 8, 12, ...
};

template <class T>
class UT_RefArray : public UT_ArrayCore<T, ut_ValueForm>
{
public:
    UT_RefArray() = default;
    UT_RefArray(const UT_RefArray &) = default;
    UT_RefArray &operator=(const UT_RefArray &) = default;
    virtual ~UT_RefArray() = default;
};
