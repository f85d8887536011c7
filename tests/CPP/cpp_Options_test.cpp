#include "tests/support/Cases.h"
#include "tests/support/preprocessed.h"

#include <unistd.h>

TEST(Options, SayWhereTheOperandsStart)
{
    expectEach({" -> 1", "-P file -> 2", "-D A -P -> 4", "-- -P -> 2", "-q -> 0", "-r -> 0"},
               [](const char *options) {
                   CPP_Manager manager;
                   const int before = optind = 7;
                   testing::internal::CaptureStderr();
                   const int index = parseOptions(manager, options);
                   EXPECT_EQ(index == 0, !testing::internal::GetCapturedStderr().empty());
                   EXPECT_EQ(before, optind);
                   return std::to_string(index);
               });
}

TEST(Options, WriteNothing)
{
    CPP_Manager manager;
    ASSERT_TRUE(manager.openFile("/dev/null", false));
    parseOptions(manager, "-P -DA=1 -DA=2 -ULINUX");
    EXPECT_EQ("# 1 \"/dev/null\"\n", allLines(manager));
}

TEST(Options, AFailedScanLeavesNothingBehindForTheNext)
{
    testing::internal::CaptureStderr();
    CPP_Manager first, second;
    EXPECT_EQ(0, parseOptions(first, "-DA=1 -qqqqq -DB=2"));
    EXPECT_TRUE(first.isMacroDefined("A") && !first.isMacroDefined("B"));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(2, parseOptions(second, "-DA=1"));
    EXPECT_TRUE(second.isMacroDefined("A"));
}
