#include "vaskel/pixels/vk_Allocation.h"

#include <gtest/gtest.h>

namespace
{
constexpr int PIXELS = 200;

// Half of the pixels are 64 times as far off as the others, and all cost 4.
vk_Allocation twoKinds(bool isFixed = false)
{
    vk_Allocation allocation;
    for (int i = 0; i < PIXELS; ++i)
        allocation.add(i % 2 == 0 ? .125f : 8.0f, 4, isFixed && i % 2 != 0);
    return allocation;
}

// What the mean pixel then has: squared error and cost.
std::pair<float, float> with(float limit)
{
    std::pair<float, float> mean;
    for (float error : {.125f, 8.0f}) {
        float cost = 4;
        for (; error >= limit * cost; cost *= 2)
            error /= 2;
        mean.first += error / 2;
        mean.second += cost / 2;
    }
    return mean;
}
} // namespace

// As samples double, it is not far below.
TEST(Allocation, LimitBringsTheErrorToTheTarget)
{
    for (const float target : {4.0f, 1.0f, .25f, .01f}) {
        const float error = with(twoKinds().limit(target, 1e6f)).first;
        EXPECT_LE(error, target);
        EXPECT_GT(error, target / 4);
    }
}

TEST(Allocation, LimitKeepsToSoMuchWork)
{
    for (const float most : {6.0f, 20.0f, 100.0f}) {
        const float cost = with(twoKinds().limit(1e-9f, most)).second;
        EXPECT_LE(cost, 2 * most);
        EXPECT_GT(cost, most / 4);
    }
}

TEST(Allocation, WorkIsForecastAsItIsThenDealtOut)
{
    EXPECT_EQ(4 * PIXELS, twoKinds().cost());
    const float limit = twoKinds().limit(.25f, 1e6f);
    EXPECT_FLOAT_EQ(with(limit).second, static_cast<float>(twoKinds().cost(limit)) / PIXELS);
}

// Of two pixels that are as far off, the one that costs little repays it best.
TEST(Allocation, DearPixelsConvergeSooner)
{
    vk_Allocation allocation;
    allocation.add(1, 4, false);
    allocation.add(1, 64, false);
    const float limit = allocation.limit(.8f, 1e6f);
    EXPECT_GE(1, limit * 4);
    EXPECT_LT(1, limit * 64);
}

TEST(Allocation, WhatIsFixedTakesNoMoreWork)
{
    const float limit = twoKinds(true).limit(1e-9f, 6);
    EXPECT_GT(with(limit).second, 6); // all go to the other half
    EXPECT_GE(12.1 * PIXELS, twoKinds(true).cost(limit));
}
