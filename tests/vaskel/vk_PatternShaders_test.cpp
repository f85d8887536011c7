#include "vaskel/shaders/vk_PatternShaders.h"

#include <gtest/gtest.h>

// As of a sheet that stands there, whose points lie beside the plane by rounding.
TEST(PatternShaders, NoPatternChangesAtPlanesThroughTheOrigin)
{
    constexpr float OFF = 1e-7f;
    for (const auto &row : VK_PATTERN_SHADERS)
        for (float vk_Vec::*const axis : {&vk_Vec::x, &vk_Vec::y, &vk_Vec::z})
            for (int i = 0; i < 50; ++i) {
                const float a = .073f * static_cast<float>(i);
                vk_SurfacePoint before, behind;
                before.position = behind.position = {a, 1 + a, 2 - a};
                before.position.*axis = -OFF;
                behind.position.*axis = OFF;
                const auto shader = row.make();
                const vk_Colour change =
                    shader->shade(behind).diffuse - shader->shade(before).diffuse;
                EXPECT_LT(vk_length(change), .01f) << row.name << ' ' << a;
            }
}

TEST(PatternShaders, MixTheirColoursAndStayInRangeWhereverAPointIs)
{
    for (const auto &row : VK_PATTERN_SHADERS)
        for (const float spread : {1.f, 1e3f, 1e9f, 1e30f}) {
            SCOPED_TRACE(row.name);
            float least = 9, most = -9;
            for (int i = 0; i < 4000; ++i) {
                const auto at = [i](int step) { return static_cast<float>(i * step % 997) / 997; };
                const vk_Vec place = {at(31) - .5f, at(101) - .5f, at(7) - .5f};
                const vk_Colour base = row.make()->shade({place * spread, at(31), at(101)}).diffuse;
                EXPECT_TRUE(vk_isFinite(base));
                least = std::min({least, base.x, base.y, base.z});
                most = std::max({most, base.x, base.y, base.z});
            }
            EXPECT_GE(least, 0);
            EXPECT_LE(most, 1);
            EXPECT_GT(most, spread == 1 ? 1.5f * least : 0);
        }
}
