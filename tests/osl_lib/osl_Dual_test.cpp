#include "osl/lib/osl_Dual.h"

#include <gtest/gtest.h>

namespace
{
using One = osl_Dual (*)(const osl_Dual &);
using Two = osl_Dual (*)(const osl_Dual &, const osl_Dual &);

struct OneCase {
    const char *name;
    One function;
    std::vector<float> at;
};
struct TwoCase {
    const char *name;
    Two function;
    float a, b;
};

osl_Dual third(const osl_Dual &x)
{
    return osl_smoothStep(osl_Dual(0, 0.3f, 0), osl_Dual(2), x);
}
osl_Dual line(const osl_Dual &x)
{
    return osl_linearStep(-1, osl_Dual(2, 0.5f, 0), x);
}
} // namespace

// Compares with the difference over a small step, for a change of x at the speed of 2.
TEST(Dual, DerivativesAreSlopes)
{
    const OneCase cases[] = {
        {"sqrt", osl_sqrt, {0.3f, 4}},
        {"inverseSqrt", osl_inverseSqrt, {0.3f, 4}},
        {"cbrt", osl_cbrt, {0.3f, -4}},
        {"sin", osl_sin, {0, 1, -2}},
        {"cos", osl_cos, {0, 1, -2}},
        {"tan", osl_tan, {0, 1, -0.7f}},
        {"asin", osl_asin, {0, 0.8f, -0.3f}},
        {"acos", osl_acos, {0, 0.8f, -0.3f}},
        {"atan", osl_atan, {0, 3, -0.3f}},
        {"sinh", osl_sinh, {0, 1, -2}},
        {"cosh", osl_cosh, {0, 1, -2}},
        {"tanh", osl_tanh, {0, 1, -2}},
        {"exp", osl_exp, {0, 1, -2}},
        {"exp2", osl_exp2, {0, 1, -2}},
        {"expm1", osl_expm1, {0, 0.9f, -2}},
        {"log", osl_log, {0.4f, 3}},
        {"log2", osl_log2, {0.4f, 3}},
        {"log10", osl_log10, {0.4f, 3}},
        {"erf", osl_erf, {0, 0.4f, -1}},
        {"erfc", osl_erfc, {0, 0.4f, -1}},
        {"abs", osl_abs, {2, -2}},
    };
    constexpr float STEP = 1e-3f, SPEED = 2;
    for (const OneCase &c : cases) {
        for (const float x : c.at) {
            const osl_Dual y = c.function({x, SPEED, -SPEED});
            const float high = c.function(x + STEP).val, low = c.function(x - STEP).val;
            const float slope = (high - low) / (2 * STEP) * SPEED;
            EXPECT_NEAR(slope, y.dx, 2e-3f * (1 + std::fabs(slope))) << c.name << " " << x;
            EXPECT_EQ(-y.dx, y.dy) << c.name << " " << x;
        }
    }
}

TEST(Dual, DerivativesOfTwoArgumentsAddUp)
{
    const TwoCase cases[] = {
        {"div", osl_div, 3, 0.7f},   {"mod", osl_mod, 7.3f, 2.1f}, {"pow", osl_pow, 1.7f, 2.3f},
        {"hypot", osl_hypot, 3, -4}, {"atan2", osl_atan2, 1, -2},  {"log", osl_log, 7, 3},
        {"min", osl_min, 2, 3},      {"max", osl_max, 2, 3},
    };
    constexpr float STEP = 1e-3f, SPEED_A = 2, SPEED_B = -0.5f;
    for (const TwoCase &c : cases) {
        const osl_Dual y = c.function({c.a, SPEED_A, 0}, {c.b, SPEED_B, 0});
        const float high = c.function(c.a + STEP * SPEED_A, c.b + STEP * SPEED_B).val;
        const float low = c.function(c.a - STEP * SPEED_A, c.b - STEP * SPEED_B).val;
        EXPECT_NEAR((high - low) / (2 * STEP), y.dx, 5e-3f) << c.name;
        EXPECT_EQ(0, y.dy) << c.name;
    }
}

TEST(Dual, StepsAndClampsFollowTheirEnds)
{
    EXPECT_FLOAT_EQ(0, third({-1, 1, 0}).dx);
    EXPECT_NEAR(0.75f - 0.5625f * 0.4f, third({1, 1, 0}).dx, 0.3f);
    EXPECT_FLOAT_EQ((1 - 0.5f * 2 / 3) / 3, line({1, 1, 0}).dx);
    EXPECT_FLOAT_EQ(5, osl_clamp({9, 1, 0}, 0, {3, 5, 0}).dx);
    EXPECT_FLOAT_EQ(1, osl_clamp({2, 1, 0}, 0, {3, 5, 0}).dx);
    EXPECT_FLOAT_EQ(0.5f, osl_filterWidth({1, 0.3f, 0.4f}));
}

TEST(Dual, IsFlatOutsideOfDomains)
{
    EXPECT_EQ(0, osl_sqrt(osl_Dual(0, 1, 1)).dx);
    EXPECT_EQ(0, osl_log(osl_Dual(-1, 1, 1)).dx);
    EXPECT_EQ(0, osl_acos(osl_Dual(2, 1, 1)).dx);
    EXPECT_EQ(0, osl_pow(osl_Dual(-2, 1, 1), 0.5f).dx);
    EXPECT_EQ(0, osl_div(osl_Dual(2, 1, 1), osl_Dual(0, 1, 1)).dx);
}
