#include "vaskel/vk_Bsdf.h"

#include "vaskel/vk_Sampler.h"
#include "vaskel/vk_SurfaceShaders.h"

#include <gtest/gtest.h>

namespace
{
const vk_Vec UP = vk_normalize({.3f, .8f, -.5f});

// Directions around UP, by the cosine to it and the angle around it.
vk_Vec around(float cosine, float angle)
{
    const float sine = std::sqrt(1 - cosine * cosine);
    return vk_Frame(UP).toWorld({sine * std::cos(angle), sine * std::sin(angle), cosine});
}

struct Case {
    std::string what;
    vk_Material material;
};

std::vector<Case> materials()
{
    std::vector<Case> all;
    for (const float rough : {.1f, .3f, .6f, 1.0f})
        for (const float spec : {0.0f, .5f, 1.0f}) {
            Case c;
            c.what = "plastic, rough " + std::to_string(rough) + " spec " + std::to_string(spec);
            c.material.diffuse = vk_grey(1);
            c.material.edge = vk_grey(spec);
            c.material.specular = vk_grey(spec * .04f);
            c.material.rough = rough;
            all.push_back(c);
            c.what = "metal, rough " + std::to_string(rough);
            c.material.diffuse = {};
            c.material.edge = c.material.specular = vk_grey(1);
            all.push_back(c);
        }
    return all;
}
} // namespace

TEST(Bsdf, IsReciprocal)
{
    for (const Case &c : materials())
        for (const float a : {.1f, .5f, .9f})
            for (const float b : {.2f, .7f, 1.0f}) {
                SCOPED_TRACE(c.what);
                const vk_Vec x = around(a, .3f), y = around(b, 2);
                float density = 0;
                const float xy = vk_Bsdf(c.material, UP, x, false).evaluate(y, density).x / b;
                const float yx = vk_Bsdf(c.material, UP, y, false).evaluate(x, density).x / a;
                EXPECT_NEAR(xy, yx, 1e-3f * (xy + yx));
            }
}

TEST(Bsdf, ReflectsAtMostWhatArrives)
{
    constexpr int COUNT = 4096;
    for (const Case &c : materials())
        for (const float cosine : {.05f, .3f, .7f, 1.0f}) {
            SCOPED_TRACE(c.what + " cosine " + std::to_string(cosine));
            const vk_Bsdf bsdf(c.material, UP, around(cosine, 1), false);
            double albedo = 0;
            for (std::uint32_t i = 0; i < COUNT; ++i) {
                vk_Sampler sampler(7, i);
                float density = 0;
                const float scattered = bsdf.evaluate(bsdf.sample(sampler.square()), density).x;
                albedo += density > 0 ? static_cast<double>(scattered / density) / COUNT : 0;
            }
            EXPECT_LE(albedo, 1.003);
            EXPECT_GT(albedo, .15);
        }
}

// Counted over directions spread evenly: the density must integrate to 1, less
// what sample() sends below the surface.
TEST(Bsdf, DensityIsThatOfTheSamples)
{
    constexpr int COUNT = 1 << 16;
    for (const Case &c : materials())
        for (const float cosine : {.2f, .8f}) {
            for (const bool split : {false, true}) {
                if (c.material.rough < .2f)
                    continue; // too narrow to be counted evenly
                SCOPED_TRACE(c.what + " cosine " + std::to_string(cosine));
                const vk_Bsdf bsdf(c.material, UP, around(cosine, 1), split);
                double integral = 0, above = 0;
                for (std::uint32_t i = 0; i < COUNT; ++i) {
                    vk_Sampler sampler(3, i);
                    const vk_Square at = sampler.square();
                    float density = 0;
                    static_cast<void>(bsdf.evaluate(around(at.u, 2 * VK_PI * at.v), density));
                    integral += static_cast<double>(density * 2 * VK_PI) / COUNT;
                    for (int round = 0; round < bsdf.rounds(); ++round)
                        above += vk_dot(bsdf.sample(at, round), UP) > 0 ? 1.0 / COUNT : 0;
                }
                EXPECT_NEAR(above, integral, .02);
            }
        }
}

TEST(Bsdf, LobesOfMirrorsAreFinite)
{
    vk_Material mirror;
    mirror.specular = mirror.edge = vk_grey(1);
    mirror.rough = 0;
    for (const float cosine : {0.0f, 1e-6f, .5f, 1.0f}) {
        const vk_Bsdf bsdf(mirror, UP, around(cosine, 1), true);
        float density = 0;
        const vk_Vec in = bsdf.sample({.5f, .5f});
        EXPECT_TRUE(vk_isFinite(bsdf.evaluate(in, density)));
        EXPECT_TRUE(std::isfinite(density));
    }
}
