#include "tests/vaskel/filterOf.h"

#include "vaskel/pixels/vk_LinearPicture.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace
{
// Green of all pixels behind it.
template <class Function>
std::vector<float> filtered(const Function &pixelAt)
{
    const vk_Filter filter = filterOf(pixelAt);
    std::vector<float> result;
    for (int i = 0; i < SIDE * SIDE; ++i)
        result.push_back(filter.at(i % SIDE, i / SIDE).y);
    return result;
}
} // namespace

TEST(Filter, NoiseAroundOneLevelBecomesThatLevel)
{
    const auto light = filtered([](int x, int y) {
        const float off = (x + y) % 2 == 0 ? .06f : -.06f;
        return pixelOf(.5f + off, .5f - off * .2f);
    });
    for (const float level : light)
        EXPECT_NEAR(.5f, level, .02f);
}

TEST(Filter, PixelsHelpThoseWithFewerSamples)
{
    const auto light = filtered([](int x, int y) {
        const bool isEven = (x + y) % 2 == 0;
        const float off = isEven ? .06f : -.06f;
        return pixelOf(.5f + off, .5f - off * .2f, isEven ? 1 : 4);
    });
    for (const float level : light)
        EXPECT_NEAR(.49f, level, .015f);
}

// A mean over neighbours would level it off where they end, as at the border of the picture.
TEST(Filter, LightThatRisesEvenlyGoesOnRising)
{
    const auto levelAt = [](int x) { return .3f + .01f * static_cast<float>(x); };
    const auto light = filtered([&](int x, int y) {
        const float off = (x + y) % 2 == 0 ? .06f : -.06f;
        return pixelOf(levelAt(x) + off, levelAt(x) - off * .2f);
    });
    for (int x = 0; x < SIDE; ++x) {
        float sum = 0;
        for (int y = 0; y < SIDE; ++y)
            sum += light[static_cast<std::size_t>(y * SIDE + x)];
        EXPECT_NEAR(levelAt(x), sum / SIDE, .005f) << x;
    }
}

// Though a plane through light that begins to rise passes below black in front of that.
TEST(Filter, NoLightBecomesLessThanNone)
{
    const auto light = filtered([](int x, int y) {
        const float level = .02f * static_cast<float>(std::max(0, x - 4));
        const float off = (x + y) % 2 == 0 ? .5f : 1.5f;
        vk_Pixel pixel = pixelOf(level * off, level * (2 - off) * .9f);
        pixel.sum.blurred = 1;
        // Errors that explain all.
        pixel.errors.irradiance = .01f;
        return pixel;
    });
    for (const float level : light)
        EXPECT_GE(level, 0);
    EXPECT_EQ(0, light[0]);
}

// They have edges that noise hides.
TEST(Filter, ReflectionsGetFewerNeighbours)
{
    const auto left = [](bool isReflection) {
        const auto pixelAt = [&](int x, int y) {
            const float off = (x + y) % 2 == 0 ? .06f : -.06f;
            vk_Pixel pixel = pixelOf(.5f + off, .5f - off * .2f);
            if (isReflection) {
                pixel.sum.specular = pixel.sum.diffuse;
                pixel.sum.diffuse = {};
                std::swap(pixel.errors.specular, pixel.errors.irradiance);
            }
            return pixel;
        };
        return filterOf(pixelAt, true).error(SIDE / 2, SIDE / 2);
    };
    EXPECT_GT(left(true), 1.3f * left(false));
}

// Of light that hardly shows, as little of it is scattered on.
TEST(Filter, NoiseOnADarkSurfaceIsTakenOutAsOnABrightOne)
{
    constexpr float ALBEDO = .05f;
    const auto light = filtered([](int x, int y) {
        vk_Pixel pixel;
        for (const float side : {1.0f, -.2f}) {
            vk_View view;
            view.albedo = vk_grey(ALBEDO);
            view.diffuse = view.albedo * (.5f + side * ((x + y) % 2 == 0 ? .06f : -.06f));
            view.normal = {0, 0, 1};
            view.distance = 5;
            pixel.add(view, MIDDLE);
            pixel.estimate();
        }
        return pixel;
    });
    for (const float level : light)
        EXPECT_NEAR(.5f * ALBEDO, level, .02f * ALBEDO);
}

TEST(Filter, AnEdgeThatErrorsDoNotExplainStays)
{
    const auto light = filtered([](int x, int y) {
        const float off = (x + y) % 2 == 0 ? .004f : -.004f, side = x < SIDE / 2 ? .2f : .7f;
        return pixelOf(side + off, side - off);
    });
    for (int i = 0; i < SIDE * SIDE; ++i)
        EXPECT_NEAR(i % SIDE < SIDE / 2 ? .2f : .7f, light[static_cast<std::size_t>(i)], .006f);
}

// As it does so slowly that a wide neighbourhood is about alike.
TEST(Filter, WhereLightWanderedItLooksFurther)
{
    const auto left = [](float blurred) {
        const auto pixelAt = [&](int x, int y) {
            const float off = (x + y) % 2 == 0 ? .06f : -.06f;
            vk_Pixel pixel = pixelOf(.5f + off, .5f - off * .2f);
            pixel.sum.blurred = blurred;
            return pixel;
        };
        return filterOf(pixelAt, true).error(SIDE / 2, SIDE / 2);
    };
    EXPECT_LT(left(1), .5f * left(0));
}

// As of a caustic, which few samples find: all of its light stays in the picture.
TEST(Filter, APixelThatIsFarOffIsSharedOutAmongItsNeighbours)
{
    constexpr float FOUND = 2.5f;
    const auto light = filtered([](int x, int y) {
        const float off = (x + y) % 2 == 0 ? .03f : -.03f;
        return x == 12 && y == 12 ? pixelOf(.5f, .5f + FOUND) : pixelOf(.5f + off, .5f - off);
    });
    EXPECT_LT(light[12 * SIDE + 12], .7f);
    EXPECT_NEAR(.5f, light[12 * SIDE + 4], .01f); // too far away
    float more = 0;
    for (const float level : light)
        more += level - .5f;
    EXPECT_NEAR(FOUND / 2, more, .2f * FOUND);
}

// Random light of two samples a pixel, of which errors are hardly known: it tells no less than
// two fifths of the mean square that is left.
TEST(Filter, TellsTheErrorThatItWillLeave)
{
    constexpr float LEVEL = .5f;
    const vk_Vec visibility = vk_visibility(vk_grey(LEVEL));
    float told = 0, left = 0;
    for (std::uint32_t picture = 0; picture < 32; ++picture) {
        const auto pixelAt = [&](int x, int y) {
            const auto place = static_cast<std::uint32_t>(y * SIDE + x);
            vk_Sampler sampler(vk_hash(place * 32 + picture), 0);
            const float first = sampler.number() - .5f, second = sampler.number() - .5f;
            return pixelOf(LEVEL + .2f * first, LEVEL + .2f * second);
        };
        const vk_Filter before = filterOf(pixelAt, true), after = filterOf(pixelAt);
        for (int i = 0; i < SIDE * SIDE; ++i) {
            told += before.error(i % SIDE, i / SIDE);
            left += vk_visible(after.at(i % SIDE, i / SIDE) - vk_grey(LEVEL), visibility);
        }
    }
    EXPECT_GT(told, .4f * left);
    EXPECT_LT(told, 1.25f * left);
}

TEST(Filter, AnEdgeKeepsTheErrorThatBlendingLeaves)
{
    const vk_Filter filter = filterOf([](int x, int) {
        vk_Pixel pixel = pixelOf(.5f, .7f);
        if (x == 6) // faces two ways
            pixel.sum.normal = {};
        return pixel;
    });
    const float own = pixelOf(.5f, .7f).errors.irradiance;
    EXPECT_NEAR(own * vk_LinearPicture::REMAINS, filter.error(6, 6), own * .01f);
    EXPECT_LT(filter.error(3, 6), own * .2f);
}

namespace
{
enum Layer { DIFFUSE, SPECULAR };

// A pixel whose light, or the texture that it falls on, rises to the right; its samples are noisy
// besides. Also turned, so that what was to the right is below.
struct Rising {
    float level = 1, lightRise = 0, albedo = .5f, albedoRise = 0;
    vk_Vec normal = {0, 0, 1};
    float distance = 5;

    vk_Pixel pixel(bool isTurned, Layer layer = DIFFUSE) const
    {
        constexpr int SAMPLES = 16;
        vk_Pixel pixel;
        for (int i = 0; i < SAMPLES; ++i) {
            const float at = (static_cast<float>(i) + .5f) / SAMPLES;
            vk_View view;
            view.albedo = vk_grey(albedo + albedoRise * (at - .5f));
            view.diffuse =
                view.albedo * (level + lightRise * (at - .5f) + (i % 4 == 0 ? .3f : -.1f));
            if (layer == SPECULAR) {
                view.specular = view.diffuse;
                view.diffuse = view.albedo = {};
            }
            view.normal = normal;
            view.distance = distance;
            pixel.add(view, isTurned ? vk_Square{.5f, at} : vk_Square{at, .5f});
            if (i == SAMPLES / 2 - 1)
                pixel.estimate();
        }
        pixel.estimate();
        (layer == SPECULAR ? pixel.errors.specular : pixel.errors.irradiance) = .01f;
        return pixel;
    }
};

// How light rises to the right behind the filter, in a pixel in the middle of many; and the same
// turned.
void expectRise(const std::function<Rising(int x, int y)> &risingAt, float expected, float off,
                Layer layer = DIFFUSE)
{
    for (const bool isTurned : {false, true}) {
        const auto pixelAt = [&](int x, int y) {
            return (isTurned ? risingAt(y, x) : risingAt(x, y)).pixel(isTurned, layer);
        };
        const vk_Gradient gradient = filterOf(pixelAt).gradient(pixelAt(12, 12), 12, 12);
        EXPECT_NEAR(expected, isTurned ? gradient.y.y : gradient.x.y, off) << isTurned;
        EXPECT_NEAR(0, isTurned ? gradient.x.y : gradient.y.y, off) << isTurned;
    }
}
} // namespace

// Noise of their samples would say anything.
TEST(Filter, LightRisesWithinPixelsAsItDoesFromOneToTheNext)
{
    const auto rising = [](int x, int) {
        return Rising{1 + .1f * static_cast<float>(x), x % 2 == 0 ? 2.0f : -2.0f};
    };
    expectRise(rising, .5f * .1f, .02f);
    expectRise(rising, .5f * .1f, .02f, SPECULAR);
}

TEST(Filter, TextureWithinAPixelStaysAsItIs)
{
    // Light to the left and dark to the right, or the other way round, or with an edge within each
    // pixel where they rise from one to the next.
    for (const float side : {-1.0f, 1.0f})
        expectRise([side](int, int) { return Rising{1, 0, .5f, side}; }, side, .05f);
    expectRise(
        [](int x, int) {
            return Rising{1, 0, .3f + .05f * static_cast<float>(x), .4f};
        },
        .4f, .02f);
}

TEST(Filter, WhereAPixelStandsAloneItsSamplesTellHowLightRises)
{
    // It faces two ways, or elsewhere than those around it.
    for (const vk_Vec &normal : {vk_Vec{}, vk_Vec{.8f, 0, .6f}})
        for (const Layer layer : {DIFFUSE, SPECULAR}) {
            const Rising alone = {1, .8f, .5f, 0, normal};
            const auto rising = [&](int x, int y) { return x == 12 && y == 12 ? alone : Rising(); };
            expectRise(rising, alone.pixel(false, layer).lightGradient().x.y, .01f, layer);
        }
}

// There the light of something else begins.
TEST(Filter, LightDoesNotRiseTowardsWhatLiesBehindASilhouette)
{
    const auto rising = [](int x, int) {
        return x <= 12 ? Rising() : Rising{9, 0, .5f, 0, {0, 0, 1}, 10};
    };
    expectRise(rising, 0, .02f);
}

TEST(Pixel, TellsHowLightRisesAcrossIt)
{
    vk_Pixel pixel;
    for (int i = 0; i < 256; ++i) {
        vk_Sampler sampler(1, static_cast<std::uint32_t>(i));
        const vk_Square place = sampler.square();
        vk_View view;
        view.specular = {3, place.u, 2 - 4 * place.v};
        pixel.add(view, place);
    }
    const vk_Gradient gradient = pixel.lightGradient();
    // Where light is the same everywhere, places do not count.
    EXPECT_NEAR(0, gradient.x.x, 1e-4f);
    EXPECT_NEAR(1, gradient.x.y, .02f);
    EXPECT_NEAR(0, gradient.y.y, .02f);
    EXPECT_NEAR(-4, gradient.y.z, .08f);
}

TEST(Pixel, ASampleThatIsNoNumberIsCountedAndAddsNothing)
{
    for (const bool isAlbedo : {false, true}) {
        vk_Pixel pixel = pixelOf(.5f, .5f);
        EXPECT_FALSE(pixel.bad);
        vk_View view;
        (isAlbedo ? view.albedo : view.diffuse) = vk_grey(std::numeric_limits<float>::quiet_NaN());
        pixel.add(view, {1, .5f});
        EXPECT_TRUE(pixel.bad);
        EXPECT_NEAR(1.0f / 3, pixel.light().x, 1e-6f);
        // At its place there is none: half a pixel off, of three samples.
        EXPECT_NEAR(-12 * (1.0f / 3) * .5f / 3, pixel.lightGradient().x.x, 1e-5f);
    }
}
