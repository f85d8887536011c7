#include "osl/lib/osl_Matrix.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

namespace
{
osl_Matrix randomMatrix(Random &random)
{
    osl_Matrix a;
    for (auto &row : a.m) {
        for (float &x : row)
            x = static_cast<float>(random.below(2001)) / 500 - 2;
    }
    return a;
}

void expectNear(const osl_Matrix &a, const osl_Matrix &b, float tolerance)
{
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(a.m[r][c], b.m[r][c], tolerance) << r << " " << c;
    }
}

void expectNear(const osl_Vec &a, const osl_Vec &b, float tolerance = 1e-5f)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

// Doubles x, then moves by (1 2 3).
const osl_Matrix SCALE_MOVE = {{{2, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {1, 2, 3, 1}}};
// A quarter turn about z: x goes to y.
const osl_Matrix TURN = {{{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
} // namespace

TEST(Matrix, InverseUndoesIt)
{
    Random random;
    osl_Inverter inverter;
    for (int i = 0; i < 200; ++i) {
        const osl_Matrix a = randomMatrix(random), b = randomMatrix(random);
        const float determinant = osl_determinant(a);
        if (std::fabs(determinant) < 0.5f)
            continue;
        SCOPED_TRACE(testing::Message() << random.seed() << ": matrix " << i);
        expectNear(osl_Matrix::diagonal(1), a * osl_inverse(a), 1e-4f);
        expectNear(a, osl_inverse(osl_inverse(a)), 1e-3f);
        for (const osl_Matrix &m : {a, a, b, a})
            EXPECT_EQ(osl_inverse(m), inverter.inverse(m));
        expectNear(b, osl_div(b, a) * a, 1e-3f);
        EXPECT_NEAR(determinant * osl_determinant(b), osl_determinant(a * b),
                    1e-3f * (1 + std::fabs(osl_determinant(a * b))));
        EXPECT_NEAR(determinant, osl_determinant(osl_transpose(a)), 1e-3f);
    }
}

TEST(Matrix, WithoutInverseGivesTheIdentity)
{
    osl_Matrix flat = SCALE_MOVE;
    flat.m[2][2] = 0;
    EXPECT_EQ(osl_Matrix::diagonal(1), osl_inverse(flat));
    EXPECT_EQ(osl_Matrix::diagonal(1), osl_inverse(osl_Matrix::diagonal(0)));
}

TEST(Matrix, ProductsReadFromLeftToRight)
{
    const osl_Vec p = {1, 1, 1};
    expectNear({3, 3, 4}, osl_transformPoint(SCALE_MOVE, p));
    expectNear({-3, 3, 4}, osl_transformPoint(SCALE_MOVE * TURN, p));
    expectNear({-1, 3, 4}, osl_transformPoint(TURN * SCALE_MOVE, p));
    expectNear({2, 1, 1}, osl_transformVector(SCALE_MOVE, p));
}

TEST(Matrix, KeepsNormalsPerpendicular)
{
    const osl_Vec along = {1, -1, 0}, normal = {1, 1, 0};
    const osl_Vec n = osl_transformNormal(SCALE_MOVE, normal);
    EXPECT_NEAR(0, osl_dot(n, osl_transformVector(SCALE_MOVE, along)), 1e-6f);
    EXPECT_GT(osl_dot(n, normal), 0);
}

TEST(Matrix, DividesPointsByTheirFourthComponent)
{
    const osl_Matrix perspective = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 1}, {0, 0, 0, 0}}};
    expectNear({0.5f, 1, 1}, osl_transformPoint(perspective, osl_Vec{2, 4, 4}));
    expectNear({}, osl_transformPoint(perspective, osl_Vec{2, 4, 0}));
    // x / z moves as both do.
    const osl_DualVec p = {{2, 1, 0}, 4, {4, 0, 1}};
    EXPECT_FLOAT_EQ(0.25f, osl_transformPoint(perspective, p).x.dx);
    EXPECT_FLOAT_EQ(-2.0f / 16, osl_transformPoint(perspective, p).x.dy);
}

TEST(Vec, ReflectsAndRefracts)
{
    const osl_Vec n = {0, 0, 1}, i = osl_normalize(osl_Vec{1, 0, -1});
    expectNear(osl_normalize(osl_Vec{1, 0, 1}), osl_reflect(i, n));
    EXPECT_FLOAT_EQ(i.x / 1.5f, osl_refract(i, n, 1 / 1.5f).x) << "Snell's law";
    expectNear({}, osl_refract(i, n, 1.5f));
    expectNear(n, osl_faceForward(n, i, n));
    expectNear(-n, osl_faceForward(n, -i, n));
}

TEST(Vec, FresnelSplitsTheLight)
{
    const osl_Vec n = {0, 0, 1};
    EXPECT_FLOAT_EQ(0.04f, osl_fresnel({0, 0, -1}, n, 1 / 1.5f).reflected);
    EXPECT_FLOAT_EQ(0.96f / 2.25f, osl_fresnel({0, 0, -1}, n, 1 / 1.5f).transmitted);
    EXPECT_NEAR(1, osl_fresnel({1, 0, 0}, n, 1 / 1.5f).reflected, 1e-5f);
    const osl_Fresnel total = osl_fresnel(osl_normalize(osl_Vec{1, 0, -1}), n, 1.5f);
    EXPECT_EQ(1, total.reflected);
    EXPECT_EQ(0, total.transmitted);
    expectNear({}, total.refraction);
}

TEST(Vec, TurnsAndMeasures)
{
    expectNear({2, 1, 5}, osl_rotate({1, 0, 5}, OSL_PI / 2, {1, 1, 0}, {1, 1, 2}));
    expectNear({1, 2, 3}, osl_rotate({1, 2, 3}, 1, {4, 4, 4}, {4, 4, 4}));
    EXPECT_FLOAT_EQ(1, osl_distance({0, 0, 0}, {4, 0, 0}, {3, 1, 0}));
    EXPECT_FLOAT_EQ(5, osl_distance({0, 0, 0}, {4, 0, 0}, {8, 3, 0}));
    EXPECT_FLOAT_EQ(3, osl_distance({1, 1, 1}, {1, 1, 1}, {1, 4, 1}));
    expectNear({}, osl_normalize(osl_Vec()));
    EXPECT_FLOAT_EQ(0.6f, osl_length(osl_DualVec{{3, 1, 0}, {4, 0, 0}, 0}).dx);
}
