#include "vaskel/trace/vk_Subsurface.h"

#include "tests/vaskel/readScene.h"
#include "vaskel/trace/vk_World.h"

// A sphere has as much surface up to a distance as a plane has, so that what wanders no
// further than its diameter comes out by the same share as on a plane.
TEST(Subsurface, EachColourFindsOnABallWhatItsProfileHolds)
{
    vk_Scene scene;
    readScene("picture p.png\ncamera\nsurface v_wax\nsphere", scene);
    const vk_World world(scene);
    vk_Hit exit;
    ASSERT_TRUE(world.intersect({0, 1, 8}, {0, 0, -1}, exit));
    const float diameter = 2 * exit.position.z;
    for (const vk_Vec &scatter : {vk_Vec{.4f, .02f, .1f}, vk_Vec{.05f, .05f, .05f}}) {
        constexpr std::uint32_t COUNT = 1 << 18;
        vk_Colour sum = {};
        for (std::uint32_t i = 0; i < COUNT; ++i) {
            vk_Sampler sampler(1, i);
            vk_Hit entry;
            vk_Colour weight;
            if (vk_sampleEntry(world, exit, scatter, {.9f, .3f, .6f}, sampler, entry, weight))
                sum = sum + weight * (1.0f / COUNT);
        }
        // All count what the colour that wanders furthest finds.
        const float found = std::min(diameter, 12 * vk_largest(scatter));
        EXPECT_NEAR(sum.x, vk_profileWithin(found, scatter.x), .004);
        EXPECT_NEAR(sum.y, vk_profileWithin(found, scatter.y), .004);
        EXPECT_NEAR(sum.z, vk_profileWithin(found, scatter.z), .004);
    }
}

TEST(Subsurface, LightDoesNotWanderIntoAnotherShape)
{
    vk_Scene scene;
    readScene(
        "picture p.png\ncamera\nsurface v_wax\nsphere\nsurface v_matte\ntranslate 0 0 2.1\nsphere",
        scene);
    const vk_World world(scene);
    vk_Hit exit; // where both balls nearly touch
    ASSERT_TRUE(world.intersect({0, 1, 1.05f}, {0, 0, -1}, exit));
    int entries = 0;
    for (std::uint32_t i = 0; i < 4096; ++i) {
        vk_Sampler sampler(1, i);
        vk_Hit entry;
        vk_Colour weight;
        if (vk_sampleEntry(world, exit, vk_grey(.2f), vk_grey(.5f), sampler, entry, weight)) {
            ++entries;
            EXPECT_LT(entry.position.z, 1.02f);
        }
    }
    EXPECT_GT(entries, 1000);
}
