#include "vaskel/base/vk_Noise.h"

#include <gtest/gtest.h>

// So no cell around a place may be left out: at its border, distances would jump.
TEST(Noise, CellDistancesGrowNoFasterThanTheWay)
{
    constexpr float STEP = 1e-3f;
    for (const vk_Vec &way : {vk_Vec{1, 0, 0}, vk_Vec{0, 1, 0}, vk_Vec{0, 0, 1}})
        for (int i = 1; i < 20000; ++i) {
            const vk_Vec at = vk_Vec{.3f, -7.6f, 2.2f} + way * (static_cast<float>(i) * STEP);
            EXPECT_NEAR(vk_cell(at).distance, vk_cell(at - way * STEP).distance, 1.1f * STEP)
                << at.x << ' ' << at.y << ' ' << at.z;
        }
}

// Creases would show in what it bends.
TEST(Noise, SlopesDoNotChangeWhereCellsMeet)
{
    constexpr float STEP = 1e-3f;
    for (int i = 0; i < 20; ++i) {
        const vk_Vec border = {static_cast<float>(i), .3f + .17f * static_cast<float>(i), -1.4f};
        const float here = vk_noise(border);
        const float before = here - vk_noise(border - vk_Vec{STEP, 0, 0});
        EXPECT_NEAR(before, vk_noise(border + vk_Vec{STEP, 0, 0}) - here, .02f * STEP) << i;
    }
}
