#include "vaskel/pixels/vk_Variances.h"

#include <gtest/gtest.h>

namespace
{
// Half of the pixels spread 64 times as much as the others.
vk_Variances twoKinds()
{
    vk_Variances variances;
    for (int i = 0; i < 200; ++i)
        variances.add(i % 2 == 0 ? .5f : 32.0f);
    return variances;
}

// What the mean pixel then has: squared error and samples.
std::pair<float, float> with(float limit)
{
    std::pair<float, float> mean;
    for (const float variance : {.5f, 32.0f}) {
        float samples = 4;
        while (samples < 1024 && variance >= limit * samples * samples)
            samples *= 2;
        mean.first += variance / samples / 2;
        mean.second += samples / 2;
    }
    return mean;
}
} // namespace

// As samples double, it is not far below.
TEST(Variances, LimitBringsTheErrorToTheTarget)
{
    for (const float target : {4.0f, 1.0f, .25f}) {
        const float error = with(twoKinds().limit(target, 1000, 4, 1024)).first;
        EXPECT_LE(error, target);
        EXPECT_GT(error, target / 4);
    }
}

TEST(Variances, LimitKeepsToSoManySamples)
{
    for (const float most : {6.0f, 20.0f, 100.0f}) {
        const float samples = with(twoKinds().limit(1e-9f, most, 4, 1024)).second;
        EXPECT_LE(samples, 2 * most);
        EXPECT_GT(samples, most / 4);
    }
}

TEST(Variances, PixelsWithoutErrorTakeTheirSamplesAllTheSame)
{
    vk_Variances variances;
    for (int i = 0; i < 200; ++i)
        variances.add(i % 2 == 0 ? 0.0f : 2.0f);
    // 4 and 8 samples come to a mean of 6, so the pixels with an error stop at 8.
    EXPECT_GT(variances.limit(1e-9f, 6, 4, 1024) * 8 * 8, 2);
}
