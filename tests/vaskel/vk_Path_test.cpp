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

// As a metal does beside its highlight: what it mirrors there is as sharp as elsewhere, and is
// blurred for a while where it sends next to nothing.
TEST(Path, TheTailOfANarrowLobeIsWideAndFarOutStrayButNotDiffuse)
{
    const vk_Vec up = {0, 0, 1};
    vk_Hit hit;
    hit.facet = hit.normal = up;
    vk_Material metal, white;
    metal.specular = metal.edge = vk_grey(.9f);
    metal.rough = .2f;
    white.diffuse = vk_grey(1);
    vk_View view;
    const vk_Path camera({0, 0, 1}, -up, vk_Sampler(1, 1), view);
    const vk_Bsdf ofMetal(metal, up, up, false), ofWhite(white, up, up, false);
    vk_Path path = camera;
    for (const auto &[aside, isStray] : {std::pair(.25f, false), {.5f, true}}) {
        float pdf = 0;
        const vk_Vec direction = vk_normalize(vk_Vec{aside, 0, 1});
        static_cast<void>(ofMetal.evaluate(direction, pdf));
        ASSERT_TRUE(pdf > 0 && pdf < .95f && (pdf < 1 / VK_PI) == isStray) << pdf;
        path = camera;
        ASSERT_TRUE(path.scatter(hit, ofMetal, direction, {}, {}));
        EXPECT_TRUE(path.isWide());
        EXPECT_FALSE(path.isDiffuse());
        EXPECT_EQ(isStray, path.isStray());
        // Whatever befalls it later.
        ASSERT_TRUE(path.scatter(hit, ofMetal, up, {}, {}));
        EXPECT_EQ(isStray, path.isStray());
    }
    path = camera;
    ASSERT_TRUE(path.scatter(hit, ofWhite, up, {}, {}));
    EXPECT_TRUE(path.isDiffuse());
    EXPECT_FALSE(path.isStray());
    // Of a rough boundary that is hardly there, both parts are drawn all the same.
    white.specular = vk_grey(1e-4f);
    white.rough = .8f;
    const vk_Bsdf ofBoth(white, up, up, true);
    ASSERT_EQ(2, ofBoth.rounds());
    path = camera;
    ASSERT_TRUE(path.scatter(hit, ofBoth, up, {}, {}));
    EXPECT_TRUE(path.isDiffuse());
}
