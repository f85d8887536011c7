#include "vaskel/vk_Nearest.h"

#include <gtest/gtest.h>

TEST(Nearest, DistanceCountsSingleChanges)
{
    const struct {
        const char *a, *b;
        int distance;
    } cases[] = {
        {"", "", 0},          {"light", "light", 0}, {"", "fog", 3},          {"lihgt", "light", 1},
        {"ligt", "light", 1}, {"tube", "cube", 1},   {"spehre", "sphere", 1}, {"grid", "floor", 5},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.a) + " " + c.b);
        EXPECT_EQ(c.distance, vk_distance(c.a, c.b));
        EXPECT_EQ(c.distance, vk_distance(c.b, c.a));
    }
}

TEST(Nearest, PicksTheClosestAndPrefersSameLettersInAnotherCase)
{
    EXPECT_EQ("light", vk_nearest("LIGHT", {"fog", "eight", "light"}));
    EXPECT_EQ("fog", vk_nearest("fgo", {"floor", "fog", "end"}));
    EXPECT_EQ("", vk_nearest("fog", {}));
    EXPECT_EQ("end", vk_nearest(std::string(100000, 'x'), {"end"}));
}

TEST(Nearest, QuotedWordsAreSafeToPrint)
{
    EXPECT_EQ("'a?b'", vk_quoted("a\x1b"
                                 "b"));
    EXPECT_EQ("'" + std::string(40, 'x') + "...'", vk_quoted(std::string(41, 'x')));
}
