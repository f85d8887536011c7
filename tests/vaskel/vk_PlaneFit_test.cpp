#include "vaskel/pixels/vk_PlaneFit.h"

#include <gtest/gtest.h>

namespace
{
float first(const vk_Lanes &lanes)
{
    float all[VK_LANES];
    vk_store(lanes, all);
    return all[0];
}

struct Fitted {
    float light, error;
};

// Neighbours in a square around the pixel of which the first columns and rows are left out; all
// count as much and are as far off.
template <class Function>
Fitted fit(int firstColumn, const Function &lightAt, int firstRow = -3)
{
    constexpr int REACH = 3;
    vk_PlaneFit fit;
    for (int y = firstRow; y <= REACH; ++y) {
        vk_PlaneFit::Row row;
        for (int x = firstColumn; x <= REACH; ++x) {
            const vk_Lanes light = vk_lanes(lightAt(static_cast<float>(x), static_cast<float>(y)));
            row.add({light, light, light}, vk_lanes(4), vk_lanes(1), static_cast<float>(x));
        }
        fit.add(row, static_cast<float>(y));
    }
    const vk_PlaneFit::Value value = fit.atPixel();
    return {first(value.light.y), first(value.error)};
}
} // namespace

TEST(PlaneFit, GoesAlongWithSlopesWhereverNeighboursLie)
{
    const auto slope = [](float x, float y) { return 5 + .3f * x - .2f * y; };
    EXPECT_NEAR(5, fit(-3, slope).light, 1e-4f);
    // A mean would be 5.45.
    EXPECT_NEAR(5, fit(0, slope).light, .05f);
}

TEST(PlaneFit, KeepsAConstant)
{
    const auto constant = [](float, float) { return .7f; };
    for (int firstColumn = -3; firstColumn <= 3; ++firstColumn)
        EXPECT_NEAR(.7f, fit(firstColumn, constant).light, 1e-4f) << firstColumn;
}

TEST(PlaneFit, TellsTheErrorOfItsWeights)
{
    const auto none = [](float, float) { return 0.0f; };
    EXPECT_NEAR(1.0f / 49, fit(-3, none).error, 1e-5f);
    // On one side of 4 columns it is 2.8 / 4 of a row's: (2 n - 1) 2 / (n (n + 1)) of least squares
    // over n points at their end.
    EXPECT_NEAR(.7f / 7, fit(0, none).error, .01f);
    // At a corner it is the mean's 1/16, and for each of both slopes what one adds above.
    EXPECT_NEAR(1.0f / 16 + 2 * (.7f / 4 - 1.0f / 16), fit(0, none, 0).error, .03f);
}

TEST(PlaneFit, LiesLevelThroughASingleNeighbour)
{
    vk_PlaneFit fit;
    vk_PlaneFit::Row row;
    row.add({vk_lanes(2), vk_lanes(2), vk_lanes(2)}, vk_lanes(1), vk_lanes(.5f), 0);
    fit.add(row, 0);
    EXPECT_FLOAT_EQ(2, first(fit.atPixel().light.x));
    EXPECT_FLOAT_EQ(.5f, first(fit.atPixel().error));
    EXPECT_FLOAT_EQ(1, first(fit.atPixel().own));
}
