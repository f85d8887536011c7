#include "tests/vaskel/filterOf.h"
#include "vaskel/file/vk_Film.h"
#include "vaskel/pixels/vk_ErrorMap.h"

#include <gtest/gtest.h>

namespace
{
template <class Function>
vk_ErrorMap mapOf(const Function &pixelAt)
{
    const std::vector<vk_Pixel> pixels = pixelsOf(pixelAt);
    const vk_Filter filter = filterOf(pixelAt);
    vk_ErrorMap map(SIDE, SIDE);
    for (int y = 0; y < SIDE; ++y)
        map.take(filter, &pixels[static_cast<std::size_t>(y * SIDE)], y);
    for (int y = 0; y < SIDE; ++y)
        map.spread(y);
    return map;
}

float exactly(float level)
{
    return vk_toSrgb(vk_toneCurve(level));
}
} // namespace

// All but the pixels in a corner found something that is seldom found.
TEST(ErrorMap, PixelsThatSeemRightAreNoBetterThanThoseAround)
{
    const vk_ErrorMap map = mapOf([](int x, int y) {
        return x < 4 && y < 4 ? pixelOf(.5f, .5f) : pixelOf(.5f, .5f + .1f * float(x % 2));
    });
    EXPECT_GT(map.at(3, 3), .2f * map.at(8, 8));
    const vk_ErrorMap still = mapOf([](int x, int) { return pixelOf(.5f, x < 11 ? .5f : .9f); });
    EXPECT_EQ(0, still.at(1, 6)); // nothing within reach
    EXPECT_GT(still.at(8, 6), 0);
}

TEST(ErrorMap, ReachesAsFarToEitherSide)
{
    const auto withNoiseAt = [](int column) {
        return mapOf([&](int x, int) { return pixelOf(.5f, x == column ? .9f : .5f); });
    };
    const vk_ErrorMap left = withNoiseAt(1), right = withNoiseAt(SIDE - 2);
    for (int x = 0; x < SIDE; ++x)
        EXPECT_NEAR(left.at(x, 6), right.at(SIDE - 1 - x, 6), 1e-3f * left.at(1, 6)) << x;
}

// Or it would go on for ever beside those that have converged early.
TEST(ErrorMap, APixelOfManySamplesHasLittleOfTheErrorAroundIt)
{
    const auto ofMiddle = [](int times) {
        const vk_ErrorMap map = mapOf([&](int x, int y) {
            const bool isInside = std::abs(x - 6) <= 2 && std::abs(y - 6) <= 2;
            const int samples = x == 6 && y == 6 ? times : 1;
            return isInside ? pixelOf(.5f, .5f, samples) : pixelOf(.5f, x % 2 == 0 ? .6f : .4f);
        });
        return map.at(6, 6);
    };
    EXPECT_LT(ofMiddle(64), .4f * ofMiddle(1));
}

TEST(ErrorMap, EdgesAreNoneOfTheirNeighboursBusiness)
{
    const vk_ErrorMap map = mapOf([](int x, int) {
        vk_Pixel pixel = x == 6 ? pixelOf(.1f, .9f) : pixelOf(.5f, .5f);
        if (x == 6) // faces two ways
            pixel.sum.normal = {};
        return pixel;
    });
    EXPECT_EQ(0, map.at(5, 6));
    EXPECT_GT(map.at(6, 6), 1e-4f);
}

TEST(ErrorMap, SmallErrorsShowAsTheCurveIsSteep)
{
    for (const float level : {.01f, .05f, .2f, .8f, 3.0f}) {
        const float off = .02f * level;
        const float error = off * off * vk_visibility(vk_grey(level)).x;
        const float step = .5f * (exactly(level + off) - exactly(level - off));
        EXPECT_NEAR(step * step, vk_shownError(error, vk_grey(level)), .05f * step * step) << level;
    }
}

// Where light is nearly white: what it may fall to shows, which the slope there does not tell.
TEST(ErrorMap, LargeErrorsShowAsFarAsTheFileGoes)
{
    const float level = 4, error = level * level * vk_visibility(vk_grey(level)).x;
    EXPECT_GT(vk_shownError(error, vk_grey(level)), .2f);
    EXPECT_LE(vk_shownError(1e6f, vk_grey(level)), .25f);
}
