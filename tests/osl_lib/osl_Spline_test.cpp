#include "osl/lib/osl_Spline.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

namespace
{
const char *const BASES[] = {"catmull-rom", "bezier", "bspline", "hermite", "linear", "constant"};

osl_Knots over(const std::vector<float> &values)
{
    return {values.data(), static_cast<int>(values.size())};
}
float at(const char *basis, float x, const std::vector<float> &knots)
{
    return osl_spline(osl_splineBasis(basis), x, over(knots));
}
} // namespace

TEST(Spline, GoesWhereItsBasisSays)
{
    const std::vector<float> seven = {9, 1, 2, 4, 3, 5, 9}; // 4 segments, or 2 of bezier
    const struct {
        const char *basis;
        float x, y;
    } cases[] = {
        {"catmull-rom", 0, 1},
        {"catmull-rom", 0.25f, 2},
        {"catmull-rom", 0.5f, 4},
        {"catmull-rom", 1, 5},
        {"linear", 0, 1},
        {"linear", 0.125f, 1.5f},
        {"linear", 1, 5},
        {"constant", 0, 1},
        {"constant", 0.49f, 2},
        {"constant", 0.5f, 4},
        {"constant", 1, 3},
        {"bezier", 0, 9},
        {"bezier", 0.5f, 4},
        {"bezier", 1, 9},
        {"bezier", 0.25f, 2.75f},
        {"bspline", 0, 15.0f / 6},
        {"bspline", 1, 32.0f / 6},
        {"hermite", 0, 9},
        {"hermite", 0.5f, 2},
        {"hermite", 1, 3},
        {"linear", -3, 1},
        {"linear", 7, 5},
        {"no such basis", 0.125f, 1.5f},
    };
    for (const auto &c : cases)
        EXPECT_NEAR(c.y, at(c.basis, c.x, seven), 1e-5f) << c.basis << " " << c.x;
}

TEST(Spline, TakesOneComponentOfTriples)
{
    const std::vector<float> knots = {0, 7, 7, 1, 7, 7, 3, 7, 7, 4, 7, 7};
    const osl_Knots reds = {knots.data(), 4, 3};
    EXPECT_FLOAT_EQ(2, osl_spline(osl_splineBasis("linear"), 0.5f, reds));
}

TEST(Spline, ReadsNoKnotBeyondItsSegments)
{
    for (const char *basis : BASES) {
        for (size_t count = 4; count < 12; ++count) {
            const std::vector<float> knots(count, 2); // the sanitizers look at the rest
            for (const float x : {0.0f, 1.0f, -1e30f, 1e30f})
                EXPECT_NEAR(2, at(basis, x, knots), 1e-5f) << basis << " " << x;
        }
    }
}

TEST(Spline, DerivativesAreSlopesOfPlaceAndKnots)
{
    constexpr float STEP = 1e-3f;
    Random random;
    std::vector<float> knots(7), speeds(7), still(7), low(7), high(7);
    for (size_t i = 0; i < 7; ++i) {
        knots[i] = static_cast<float>(random.below(100)) / 10;
        speeds[i] = static_cast<float>(random.below(100)) / 10;
        low[i] = knots[i] - STEP * speeds[i];
        high[i] = knots[i] + STEP * speeds[i];
    }
    for (const char *basis : BASES) {
        if (basis[0] == 'c' && basis[1] == 'o')
            continue;
        for (const float x : {0.1f, 0.4f, 0.9f}) {
            const osl_Knots moving = {knots.data(), 7, 1, speeds.data(), still.data()};
            const osl_Dual y = osl_spline(osl_splineBasis(basis), {x, 0.5f, 2}, moving);
            const float before = at(basis, x - STEP / 2, low),
                        after = at(basis, x + STEP / 2, high);
            EXPECT_NEAR((after - before) / (2 * STEP), y.dx, 0.05f) << basis << " " << x;
            const float slope = (at(basis, x + STEP, knots) - at(basis, x - STEP, knots)) / STEP;
            EXPECT_NEAR(slope, y.dy, 0.05f) << basis << " " << x;
        }
    }
}

TEST(SplineInverse, FindsThePlaceOfAValue)
{
    Random random;
    for (const char *basis : {"catmull-rom", "bspline", "linear", "bezier"}) {
        for (const float sign : {1.0f, -1.0f}) {
            std::vector<float> knots = {0};
            while (knots.size() < 7)
                knots.push_back(knots.back() +
                                sign * (0.2f + static_cast<float>(random.below(10)) / 10));
            const osl_SplineBasis &b = osl_splineBasis(basis);
            for (const float x : {0.02f, 0.3f, 0.6f, 0.77f, 1.0f}) {
                const float y = at(basis, x, knots);
                const osl_Dual found = osl_splineInverse(b, osl_Dual(y, 0.5f, 0), over(knots));
                EXPECT_NEAR(y, at(basis, found.val, knots), 2e-5f) << basis << " " << x;
                EXPECT_NEAR(found.val, osl_splineInverse(b, y, over(knots)), 1e-6f);
                if (x == 1)
                    continue; // may be found at the end, where nothing moves
                EXPECT_NEAR(0.5f, osl_spline(b, found, over(knots)).dx, 0.01f) << basis << x;
            }
        }
    }
}

TEST(SplineInverse, IsAnEndForValuesOutside)
{
    const std::vector<float> rising = {0, 1, 2, 3, 4, 5}, falling = {5, 4, 3, 2, 1, 0};
    const osl_SplineBasis &linear = osl_splineBasis("linear");
    EXPECT_EQ(0, osl_splineInverse(linear, 0.5f, over(rising)));
    EXPECT_EQ(1, osl_splineInverse(linear, 4.5f, over(rising)));
    EXPECT_EQ(0, osl_splineInverse(linear, 4.5f, over(falling)));
    EXPECT_EQ(1, osl_splineInverse(linear, 0.5f, over(falling)));
    EXPECT_EQ(0, osl_splineInverse(linear, osl_Dual(9, 1, 1), over(falling)).dx);
    const std::vector<float> flat(6, 2);
    EXPECT_EQ(0, osl_splineInverse(linear, 2, over(flat)));
}
