// For tests of what happens once in a process, in a child of it (EXPECT_EXIT).
#pragma once

#include <gtest/gtest.h>

// Whether no other test has run, or will run, in this process: so with ctest, which
// gives each test its own. Otherwise such a test skips itself.
inline bool isFreshProcess()
{
    return testing::UnitTest::GetInstance()->test_to_run_count() == 1;
}
