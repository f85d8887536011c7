#include "osl/lib/osl_Math.h"

#include "osl/lib/osl_BatchMath.h"
#include "tests/support/Random.h"

#include <cfloat>
#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

namespace
{
constexpr float INF = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

struct Row {
    const char *what;
    float wanted;
    float found;
};
void expectRows(const std::vector<Row> &rows)
{
    for (const Row &row : rows)
        EXPECT_FLOAT_EQ(row.wanted, row.found) << row.what;
}

// Numbers of both signs and many sizes, within the limit.
std::vector<float> numbers(float limit, size_t count)
{
    Random random;
    std::vector<float> all = {0, 1, -1, 0.5f, 2, limit, -limit};
    while (all.size() < count) {
        const float size = std::exp2(static_cast<float>(random.below(60)) / 2 - 20);
        const float x = size * (static_cast<float>(random.below(2001)) / 1000 - 1);
        all.push_back(std::fmod(x, limit));
    }
    return all;
}

using Exact = double (*)(double);
void expectAccurate(const char *what, osl_Unary osl_BatchMath::*function, Exact exact,
                    const std::vector<float> &x, double absolute, double relative)
{
    std::vector<float> best(x.size() + 1, 7), plain = best;
    const int n = static_cast<int>(x.size());
    (osl_BatchMath::best().*function)(best.data(), x.data(), n);
    (osl_BatchMath::plain().*function)(plain.data(), x.data(), n);
    EXPECT_EQ(plain, best) << what;
    for (size_t i = 0; i < x.size(); ++i) {
        const double wanted = exact(static_cast<double>(x[i]));
        ASSERT_NEAR(wanted, static_cast<double>(best[i]), absolute + relative * std::fabs(wanted))
            << what << "(" << x[i] << ")";
    }
    EXPECT_EQ(7, best.back()) << what << " writes past its end";
}

std::vector<float> positive(std::vector<float> x)
{
    for (float &v : x)
        v = std::max(std::fabs(v), 1e-6f);
    return x;
}
} // namespace

TEST(Math, HasAnswersOutsideOfDomains)
{
    expectRows({
        {"1 / 0", 0, osl_div(1.0f, 0.0f)},
        {"0 / 0", 0, osl_div(0.0f, 0.0f)},
        {"1e38 / 1e-38", 0, osl_div(1e38f, 1e-38f)},
        {"fmod by 0", 0, osl_fmod(3, 0)},
        {"fmod below 0", -0.25f, osl_fmod(-0.25f, 1)},
        {"mod by 0", 3, osl_mod(3, 0)},
        {"mod below 0", 0.75f, osl_mod(-0.25f, 1)},
        {"mod by -1", -0.25f, osl_mod(-0.25f, -1)},
        {"root of -1", 0, osl_sqrt(-1)},
        {"inverse root of 0", 0, osl_inverseSqrt(0)},
        {"inverse root of -4", 0, osl_inverseSqrt(-4)},
        {"acos 2", 0, osl_acos(2)},
        {"acos -2", OSL_PI, osl_acos(-2)},
        {"asin -2", -OSL_PI / 2, osl_asin(-2)},
        {"log 0", std::log(FLT_MIN), osl_log(0)},
        {"log -1", std::log(FLT_MIN), osl_log(-1)},
        {"log2 0", -126, osl_log2(0)},
        {"log to base 1", 0, osl_log(5, 1)},
        {"log to base 2", 3, osl_log(8, 2)},
        {"logb 0", -126, osl_logb(0)},
        {"logb -10", 3, osl_logb(-10)},
        {"pow 0 0", 1, osl_pow(0, 0)},
        {"pow 0 -1", 0, osl_pow(0, -1)},
        {"pow -1 0.5", 0, osl_pow(-1, 0.5f)},
        {"pow -2 3", -8, osl_pow(-2, 3)},
        {"pow 10 40", FLT_MAX, osl_pow(10, 40)},
        {"exp2 1000", std::exp2(126.0f), osl_exp2(1000)},
        {"sign 0", 0, osl_sign(0)},
        {"round -2.5", -3, osl_round(-2.5f)},
        {"clamp with crossed ends", 1, osl_clamp(5, 3, 1)},
    });
    EXPECT_EQ(1, osl_exp(NOT_A_NUMBER) != osl_exp(NOT_A_NUMBER));
}

TEST(Math, OfWholeNumbersNeverTraps)
{
    EXPECT_EQ(0, osl_div(7, 0));
    EXPECT_EQ(-3, osl_div(-7, 2));
    EXPECT_EQ(INT_MIN, osl_div(INT_MIN, -1));
    EXPECT_EQ(0, osl_remainder(7, 0));
    EXPECT_EQ(-1, osl_remainder(-7, 2));
    EXPECT_EQ(0, osl_remainder(INT_MIN, -1));
    EXPECT_EQ(INT_MIN, osl_shiftLeft(1, 31));
    EXPECT_EQ(2, osl_shiftLeft(1, 33));
    EXPECT_EQ(-1, osl_shiftRight(-1, 40));
    EXPECT_EQ(INT_MAX, osl_toInt(1e20f));
    EXPECT_EQ(INT_MIN, osl_toInt(-INF));
    EXPECT_EQ(0, osl_toInt(NOT_A_NUMBER));
    EXPECT_EQ(-1, osl_toInt(-1.9f));
}

TEST(Math, StepsFromZeroToOne)
{
    expectRows({
        {"step at its edge", 1, osl_step(2, 2)},
        {"line", 0.25f, osl_linearStep(2, 6, 3)},
        {"line without width", 1, osl_linearStep(2, 2, 2)},
        {"below", 0, osl_smoothStep(2, 6, 1)},
        {"curve", 0.15625f, osl_smoothStep(2, 6, 3)},
        {"end", 1, osl_smoothStep(2, 6, 6)},
        {"without width", 1, osl_smoothStep(2, 2, 2)},
        {"rounded line, middle", 0.5f, osl_smoothLinearStep(2, 6, 4, 0.5f)},
        {"rounded line, on it", 0.25f, osl_smoothLinearStep(2, 6, 3, 0.5f)},
        {"rounded line, corner", 0.5f / 16, osl_smoothLinearStep(2, 6, 2, 0.5f)},
        {"rounded line, other corner", 1 - 0.5f / 16, osl_smoothLinearStep(2, 6, 6, 0.5f)},
        {"rounded line, before", 0, osl_smoothLinearStep(2, 6, 1.5f, 0.5f)},
        {"rounded line, without width", 1, osl_smoothLinearStep(2, 2, 3, 0.5f)},
    });
}

TEST(BatchMath, IsAsAccurateAsItTells)
{
    using B = osl_BatchMath;
    const std::vector<float> angles = numbers(8192, 1003), any = numbers(1e6f, 1001);
    expectAccurate("sin", &B::sin, std::sin, angles, 1.1e-7, 0);
    expectAccurate("sin", &B::sin, std::sin, any, 1.1e-7, 0);
    expectAccurate("cos", &B::cos, std::cos, angles, 1.1e-7, 0);
    expectAccurate("tan", &B::tan, std::tan, numbers(1.5f, 501), 1e-20, 4e-7);
    expectAccurate("exp", &B::exp, std::exp, numbers(87, 1001), 0, 3e-7);
    expectAccurate("exp2", &B::exp2, std::exp2, numbers(126, 1001), 0, 3e-7);
    expectAccurate("log", &B::log, std::log, positive(any), 2e-7, 2e-7);
    expectAccurate("log2", &B::log2, std::log2, positive(any), 2e-7, 2e-7);
    expectAccurate("sqrt", &B::sqrt, std::sqrt, positive(any), 0, 6e-8);
    expectAccurate("floor", &B::floor, std::floor, numbers(1e10f, 1001), 0, 0);
}

TEST(BatchMath, AnswersAsTheFunctionsOfOneNumberDo)
{
    const float specials[] = {0,    -0.0f, 1,     -1,      0.5f,     -0.5f,  2,   -2,  3,
                              1e9f, -1e9f, 1e30f, FLT_MAX, -FLT_MAX, 1e-30f, 200, -200};
    const struct {
        const char *name;
        osl_Unary osl_BatchMath::*batch;
        float (*single)(float);
    } unaries[] = {{"exp", &osl_BatchMath::exp, osl_exp},
                   {"exp2", &osl_BatchMath::exp2, osl_exp2},
                   {"log", &osl_BatchMath::log, osl_log},
                   {"log2", &osl_BatchMath::log2, osl_log2},
                   {"sqrt", &osl_BatchMath::sqrt, osl_sqrt},
                   {"inverseSqrt", &osl_BatchMath::inverseSqrt, osl_inverseSqrt}};
    const struct {
        const char *name;
        osl_Binary osl_BatchMath::*batch;
        float (*single)(float, float);
        float largest;
    } binaries[] = {{"pow", &osl_BatchMath::pow, osl_pow, 1e37f},
                    {"div", &osl_BatchMath::div, osl_div, FLT_MAX},
                    {"mod", &osl_BatchMath::mod, osl_mod, FLT_MAX}};
    for (const float x : specials) {
        float found = 0;
        for (const auto &f : unaries) {
            (osl_BatchMath::best().*f.batch)(&found, &x, 1);
            const float wanted = f.single(x);
            EXPECT_NEAR(wanted, found, 2e-7f + 3e-7f * std::fabs(wanted)) << f.name << " " << x;
        }
        for (const float y : specials) {
            for (const auto &f : binaries) {
                (osl_BatchMath::best().*f.batch)(&found, &x, &y, 1);
                const float wanted = f.single(x, y);
                if (std::fabs(wanted) >= f.largest)
                    continue;
                EXPECT_NEAR(wanted, found, 1e-30f + 1e-5f * std::fabs(wanted))
                    << f.name << " " << x << " " << y;
            }
        }
    }
}

TEST(BatchMath, RaisesToPowers)
{
    const std::vector<float> bases = positive(numbers(100, 400));
    std::vector<float> exponents = numbers(5, 400), best(400), plain(400);
    osl_BatchMath::best().pow(best.data(), bases.data(), exponents.data(), 400);
    osl_BatchMath::plain().pow(plain.data(), bases.data(), exponents.data(), 400);
    EXPECT_EQ(plain, best);
    for (size_t i = 0; i < 400; ++i) {
        const double wanted =
            std::pow(static_cast<double>(bases[i]), static_cast<double>(exponents[i]));
        EXPECT_NEAR(wanted, static_cast<double>(best[i]), 3e-6 * wanted)
            << bases[i] << " " << exponents[i];
    }
    osl_BatchMath::best().pow(best.data(), bases.data(), std::vector<float>(400, 2).data(), 400);
    for (size_t i = 0; i < 400; ++i)
        EXPECT_EQ(bases[i] * bases[i], best[i]);
}
