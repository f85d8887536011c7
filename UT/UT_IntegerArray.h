// A growable array of signed 32-bit integers; see UT_ArrayCore for its operations.
#pragma once

#include "UT/UT_ArrayCore.h"

#include <cstdint>

struct ut_IntegerForm {
    static constexpr bool ZERO_FILLED = true;
    static constexpr unsigned APPEND_AHEAD = 0; // capacities 4, 8, 12, ... 128, 256, ...
};

class UT_IntegerArray : public UT_ArrayCore<int32_t, ut_IntegerForm>
{
public:
    // Ascending; the form with a comparison uses qsort.
    void sort();
    using UT_ArrayCore::sort;

    // Prints "%d " for each element and a newline on standard output.
    void display() const;
};
