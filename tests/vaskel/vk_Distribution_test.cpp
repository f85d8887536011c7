#include "vaskel/base/vk_Distribution.h"

#include "vaskel/base/vk_Sampler.h"

#include <gtest/gtest.h>

namespace
{
// How many of so many well spread points lie in each cell of 3 columns and 2 rows.
std::vector<int> hits(const vk_Distribution &distribution, std::uint32_t points)
{
    std::vector<int> count(6);
    for (std::uint32_t i = 0; i < points; ++i) {
        const vk_Square at = distribution.sample(vk_Sampler(1, i).square());
        EXPECT_TRUE(at.u >= 0 && at.u <= 1 && at.v >= 0 && at.v <= 1);
        const int column = std::min(static_cast<int>(at.u * 3), 2);
        ++count[static_cast<std::size_t>((at.v < .5f ? 0 : 3) + column)];
    }
    return count;
}
} // namespace

TEST(Distribution, PointsLieWhereWeightsAre)
{
    const vk_Distribution distribution(3, 2, {1, 0, 2, 0, 0, 5});
    const std::vector<int> count = hits(distribution, 1024);
    const int expected[] = {128, 0, 256, 0, 0, 640};
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(expected[i], count[i], expected[i] == 0 ? 0 : 4) << i;
    EXPECT_FLOAT_EQ(.75f, distribution.pdf(0, 0));
    EXPECT_FLOAT_EQ(0, distribution.pdf(1, 1));
    EXPECT_FLOAT_EQ(3.75f, distribution.pdf(2, 1));
}

TEST(Distribution, WithoutWeightsAllPlacesAreAlike)
{
    const vk_Distribution distribution(3, 2, std::vector<float>(6));
    for (const int count : hits(distribution, 1536))
        EXPECT_NEAR(256, count, 4);
    EXPECT_FLOAT_EQ(1, distribution.pdf(2, 1));
}

TEST(Distribution, OneCellKeepsPointsAsTheyAre)
{
    const vk_Distribution distribution(1, 1, {7});
    const vk_Square at = distribution.sample({.25f, .75f});
    EXPECT_FLOAT_EQ(.25f, at.u);
    EXPECT_FLOAT_EQ(.75f, at.v);
}
