#include "vaskel/trace/vk_World.h"

#include "tests/vaskel/readScene.h"

// In its own space a shape is met where it was before its transforms: patterns go with it.
TEST(World, PointsOfShapesAreToldInTheirOwnSpace)
{
    vk_Scene scene;
    readScene("picture p.png\ncamera\ntranslate 3 0 -1\nscale 2\nsphere", scene);
    const vk_World world(scene);
    vk_Hit hit;
    ASSERT_TRUE(world.intersect({3, 2, 20}, {0, 0, -1}, hit));
    EXPECT_NEAR(19, hit.distance, .01f);
    EXPECT_LT(vk_length(hit.position - vk_Vec{3, 2, 1}), .01f);
    EXPECT_LT(vk_length(hit.point.position - vk_Vec{0, 1, 1}), .01f);
    EXPECT_NEAR(.5f, hit.point.v, .01f);
}

TEST(World, RaysTakeLongerThroughLargeMeshes)
{
    const auto rayCost = [](const std::string &shape) {
        vk_Scene scene;
        readScene("picture p.png\ncamera\n" + shape, scene);
        return vk_World(scene).rayCost();
    };
    EXPECT_EQ(1, rayCost("tube"));
    EXPECT_GT(rayCost("displace v_bricks\nsphere"), 1.1f);
}
