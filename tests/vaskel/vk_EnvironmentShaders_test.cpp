#include "vaskel/shaders/vk_EnvironmentShaders.h"

#include <gtest/gtest.h>

TEST(EnvironmentShaders, IntensityIsAFactorInAllDirections)
{
    for (const auto &row : VK_ENVIRONMENT_SHADERS) {
        const auto plain = row.make(), bright = row.make();
        bright->params().find("intensity")->set({3, 0, 0});
        for (int i = -10; i <= 10; ++i) {
            const vk_Vec way = vk_normalize({1, static_cast<float>(i) / 5, 0});
            EXPECT_LT(vk_length(bright->light(way) - plain->light(way) * 3), 1e-5f) << i;
        }
    }
}
