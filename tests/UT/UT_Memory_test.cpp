#include "UT/UT_Memory.h"

#include <cstdlib>
#include <gtest/gtest.h>

TEST(Memory, ASizeThatNoObjectCanHaveEndsTheProcessWithAMessage)
{
    volatile int negative = -1;
    EXPECT_EXIT(
        {
            void *block = UTallocate(static_cast<size_t>(negative));
            std::free(block);
        },
        testing::ExitedWithCode(1), "^Out of memory\n$");
}
