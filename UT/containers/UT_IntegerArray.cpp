#include "UT/UT_IntegerArray.h"

#include "UT/UT_QuickSort.h"

#include <cstdio>

void UT_IntegerArray::sort()
{
    UT_QuickSort().sort(begin(), static_cast<int>(entries()), false, true);
}

void UT_IntegerArray::display() const
{
    for (const int32_t element : *this)
        std::printf("%d ", element);
    std::printf("\n");
}
