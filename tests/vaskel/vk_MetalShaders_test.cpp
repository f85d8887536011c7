#include "vaskel/shaders/vk_MetalShaders.h"

#include <gtest/gtest.h>

TEST(MetalShaders, FlakesCoverTheirShareOfThePaint)
{
    for (const auto &row : VK_METAL_SHADERS)
        if (row.name == std::string("v_carpaint"))
            for (const float share : {0.0f, .2f, .7f, 1.0f}) {
                constexpr int COUNT = 4000;
                const auto shader = row.make();
                shader->params().find("flakes")->set({share, 0, 0});
                int flakes = 0;
                for (int i = 0; i < COUNT; ++i) {
                    vk_SurfacePoint point;
                    point.position = {.037f * static_cast<float>(i), .3f, .7f};
                    flakes += shader->shade(point).tilt == vk_Vec{} ? 0 : 1;
                }
                EXPECT_NEAR(share, static_cast<double>(flakes) / COUNT, .03);
            }
}
