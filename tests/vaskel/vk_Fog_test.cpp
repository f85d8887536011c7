#include "vaskel/trace/vk_Fog.h"

#include <gtest/gtest.h>

namespace
{
// Each fog of the scene language, dense enough to see.
template <class Function>
void forEachFog(const Function &check)
{
    for (const auto &row : VK_FOG_SHADERS) {
        SCOPED_TRACE(row.name);
        const auto shader = row.make();
        shader->params().find("density")->set({.3f, 0, 0});
        check(vk_Fog(shader.get()));
    }
}
} // namespace

TEST(Fog, TransmittancesOfPartsMultiply)
{
    forEachFog([](const vk_Fog &fog) {
        const vk_Vec from = {-2, .5f, 1};
        for (const vk_Vec &to : {vk_Vec{1, 0, 0}, vk_Vec{.6f, .8f, 0}, vk_Vec{.8f, -.1f, -.59f}}) {
            const vk_Vec way = vk_normalize(to);
            const float parts = fog.passes(from, way, 1) * fog.passes(from + way, way, 2);
            EXPECT_NEAR(fog.passes(from, way, 3), parts, 1e-4f);
            EXPECT_LT(parts, .99f);
        }
    });
}

TEST(Fog, PhaseFunctionsIntegrateToOne)
{
    forEachFog([](const vk_Fog &fog) {
        constexpr int STEPS = 4000;
        double sum = 0;
        for (int i = 0; i < STEPS; ++i) {
            const float cosine = -1 + (2 * static_cast<float>(i) + 1) / STEPS;
            sum += static_cast<double>(fog.phase(cosine) * 2 * VK_PI * 2 / STEPS);
        }
        EXPECT_NEAR(1, sum, 1e-3);
    });
}
