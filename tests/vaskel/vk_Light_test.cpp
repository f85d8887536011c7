#include "tests/support/PlainText.h"
#include "vaskel/base/vk_Sampler.h"
#include "vaskel/lights/vk_LightShaders.h"

#include <gtest/gtest.h>

namespace
{
std::unique_ptr<vk_Light> makeLight(const std::string &line)
{
    const vk_Words words = plainSplitWords("light " + line);
    std::string error;
    const auto shader = vk_parseShader(VK_LIGHT_SHADERS, words, error);
    EXPECT_NE(nullptr, shader) << error;
    return shader->make();
}

const char *const LIGHTS[] = {
    "v_area intensity .8 from -4 6 5 to 0 1 0 width 3 height 1",
    "v_area intensity .8 from 0 5 0 to 0 1 0 width 6 height 6",
    "v_point intensity .8 from -4 6 5 to 0 1 0 radius .5",
    "v_point intensity .8 from -4 6 5 to 0 1 0 radius 0",
    "v_distant intensity .8 from -4 6 5 to 0 1 0 angle 20",
    "v_distant intensity .8 from -4 6 5 to 0 1 0 angle 0",
    "v_spot intensity .8 from -4 6 5 to 0 1 0 angle 30",
    "v_window intensity .8 from -4 6 5 to 0 1 0 angle 30 columns 3 rows 3",
    "v_blinds intensity .8 from -4 6 5 to 0 1 0 angle 30",
};
const vk_Vec TARGET = {0, 1, 0};
} // namespace

TEST(Light, IntensityIsWhatWhiteMatteShowsAtTheTarget)
{
    constexpr int COUNT = 4096;
    for (const char *line : LIGHTS) {
        SCOPED_TRACE(line);
        const auto light = makeLight(line);
        const vk_Vec facing = light->sample(TARGET, {.5f, .5f}).direction;
        double shown = 0;
        for (std::uint32_t i = 0; i < COUNT; ++i) {
            vk_Sampler sampler(5, i);
            const vk_LightSample sample = light->sample(TARGET, sampler.square());
            const float cosine = std::max(0.0f, vk_dot(sample.direction, facing));
            shown +=
                static_cast<double>(sample.radiance.x * cosine / (sample.density * VK_PI)) / COUNT;
        }
        EXPECT_NEAR(.8, shown, .01);
    }
}

TEST(Light, RaysTowardsSamplesHitWithTheSameDensity)
{
    for (const char *line : LIGHTS)
        for (const vk_Vec &from : {TARGET, vk_Vec{2, 0, -3}}) {
            SCOPED_TRACE(line);
            const auto light = makeLight(line);
            int hits = 0;
            for (std::uint32_t i = 0; i < 256; ++i) {
                vk_Sampler sampler(9, i);
                const vk_LightSample sample = light->sample(from, sampler.square());
                const vk_LightSample hit = light->hit(from, sample.direction);
                if (hit.density <= 0)
                    continue; // rounding at the rim
                ++hits;
                EXPECT_NEAR(hit.density, sample.density, sample.density * 1e-3f);
                EXPECT_NEAR(hit.distance, sample.distance, sample.distance * 1e-3f);
            }
            EXPECT_GT(hits, 200);
            EXPECT_LE(light->hit(from, {0, -1, 0}).density, 0);
        }
}

TEST(Sampler, EveryPairSpreadsItsFirstSixteenSamplesOverAllCells)
{
    for (std::uint32_t pixel = 0; pixel < 20; ++pixel)
        for (std::uint32_t pair = 0; pair < 5; ++pair) {
            int cells[16] = {}, columns[16] = {}, rows[16] = {};
            for (std::uint32_t i = 0; i < 16; ++i) {
                vk_Sampler sampler(vk_hash(pixel), i);
                sampler.fork(pair);
                const vk_Square at = sampler.square();
                ++cells[static_cast<int>(at.u * 4) * 4 + static_cast<int>(at.v * 4)];
                ++columns[static_cast<int>(at.u * 16)];
                ++rows[static_cast<int>(at.v * 16)];
            }
            for (int i = 0; i < 16; ++i)
                EXPECT_TRUE(cells[i] == 1 && columns[i] == 1 && rows[i] == 1)
                    << pixel << " " << pair;
        }
}
