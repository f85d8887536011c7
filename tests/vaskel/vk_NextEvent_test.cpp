#include "vaskel/trace/vk_NextEvent.h"

#include <gtest/gtest.h>

// However a light may be found, it counts once; but behind rough glass, which samples it anew.
TEST(NextEvent, WeightsComeToOne)
{
    for (const float light : {.01f, 1.0f, 1e4f, 1e30f})
        for (const float bsdf : {.1f, 1.0f, 300.0f, 1e30f})
            for (const float peak : {0.0f, 3.0f, 1e5f})
                for (const vk_Onwards onwards : {VK_STRAIGHT, VK_REFRACTED})
                    for (const vk_Between between :
                         {VK_NOTHING, VK_SMOOTH_GLASS, VK_ROUGH_GLASS, VK_OTHER_SHAPES}) {
                        const vk_MisWeights w =
                            vk_misWeights(between, onwards, {light, bsdf, peak});
                        const bool isSampledAnew =
                            between == VK_ROUGH_GLASS && onwards == VK_REFRACTED;
                        EXPECT_NEAR(w.sample + w.ray, isSampledAnew ? 0 : 1, 1e-6)
                            << between << onwards;
                    }
}

// What seldom finds a light, and counts much of it then, is noise.
TEST(NextEvent, TheLikelierWayCountsNearlyAll)
{
    EXPECT_GT(vk_misWeights(VK_NOTHING, VK_STRAIGHT, {10, 1}).sample, .98f);
    EXPECT_GT(vk_misWeights(VK_NOTHING, VK_STRAIGHT, {1, 10}).ray, .98f);
}

TEST(NextEvent, WithoutARaySamplesCountAll)
{
    for (const vk_Between between : {VK_NOTHING, VK_SMOOTH_GLASS, VK_ROUGH_GLASS, VK_OTHER_SHAPES})
        EXPECT_EQ(1, vk_misWeights(between, VK_REFRACTED, {3, 0, 9}).sample);
}

TEST(NextEvent, RefractedRaysCountLightsThatTheyHit)
{
    EXPECT_EQ(1, vk_misWeights(VK_SMOOTH_GLASS, VK_REFRACTED, {1, 50, 100}).ray);
    EXPECT_EQ(0, vk_misWeights(VK_SMOOTH_GLASS, VK_REFRACTED, {1000, 50, 100}).ray);
}
