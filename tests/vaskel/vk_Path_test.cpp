#include "vaskel/trace/vk_Path.h"

#include <gtest/gtest.h>

// What is found at once is clamped by no one: MIS keeps that quiet.
TEST(Path, OnlyWhatIsFoundBehindTheFirstWideVertexIsClamped)
{
    constexpr float BRIGHT = 1000;
    vk_Material white;
    white.diffuse = vk_grey(1);
    const vk_Vec up = {0, 0, 1};
    vk_Hit hit;
    hit.facet = hit.normal = up;
    vk_View view;
    vk_Path path({0, 0, 1}, -up, vk_Sampler(1, 1), view);
    const auto brought = [&] {
        view.specular = view.diffuse = {};
        path.add(vk_grey(BRIGHT));
        return view.light().x;
    };
    EXPECT_FLOAT_EQ(BRIGHT, brought());
    const vk_Bsdf bsdf(white, up, up, false);
    ASSERT_TRUE(path.scatter(hit, bsdf, up, {}, {}));
    EXPECT_GT(brought(), .5f * BRIGHT);
    ASSERT_TRUE(path.scatter(hit, bsdf, up, {}, {}));
    EXPECT_LT(brought(), 10);
}
