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

TEST(Fog, GroundFogThinsOutUpwards)
{
    for (const auto &row : VK_FOG_SHADERS)
        if (row.name == std::string("v_groundfog")) {
            const auto shader = row.make();
            shader->params().find("density")->set({.5f, 0, 0});
            shader->params().find("height")->set({2, 0, 0});
            for (const float y : {0.0f, 1.0f, 2.0f, 4.0f})
                EXPECT_NEAR(std::exp(-.5f * std::exp(-y / 2) * 3),
                            vk_Fog(shader.get()).passes({-1, y, 0}, {1, 0, 0}, 3), 1e-4f)
                    << y;
        }
}

TEST(Fog, LightGoesOnForward)
{
    forEachFog([](const vk_Fog &fog) { EXPECT_GE(fog.phase(1), fog.phase(-1)); });
    const auto shader = VK_FOG_SHADERS.rows[2].make();
    EXPECT_GT(vk_Fog(shader.get()).phase(1), 2 * vk_Fog(shader.get()).phase(-1));
}

// However places are drawn, they find the light that fog takes out of a ray.
TEST(Fog, PlacesCountAllThatIsScattered)
{
    forEachFog([](const vk_Fog &fog) {
        constexpr int COUNT = 4000;
        const vk_Vec from = {-3, .2f, 1}, way = vk_normalize({1, .1f, 0}), lamp = {0, 1, 1.5f};
        for (const vk_Vec *const place : {static_cast<const vk_Vec *>(nullptr), &lamp}) {
            double sum = 0;
            for (int i = 0; i < COUNT; ++i) {
                const float at = (static_cast<float>(i) + .5f) / COUNT;
                sum += static_cast<double>(fog.place(from, way, 5, place, at).weight) / COUNT;
            }
            EXPECT_NEAR(1 - fog.passes(from, way, 5), sum, .01) << (place != nullptr);
        }
    });
}
