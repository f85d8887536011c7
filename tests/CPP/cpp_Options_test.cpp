#include "tests/support/preprocessed.h"

#include <gtest/gtest.h>
#include <unistd.h>

TEST(Options, AreAppliedInOrder)
{
    const struct {
        const char *options, *in, *out;
    } cases[] = {
        {"-P", "__zel_major.__zel_minor [__zel][LINUX]\n", "9.0 [][]\n"},
        {"-P -D__zel_major=5", "__zel_major\n", "5\n"},
        {"-P -ULINUX -U__zel", "LINUX __zel\n", "LINUX __zel\n"},
        {"-P -UL", "[LINUX]\n", "[]\n"},
        {"-P -DA -DB=1 -D 'F(x) <x>'", "[A] B F(2)\n", "[] 1 <2>\n"},
        {"-P -DA=1 -UA", "A\n", "A\n"},
        {"-P -UA -DA=1 -DA=2", "A\n", "2\n"},
        {"-nxP -DA=b=c", "A\n", "b=c\n"},
        {"", "#define A 1\nA\n", "# 1 \"in\"\n\n1\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.options);
        EXPECT_EQ(c.out, preprocessed(c.options, c.in));
    }
}

TEST(Options, SayWhereTheOperandsStart)
{
    const struct {
        const char *options;
        int index;
    } cases[] = {{"", 1}, {"-P file", 2}, {"-D A -P", 4}, {"-- -P", 2}, {"-q", 0}, {"-r", 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.options);
        CPP_Manager manager;
        const int before = optind = 7;
        testing::internal::CaptureStderr();
        EXPECT_EQ(c.index, parseOptions(manager, c.options));
        EXPECT_EQ(c.index == 0, !testing::internal::GetCapturedStderr().empty());
        EXPECT_EQ(before, optind);
    }
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
    CPP_Manager first;
    EXPECT_EQ(0, parseOptions(first, "-DA=1 -qqqqq -DB=2"));
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(first.isMacroDefined("A"));
    EXPECT_FALSE(first.isMacroDefined("B"));
    CPP_Manager second;
    EXPECT_EQ(2, parseOptions(second, "-DA=1"));
    EXPECT_TRUE(second.isMacroDefined("A"));
}
