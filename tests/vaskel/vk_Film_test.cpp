#include "vaskel/file/vk_Film.h"

#include <gtest/gtest.h>

#include <limits>

TEST(Film, EachColourBecomesTheNearestByte)
{
    for (float x = 0; x < VK_WHITE; x += .037f) {
        const vk_Colour colour = {x, .5f * x, .2f * x};
        std::uint8_t bytes[3];
        vk_develop(colour, bytes);
        EXPECT_NEAR(255 * vk_toSrgb(vk_toneCurve(colour.x)), bytes[0], .501) << x;
        EXPECT_NEAR(255 * vk_toSrgb(vk_toneCurve(colour.y)), bytes[1], .501) << x;
        EXPECT_NEAR(255 * vk_toSrgb(vk_toneCurve(colour.z)), bytes[2], .501) << x;
    }
}

TEST(Film, WhatIsNoNumberIsBlack)
{
    constexpr float NONE = std::numeric_limits<float>::quiet_NaN();
    std::uint8_t bytes[] = {7, 7, 7};
    vk_develop({NONE, NONE, 0}, bytes);
    EXPECT_TRUE(bytes[0] == 0 && bytes[1] == 0 && bytes[2] == 0);
}

TEST(Film, TheTableOfWhatIsShownIsExactToATenthOfAByte)
{
    EXPECT_EQ(0, vk_shown(-1));
    EXPECT_EQ(0, vk_shown(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_NEAR(1, vk_shown(1e30f), 1e-4);
    for (float x = 1e-5f; x < VK_WHITE; x *= 1.01f)
        EXPECT_NEAR(vk_toSrgb(vk_toneCurve(x)), vk_shown(x), .1 / 255) << x;
}

TEST(Film, CurveKeepsMiddleGreyAndRisesToWhite)
{
    EXPECT_NEAR(.214, vk_toneCurve(.214f), 1e-3);
    EXPECT_NEAR(.5, vk_toSrgb(.214f), 1e-3);
    EXPECT_EQ(0, vk_toneCurve(0));
    EXPECT_NEAR(1, vk_toneCurve(VK_WHITE), 1e-4);
    EXPECT_EQ(vk_toneCurve(VK_WHITE), vk_toneCurve(1e30f));
    for (float x = 0; x < VK_WHITE; x += .01f)
        EXPECT_LT(vk_toneCurve(x), vk_toneCurve(x + .01f)) << x;
}
