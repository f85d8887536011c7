#include "osl/lib/osl_Noise.h"

#include "tests/support/Random.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>

namespace
{
// Points of noise as arrays by coordinate, with derivatives, and room for results.
class Points
{
public:
    Points(const std::string &kind, int dimensions, int components, int count) : n(count)
    {
        call.kind = osl_noiseKind(kind);
        call.dimensions = dimensions;
        call.components = components;
        for (size_t d = 0; d < 4; ++d) {
            coord[d].resize(static_cast<size_t>(n));
            dx[d] = dy[d] = period[d] = coord[d];
        }
        for (size_t c = 0; c < 3; ++c)
            out[c] = outDx[c] = outDy[c] = std::vector<float>(static_cast<size_t>(n) + 1, 7);
    }

    void randomise(Random &random, float range)
    {
        for (size_t d = 0; d < 4; ++d) {
            for (float *x : {&coord[d][0], &dx[d][0], &dy[d][0]}) {
                for (int i = 0; i < n; ++i)
                    x[i] = range * (static_cast<float>(random.below(1 << 20)) / (1 << 19) - 1);
            }
        }
    }

    // Runs what `run` names, with derivatives if they are asked for.
    void run(bool withDerivatives = false, bool isPeriodic = false,
             void (*noise)(const osl_NoiseCall &, int) = osl_noise)
    {
        for (size_t d = 0; d < 4; ++d) {
            call.coord[d] = coord[d].data();
            call.coordDx[d] = withDerivatives ? dx[d].data() : nullptr;
            call.coordDy[d] = withDerivatives ? dy[d].data() : nullptr;
            call.period[d] = isPeriodic ? period[d].data() : nullptr;
        }
        for (size_t c = 0; c < 3; ++c) {
            call.out[c] = out[c].data();
            call.outDx[c] = withDerivatives ? outDx[c].data() : nullptr;
            call.outDy[c] = withDerivatives ? outDy[c].data() : nullptr;
        }
        noise(call, n);
    }

    osl_NoiseCall call;
    int n;
    std::vector<float> coord[4], dx[4], dy[4], period[4], out[3], outDx[3], outDy[3];
};

const char *const KINDS[] = {"perlin", "uperlin", "simplex", "usimplex", "cell",
                             "hash",   "gabor",   "null",    "unull"};

template <class Visit>
void forEachForm(Visit visit)
{
    for (const std::string kind : KINDS) {
        for (int dimensions = 1; dimensions <= 4; ++dimensions) {
            for (const int components : {1, 3}) {
                SCOPED_TRACE(testing::Message()
                             << kind << ", " << dimensions << "D, " << components);
                visit(kind, dimensions, components);
            }
        }
    }
}
} // namespace

// Shaders look the same for ever. At (0.37, -1.62, 5.18, 2.75) and (-13.29, 40.5, 0.031, -7.77).
TEST(Noise, HasTheseValues)
{
    const float places[4][2] = {
        {0.37f, -13.29f}, {-1.62f, 40.5f}, {5.18f, 0.031f}, {2.75f, -7.77f}};
    std::ifstream table(TEST_DATA "/noise_values");
    std::string head, kind;
    std::getline(table, head);
    int rows = 0, dimensions = 0;
    for (float number = 0; table >> kind >> dimensions >> number; ++rows) {
        SCOPED_TRACE(testing::Message() << kind << " " << dimensions);
        float first[3], second[3];
        for (float *const of : {first, second})
            table >> of[0] >> of[1] >> of[2];
        const float p[] = {0.37f, -1.62f, 5.18f, 2.75f};
        EXPECT_NEAR(number, osl_noise(osl_noiseKind(kind), p, dimensions), 2e-5);
        Points points(kind, dimensions, 3, 2);
        for (size_t d = 0; d < 4; ++d)
            points.coord[d].assign(places[d], places[d] + 2);
        points.run();
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(first[i], points.out[i][0], 2e-5);
            EXPECT_NEAR(second[i], points.out[i][1], 2e-5);
        }
    }
    EXPECT_EQ(17, rows);
}

TEST(Noise, IsTheSameForEveryProcessorAndNumberOfPoints)
{
    Random random;
    forEachForm([&](const std::string &kind, int dimensions, int components) {
        Points all(kind, dimensions, components, 21);
        all.randomise(random, 300);
        all.run(true);
        Points few = all;
        for (few.n = 1; few.n <= 21; few.n += 5) {
            few.run(true, false, osl_noisePlain);
            const size_t bytes = sizeof(float) * static_cast<size_t>(few.n);
            for (size_t c = 0; c < static_cast<size_t>(components); ++c) {
                EXPECT_EQ(0, std::memcmp(&all.out[c][0], &few.out[c][0], bytes));
                EXPECT_EQ(0, std::memcmp(&all.outDx[c][0], &few.outDx[c][0], bytes));
                EXPECT_EQ(7, few.out[c][21]) << "writes past its end";
            }
        }
        Points values = all;
        values.run(false);
        EXPECT_EQ(all.out[0], kind == "gabor" ? all.out[0] : values.out[0])
            << "derivatives change the value";
    });
}

TEST(Noise, MayReplaceItsCoordinates)
{
    Random random;
    Points points("perlin", 3, 3, 19);
    points.randomise(random, 50);
    points.run(true);
    Points same = points;
    for (size_t c = 0; c < 3; ++c) {
        same.call.coord[c] = same.call.out[c] = same.coord[c].data();
        same.call.coordDx[c] = same.call.outDx[c] = same.dx[c].data();
        same.call.coordDy[c] = same.call.outDy[c] = same.dy[c].data();
    }
    osl_noise(same.call, same.n);
    for (size_t c = 0; c < 3; ++c) {
        for (size_t i = 0; i < 19; ++i) {
            EXPECT_EQ(points.out[c][i], same.coord[c][i]);
            EXPECT_EQ(points.outDx[c][i], same.dx[c][i]);
            EXPECT_EQ(points.outDy[c][i], same.dy[c][i]);
        }
    }
}

TEST(Noise, DerivativesAreItsSlopes)
{
    constexpr float STEP = 1e-3f;
    Random random;
    forEachForm([&](const std::string &kind, int dimensions, int components) {
        if (kind == "cell" || kind == "hash" || kind == "gabor")
            return;
        Points at(kind, dimensions, components, 40);
        at.randomise(random, 2);
        Points before = at, after = at;
        for (size_t d = 0; d < 4; ++d) {
            for (size_t i = 0; i < 40; ++i) {
                before.coord[d][i] -= STEP * at.dx[d][i];
                after.coord[d][i] += STEP * at.dx[d][i];
            }
        }
        at.run(true);
        before.run();
        after.run();
        for (size_t c = 0; c < static_cast<size_t>(components); ++c) {
            for (size_t i = 0; i < 40; ++i)
                EXPECT_NEAR((after.out[c][i] - before.out[c][i]) / (2 * STEP), at.outDx[c][i],
                            0.02);
        }
    });
}

TEST(Noise, OfCellsAndHashesHasNoDerivatives)
{
    Random random;
    for (const char *kind : {"cell", "hash", "null"}) {
        Points points(kind, 2, 3, 9);
        points.randomise(random, 5);
        points.run(true);
        EXPECT_EQ(std::vector<float>(9),
                  std::vector<float>(&points.outDx[2][0], &points.outDx[2][9]));
        EXPECT_EQ(std::vector<float>(9),
                  std::vector<float>(&points.outDy[0][0], &points.outDy[0][9]));
    }
}

TEST(Noise, RepeatsWithItsPeriod)
{
    Random random;
    forEachForm([&](const std::string &kind, int dimensions, int components) {
        if (kind == "simplex" || kind == "usimplex" || kind == "hash" || kind == "gabor")
            return; // have no period, or one that rounding spoils
        Points here(kind, dimensions, components, 30);
        here.randomise(random, 20);
        for (size_t d = 0; d < 4; ++d) {
            for (size_t i = 0; i < 30; ++i) {
                here.coord[d][i] = std::round(here.coord[d][i] * 256) / 256;
                here.period[d][i] = 3.7f + static_cast<float>(i % 5);
            }
        }
        Points there = here;
        for (size_t d = 0; d < 4; ++d) {
            for (size_t i = 0; i < 30; ++i)
                there.coord[d][i] -= 2 * std::floor(here.period[d][i]);
        }
        here.run(false, true);
        there.run(false, true);
        EXPECT_EQ(here.out[components - 1], there.out[components - 1]);
    });
}

TEST(Noise, OfAPeriodIsOrdinaryInsideOfIt)
{
    Random random;
    Points points("perlin", 3, 3, 50);
    points.randomise(random, 1);
    for (size_t d = 0; d < 4; ++d) {
        for (size_t i = 0; i < 50; ++i) {
            points.coord[d][i] = (points.coord[d][i] + 1) * 4.4f; // 0 to 8.8
            points.period[d][i] = 10;
        }
    }
    Points plain = points;
    points.run(false, true);
    plain.run();
    EXPECT_EQ(plain.out[1], points.out[1]);
}

TEST(Noise, StaysInItsRangeAroundItsMean)
{
    const struct {
        const char *kind;
        float low, high, mean;
    } cases[] = {{"perlin", -1.05f, 1.05f, 0},  {"uperlin", -0.05f, 1.05f, 0.5f},
                 {"cell", 0, 1, 0.5f},          {"hash", 0, 1, 0.5f},
                 {"simplex", -1.05f, 1.05f, 0}, {"usimplex", -0.05f, 1.05f, 0.5f},
                 {"gabor", -1.2f, 1.2f, 0}};
    for (const auto &c : cases) {
        for (int dimensions = 1; dimensions <= 4; ++dimensions) {
            SCOPED_TRACE(testing::Message() << c.kind << " " << dimensions);
            Random random;
            const int n = std::string(c.kind) == "gabor" ? 1000 : 20000;
            Points points(c.kind, dimensions, 1, n);
            points.randomise(random, 1000);
            points.run();
            double sum = 0;
            for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
                const float x = points.out[0][i];
                ASSERT_TRUE(x >= c.low && x <= c.high) << x;
                sum += static_cast<double>(x);
            }
            EXPECT_NEAR(static_cast<double>(c.mean), sum / n, 0.03);
        }
    }
}

TEST(Noise, TakesAnyNumber)
{
    constexpr float BIG = std::numeric_limits<float>::max();
    const float places[] = {0.0f,  -0.0f, 2147483648.0f, -2147483648.0f,
                            1e30f, BIG,   -BIG,          std::numeric_limits<float>::denorm_min()};
    forEachForm([&](const std::string &kind, int dimensions, int components) {
        Points points(kind, dimensions, components, 8);
        for (size_t d = 0; d < 4; ++d) {
            points.coord[d].assign(places, places + 8);
            points.period[d].assign(places, places + 8);
        }
        for (const bool isPeriodic : {false, true}) {
            points.run(kind != "gabor", isPeriodic);
            const bool isBounded = kind == "cell" || kind == "hash";
            EXPECT_TRUE(!isBounded || std::isfinite(points.out[0][2])) << isPeriodic;
        }
        // Not a number: any result, but no trap.
        points.coord[0].assign(8, std::numeric_limits<float>::quiet_NaN());
        points.run(true, true);
    });
}

TEST(Noise, IsKnownByItsNames)
{
    EXPECT_EQ(OSL_NOISE_PERLIN, osl_noiseKind("snoise"));
    EXPECT_EQ(OSL_NOISE_UPERLIN, osl_noiseKind("noise"));
    EXPECT_EQ(OSL_NOISE_UNKNOWN, osl_noiseKind("Perlin"));
    EXPECT_EQ(OSL_NOISE_UNKNOWN, osl_noiseKind(""));
}

TEST(GaborNoise, FadesUnderALargeFootprint)
{
    const osl_GaborOptions options;
    float last = 1e9f;
    for (const float size : {0.001f, 0.3f, 1.0f, 4.0f}) {
        float energy = 0;
        for (int i = 0; i < 60; ++i) {
            const float at = 0.37f * static_cast<float>(i);
            const osl_DualVec p = {{at, size, 0}, {2 * at, 0, size}, {0.3f * at, 0, 0}};
            const float x = osl_gabor(options, p, 0, nullptr).val;
            energy += x * x;
        }
        EXPECT_LT(energy, last) << size;
        last = energy;
    }
    EXPECT_LT(last, 0.01f);
}

TEST(GaborNoise, IsUnfilteredWhereTheFootprintHasNoArea)
{
    osl_GaborOptions filtered, plain;
    plain.isFiltered = false;
    const osl_DualVec line = {{0.4f, 3, 3}, {1.7f, 2, 2}, {9.1f, 1, 1}};
    const osl_DualVec point = {0.4f, 1.7f, 9.1f};
    const osl_DualVec tiny = {{0.4f, 1e-3f, 0}, {1.7f, 0, 1e-3f}, 9.1f};
    const float value = osl_gabor(plain, point, 1, nullptr).val;
    EXPECT_EQ(value, osl_gabor(filtered, line, 1, nullptr).val);
    EXPECT_EQ(value, osl_gabor(filtered, point, 1, nullptr).val);
    EXPECT_NEAR(value, osl_gabor(filtered, tiny, 1, nullptr).val, 1e-3);
}

// With one direction only the coordinate along it makes waves; kernels still fade sideways.
TEST(GaborNoise, FollowsItsDirection)
{
    osl_GaborOptions options;
    options.anisotropic = 1;
    options.bandwidth = 0.3f;
    options.isFiltered = false;
    float along = 0, across = 0;
    for (int i = 0; i < 100; ++i) {
        const float at = 0.71f * static_cast<float>(i);
        const osl_DualVec p = {{at, 1, 0}, {-at, 0, 1}, at * 0.1f};
        const osl_Dual x = osl_gabor(options, p, 0, nullptr);
        along += x.dx * x.dx;
        across += x.dy * x.dy;
    }
    EXPECT_GT(along, 4 * across);
}

TEST(GaborNoise, RepeatsAfterAPeriodOfCells)
{
    osl_GaborOptions options;
    options.isFiltered = false;
    constexpr float CELL = 0.786239f; // a kernel's radius for one octave
    const osl_Vec period = {3, 4.5f, 5};
    for (int i = 0; i < 20; ++i) {
        const float at = 0.61f * static_cast<float>(i);
        const osl_DualVec p = {at, 1.3f, -at}, far = {at + 3 * CELL, 1.3f - 4 * CELL, -at};
        EXPECT_NEAR(osl_gabor(options, p, 2, &period).val, osl_gabor(options, far, 2, &period).val,
                    1e-3);
    }
}

// Kernels end with a small step, which a difference may meet.
TEST(GaborNoise, DerivativesAreItsSlopesNearlyEverywhere)
{
    constexpr float STEP = 1e-3f;
    for (const float footprint : {0.0f, 0.4f}) {
        int good = 0;
        for (int i = 0; i < 100; ++i) {
            const float at = 0.173f * static_cast<float>(i);
            const auto noise = [&](float dx) {
                const osl_DualVec p = {{at + dx, 1, 0}, {3 * at, 0, footprint}, 0.5f};
                return osl_gabor(osl_GaborOptions(), p, 0, nullptr);
            };
            const float slope = (noise(STEP).val - noise(-STEP).val) / (2 * STEP);
            good += std::fabs(slope - noise(0).dx) < 0.02f ? 1 : 0;
        }
        EXPECT_GE(good, 85) << footprint;
    }
}
