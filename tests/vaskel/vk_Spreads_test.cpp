#include "vaskel/vk_Spreads.h"

#include <gtest/gtest.h>

// Half of the pixels spread 64 times as much as the others: with the limit that is given,
// the error comes to the target, and, as samples double, not far below it.
TEST(Spreads, LimitBringsTheErrorToTheTarget)
{
    vk_Spreads spreads;
    for (int i = 0; i < 200; ++i)
        spreads.add(i % 2 == 0 ? .5f : 32.0f);
    for (const float target : {4.0f, 1.0f, .25f}) {
        const float limit = spreads.limit(target, 4, 1024);
        float sum = 0;
        for (const float spread : {.5f, 32.0f}) {
            float samples = 4;
            while (samples < 1024 && spread >= limit * samples * samples)
                samples *= 2;
            sum += spread / samples / 2;
        }
        EXPECT_LE(sum, target);
        EXPECT_GT(sum, target / 4);
    }
}
