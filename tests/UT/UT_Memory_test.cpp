#include "UT/UT_Memory.h"

#include <cstdlib>
#include <gtest/gtest.h>

TEST(Memory, ASizeThatNoObjectCanHaveEndsTheProcessWithAMessage)
{
    volatile int negative = -1;
    EXPECT_EXIT(std::free(UTallocate(static_cast<size_t>(negative))), testing::ExitedWithCode(1),
                "^Out of memory\n$");
}
