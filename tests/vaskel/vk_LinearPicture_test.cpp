#include "vaskel/pixels/vk_LinearPicture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
constexpr int SIZE = 7, MIDDLE = 3;

using Light = std::vector<float>; // of squares, row by row

// What is to be seen when light rises in one square, or in all of them.
Light blended(const Light &means, const vk_Gradient &gradient, bool inAll = false)
{
    vk_LinearPicture picture(SIZE, SIZE);
    for (int y = 0; y < SIZE; ++y)
        for (int x = 0; x < SIZE; ++x) {
            const bool rises = inAll || (x == MIDDLE && y == MIDDLE);
            picture.set(x, y, vk_grey(means[static_cast<std::size_t>(y * SIZE + x)]),
                        rises ? gradient : vk_Gradient{});
        }
    Light result;
    for (int i = 0; i < SIZE * SIZE; ++i)
        result.push_back(picture.blended(i % SIZE, i / SIZE).y);
    return result;
}

// One square that is brighter than all others.
Light pointOn(float level)
{
    Light means(SIZE * SIZE, level);
    means[MIDDLE * SIZE + MIDDLE] += 1;
    return means;
}

struct Spread {
    float sum = 0, x = 0, y = 0, width = 0; // of all light, its centre and deviation along a row
};
Spread spreadOf(const Light &light, float level = 0)
{
    Spread spread;
    float xx = 0;
    for (int i = 0; i < SIZE * SIZE; ++i) {
        const float here = light[static_cast<std::size_t>(i)] - level;
        const auto x = static_cast<float>(i % SIZE - MIDDLE);
        spread.sum += here;
        spread.x += here * x;
        spread.y += here * static_cast<float>(i / SIZE - MIDDLE);
        xx += here * x * x;
    }
    spread.width = std::sqrt(xx - spread.x * spread.x);
    return spread;
}
} // namespace

TEST(vk_LinearPicture, ASampleIsSeenWhereItLies)
{
    // Of light 1 at this place: 12 times as much as the way from the middle.
    const float x = .2f, y = -.1f;
    const Spread spread = spreadOf(blended(pointOn(0), {vk_grey(12 * x), vk_grey(12 * y)}));
    EXPECT_NEAR(spread.sum, 1, 1e-5);
    EXPECT_NEAR(spread.x, x, 1e-5);
    EXPECT_NEAR(spread.y, y, 1e-5);
}

// Together with the variance of the square, in which light lies anywhere.
TEST(vk_LinearPicture, LightOfASquareSpreadsByHalfAPixel)
{
    constexpr int PLACES = 100;
    float variance = 0;
    for (int i = 0; i < PLACES; ++i) {
        const float x = (static_cast<float>(i) + .5f) / PLACES - .5f;
        // On so much light that none is limited.
        const Spread spread = spreadOf(blended(pointOn(10), {vk_grey(12 * x), {}}), 10);
        variance += spread.width * spread.width / PLACES;
    }
    EXPECT_NEAR(std::sqrt(variance), .5f, .002f);
}

TEST(vk_LinearPicture, LightThatRisesEvenlyStaysAsItIs)
{
    Light means;
    for (int i = 0; i < SIZE * SIZE; ++i)
        means.push_back(static_cast<float>(20 + i % SIZE - 2 * (i / SIZE)));
    const Light light = blended(means, {vk_grey(1), vk_grey(-2)}, true);
    for (int y = 1; y < SIZE - 1; ++y)
        for (int x = 1; x < SIZE - 1; ++x)
            EXPECT_NEAR(light[static_cast<std::size_t>(y * SIZE + x)],
                        means[static_cast<std::size_t>(y * SIZE + x)], 1e-4);
}

// Wherever in their squares the light of points lies.
TEST(vk_LinearPicture, BordersNeitherDarkenNorBrightenThePicture)
{
    for (const int column : {0, MIDDLE, SIZE - 1})
        for (const int row : {0, MIDDLE, SIZE - 1}) {
            vk_LinearPicture picture(SIZE, SIZE);
            picture.set(column, row, vk_grey(1), {vk_grey(-1.5f), vk_grey(2)});
            float sum = 0;
            for (int i = 0; i < SIZE * SIZE; ++i)
                sum += picture.blended(i % SIZE, i / SIZE).y;
            EXPECT_NEAR(sum, 1, 1e-5f) << column << ' ' << row;
        }
    for (const float level : blended(Light(SIZE * SIZE, 3), {}))
        EXPECT_NEAR(level, 3, 1e-5);
}

TEST(vk_LinearPicture, APointAtTheFarCornerOfASquareTakesNoLightFromOthers)
{
    for (const float level : blended(pointOn(0), {vk_grey(6), vk_grey(6)}))
        EXPECT_GE(level, -1e-6f);
    // Each colour by itself.
    vk_LinearPicture picture(SIZE, SIZE);
    picture.set(MIDDLE, MIDDLE, {10, 1, .1f}, {vk_grey(5), {}});
    for (int i = 0; i < SIZE * SIZE; ++i)
        EXPECT_GE(picture.blended(i % SIZE, i / SIZE).z, -1e-6f);
    EXPECT_NEAR(picture.blended(MIDDLE + 1, MIDDLE).x, (10.0f / 6 + 5.0f / 24) * 2 / 3, 1e-5f);
}

TEST(vk_LinearPicture, PicturesOfOnePixelOrOneRowKeepTheirLight)
{
    vk_LinearPicture pixel(1, 1), row(3, 1), column(1, 3);
    pixel.set(0, 0, {1, 2, 3}, {vk_grey(1), vk_grey(-1)});
    EXPECT_NEAR(pixel.blended(0, 0).y, 2, 1e-6);
    for (int i = 0; i < 3; ++i) {
        row.set(i, 0, vk_grey(1), {vk_grey(i == 0 ? 2.0f : 0.0f), vk_grey(1)});
        column.set(0, i, vk_grey(1), {vk_grey(1), vk_grey(i == 2 ? 2.0f : 0.0f)});
    }
    float ofRow = 0, ofColumn = 0;
    for (int i = 0; i < 3; ++i) {
        ofRow += row.blended(i, 0).y;
        ofColumn += column.blended(0, i).y;
    }
    EXPECT_NEAR(ofRow, 3, 1e-5f);
    EXPECT_NEAR(ofColumn, 3, 1e-5f);
}

// REMAINS is what is left of the variance of independent samples, by its definition.
TEST(vk_LinearPicture, ErrorsThatDoNotDependOnEachOtherFallAsItTells)
{
    constexpr int PLACES = 40;
    float sum = 0;
    for (int i = 0; i < PLACES * PLACES; ++i) {
        const auto at = [](int k) { return (static_cast<float>(k) + .5f) / PLACES - .5f; };
        const vk_Gradient gradient = {vk_grey(12 * at(i % PLACES)), vk_grey(12 * at(i / PLACES))};
        // On much light, so that none is limited.
        for (const float level : blended(pointOn(100), gradient))
            sum += (level - 100) * (level - 100);
    }
    EXPECT_NEAR(sum / (PLACES * PLACES), vk_LinearPicture::REMAINS, .002f);
}
