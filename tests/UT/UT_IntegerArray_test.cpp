#include "UT/UT_IntegerArray.h"

#include <climits>
#include <gtest/gtest.h>

TEST(IntegerArray, SortsAscendingAndPrintsItself)
{
    UT_IntegerArray array;
    for (const int number : {3, INT_MIN, -1, 2})
        array.append(number);
    array.sort();
    testing::internal::CaptureStdout();
    array.display();
    EXPECT_EQ("-2147483648 -1 2 3 \n", testing::internal::GetCapturedStdout());
}
