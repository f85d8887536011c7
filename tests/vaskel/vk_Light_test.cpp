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
        EXPECT_GT(facing.y, .5f); // all stand above it
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

TEST(Light, AnAreaIsAsWideAndHighAsItSays)
{
    const auto light = makeLight("v_area from 0 1 5 to 0 1 0 width 3 height 1");
    const auto isMet = [&](float x, float y) {
        return light->hit(TARGET, vk_normalize(vk_Vec{x, y, 5})).density > 0;
    };
    for (const float side : {-1.0f, 1.0f}) {
        EXPECT_TRUE(isMet(1.4f * side, 0) && isMet(0, .4f * side));
        EXPECT_FALSE(isMet(1.6f * side, 0) || isMet(0, .6f * side));
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

// Of all rays in the wider surroundings of a light: those that samples do not take hit nothing.
TEST(Light, DensitiesOfItsHitsIntegrateToOne)
{
    constexpr std::uint32_t COUNT = 1 << 16;
    for (const char *line : LIGHTS) {
        SCOPED_TRACE(line);
        const auto light = makeLight(line);
        const vk_Vec axis = light->sample(TARGET, {.5f, .5f}).direction;
        float reach = 0;
        for (std::uint32_t i = 0; i < 256; ++i) {
            const vk_Vec way = light->sample(TARGET, vk_Sampler(9, i).square()).direction;
            reach = std::max(reach, 1 - vk_dot(axis, way));
        }
        const float height = std::min(4 * reach, 1.0f);
        double sum = 0;
        for (std::uint32_t i = 0; i < COUNT; ++i) {
            const vk_Vec way = vk_inCap(axis, height, vk_Sampler(3, i).square());
            sum +=
                static_cast<double>(light->hit(TARGET, way).density * 2 * VK_PI * height) / COUNT;
        }
        EXPECT_NEAR(1, sum, .03);
    }
}

// The share of a wall that fills the angle of a slide.
TEST(Light, SlidesLetThatShareThroughThatTheirParametersSay)
{
    const std::pair<const char *, double> cases[] = {
        {"v_spot", .785},
        {"v_window bar 0", 1},
        {"v_window columns 1 rows 2 bar .2", .72},
        {"v_blinds gap .2", .2},
        {"v_blinds gap .9 slats 3", .9},
    };
    for (const auto &[line, share] : cases) {
        SCOPED_TRACE(line);
        constexpr int SIDE = 200;
        const auto light = makeLight(line + std::string(" soft .001 angle 45 from 0 0 1 to 0 0 0"));
        int lit = 0;
        for (int i = 0; i < SIDE * SIDE; ++i) {
            const auto at = [](int step) { return (2 * static_cast<float>(step) + 1) / SIDE - 1; };
            lit += light->sample({at(i % SIDE), at(i / SIDE), 0}, {.5f, .5f}).density > 0 ? 1 : 0;
        }
        EXPECT_NEAR(share, static_cast<double>(lit) / SIDE / SIDE, .02);
    }
}

TEST(Light, ReachHoldsAllPlacesThatAreLit)
{
    for (const char *line : LIGHTS) {
        SCOPED_TRACE(line);
        const auto light = makeLight(line);
        int lit = 0;
        for (std::uint32_t i = 0; i < 4096; ++i) {
            vk_Sampler sampler(2, i);
            const vk_Vec from = vk_inCap({0, 1, 0}, 2, sampler.square()) * 8;
            const vk_Vec way = vk_normalize(vk_inCap({0, 1, 0}, 2, sampler.square()) * 2 - from);
            const float distance = 12 * sampler.number();
            if (light->sample(from + way * distance, sampler.square()).density <= 0)
                continue;
            ++lit;
            const vk_Span reach = light->reach(from, way);
            EXPECT_LE(reach.begin, distance * 1.001f);
            EXPECT_GE(reach.end, distance * .999f);
        }
        EXPECT_GT(lit, 20);
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

TEST(Sampler, HalvesSpreadOverAllCellsTogether)
{
    for (std::uint32_t pixel = 0; pixel < 20; ++pixel) {
        int cells[16] = {}, columns[16] = {};
        for (std::uint32_t i = 0; i < 16; ++i) {
            vk_Sampler sampler(vk_hash(pixel), i / 2);
            sampler.square(); // before they part
            sampler.split(i % 2);
            EXPECT_EQ(i, sampler.index());
            const vk_Square at = sampler.square();
            ++cells[static_cast<int>(at.u * 4) * 4 + static_cast<int>(at.v * 4)];
            ++columns[static_cast<int>(at.u * 16)];
        }
        for (int i = 0; i < 16; ++i)
            EXPECT_TRUE(cells[i] == 1 && columns[i] == 1) << pixel;
    }
}

TEST(Disc, SquaresAroundTheMiddleBecomeCirclesTurnedByAsMuch)
{
    for (int i = 0; i <= 32; ++i)
        for (int j = 0; j <= 32; ++j) {
            const float a = static_cast<float>(i - 16) / 16, b = static_cast<float>(j - 16) / 16;
            const vk_Vec at = vk_toDisc({(a + 1) / 2, (b + 1) / 2});
            EXPECT_NEAR(std::max(std::abs(a), std::abs(b)), vk_length(at), 1e-6f);
            // An eighth of a turn for each half of a side.
            const float turned = std::abs(a) >= std::abs(b) ? b / a : 2 - a / b;
            const float angle = std::fmod(std::atan2(at.y, at.x) * 4 / VK_PI + 4, 4.0f);
            if (i != 16 || j != 16) {
                EXPECT_NEAR(0, std::sin((angle - turned) * VK_PI / 4), 1e-6f) << a << ' ' << b;
            }
        }
}

TEST(Lights, HaveABoundThatRulesOutMostRaysAndNoneThatMeetTheLight)
{
    constexpr std::uint32_t COUNT = 4096;
    for (const char *line : LIGHTS) {
        SCOPED_TRACE(line);
        const auto light = makeLight(line);
        const vk_Ball bound = light->bound();
        std::uint32_t ruledOut = 0, below = 0;
        for (std::uint32_t i = 0; i < COUNT; ++i) {
            vk_Sampler sampler(7, i);
            const vk_Vec place = vk_toDisc(sampler.square()) * 8;
            const vk_Vec direction = vk_toCap(sampler.square(), 2);
            const vk_LightSample sample = light->sample(place, sampler.square());
            const bool mayMeet = bound.mayMeet(place, direction);
            ruledOut += mayMeet ? 0 : 1;
            EXPECT_TRUE(mayMeet || light->hit(place, direction).density <= 0);
            if (sample.density <= 0)
                continue;
            EXPECT_TRUE(bound.mayMeet(place, sample.direction));
            below += bound.isBelow(place, direction) ? 1u : 0u;
            EXPECT_TRUE(!bound.isBelow(place, direction) ||
                        vk_dot(direction, sample.direction) <= 0);
        }
        const bool isSomewhere = light->place() != nullptr;
        EXPECT_EQ(isSomewhere, ruledOut > COUNT / 2);
        EXPECT_EQ(isSomewhere, below > COUNT / 64);
    }
}
