#include "osl/lib/osl_Matrix.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{
// Gauss-Jordan elimination with the largest pivot of each column, in double.
struct Elimination {
    double left[4][4];
    double right[4][4];

    explicit Elimination(const osl_Matrix &a)
    {
        for (int r = 0; r < 4; ++r) {
            for (int c = 0; c < 4; ++c) {
                left[r][c] = a.m[r][c];
                right[r][c] = r == c;
            }
        }
    }

    // Brings the largest number of the column, from row `at` on, into row `at`.
    void choosePivot(int at)
    {
        int best = at;
        for (int r = at + 1; r < 4; ++r) {
            if (std::fabs(left[r][at]) > std::fabs(left[best][at]))
                best = r;
        }
        std::swap(left[at], left[best]);
        std::swap(right[at], right[best]);
    }

    void clearColumn(int at)
    {
        const double pivot = left[at][at];
        for (int c = 0; c < 4; ++c) {
            left[at][c] /= pivot;
            right[at][c] /= pivot;
        }
        for (int r = 0; r < 4; ++r) {
            if (r == at)
                continue;
            const double factor = left[r][at];
            for (int c = 0; c < 4; ++c) {
                left[r][c] -= factor * left[at][c];
                right[r][c] -= factor * right[at][c];
            }
        }
    }

    bool solve()
    {
        for (int at = 0; at < 4; ++at) {
            choosePivot(at);
            if (!(std::fabs(left[at][at]) > 0))
                return false;
            clearColumn(at);
        }
        return true;
    }
};

float minor(const osl_Matrix &a, int r0, int r1, int r2, int c0, int c1, int c2)
{
    return a.m[r0][c0] * (a.m[r1][c1] * a.m[r2][c2] - a.m[r1][c2] * a.m[r2][c1]) +
           a.m[r0][c1] * (a.m[r1][c2] * a.m[r2][c0] - a.m[r1][c0] * a.m[r2][c2]) +
           a.m[r0][c2] * (a.m[r1][c0] * a.m[r2][c1] - a.m[r1][c1] * a.m[r2][c0]);
}

template <class T>
T column(const osl_Matrix &a, const osl_Vec3<T> &v, int c)
{
    return v.x * a.m[0][c] + v.y * a.m[1][c] + v.z * a.m[2][c];
}
} // namespace

osl_Matrix osl_Matrix::diagonal(float s)
{
    return {{{s, 0, 0, 0}, {0, s, 0, 0}, {0, 0, s, 0}, {0, 0, 0, s}}};
}

bool operator==(const osl_Matrix &a, const osl_Matrix &b)
{
    return std::equal(&a.m[0][0], &a.m[0][0] + 16, &b.m[0][0]);
}

osl_Matrix operator*(const osl_Matrix &a, const osl_Matrix &b)
{
    osl_Matrix product;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            product.m[r][c] = a.m[r][0] * b.m[0][c] + a.m[r][1] * b.m[1][c] +
                              a.m[r][2] * b.m[2][c] + a.m[r][3] * b.m[3][c];
    }
    return product;
}

osl_Matrix operator*(const osl_Matrix &a, float s)
{
    osl_Matrix scaled = a;
    for (auto &row : scaled.m) {
        for (float &x : row)
            x *= s;
    }
    return scaled;
}

osl_Matrix operator-(const osl_Matrix &a)
{
    return a * -1;
}

osl_Matrix osl_inverse(const osl_Matrix &a)
{
    Elimination elimination(a);
    osl_Matrix inverse = osl_Matrix::diagonal(1);
    if (!elimination.solve())
        return inverse;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            inverse.m[r][c] = static_cast<float>(elimination.right[r][c]);
    }
    return inverse;
}

const osl_Matrix &osl_Inverter::inverse(const osl_Matrix &a)
{
    // The bits: a zero's sign is the inverse's too.
    if (std::memcmp(&a, &myMatrix, sizeof a) != 0) {
        myMatrix = a;
        myInverse = osl_inverse(a);
    }
    return myInverse;
}

osl_Matrix osl_transpose(const osl_Matrix &a)
{
    osl_Matrix result;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            result.m[r][c] = a.m[c][r];
    }
    return result;
}

float osl_determinant(const osl_Matrix &a)
{
    return a.m[0][0] * minor(a, 1, 2, 3, 1, 2, 3) - a.m[0][1] * minor(a, 1, 2, 3, 0, 2, 3) +
           a.m[0][2] * minor(a, 1, 2, 3, 0, 1, 3) - a.m[0][3] * minor(a, 1, 2, 3, 0, 1, 2);
}

osl_Matrix osl_div(const osl_Matrix &a, const osl_Matrix &b)
{
    return a * osl_inverse(b);
}

osl_Matrix osl_div(const osl_Matrix &a, float s)
{
    osl_Matrix quotient = a;
    for (auto &row : quotient.m) {
        for (float &x : row)
            x = osl_div(x, s);
    }
    return quotient;
}

template <class T>
osl_Vec3<T> osl_transformPoint(const osl_Matrix &a, const osl_Vec3<T> &p)
{
    const T w = column(a, p, 3) + T(a.m[3][3]);
    const osl_Vec3<T> moved = {column(a, p, 0) + T(a.m[3][0]), column(a, p, 1) + T(a.m[3][1]),
                               column(a, p, 2) + T(a.m[3][2])};
    return {osl_div(moved.x, w), osl_div(moved.y, w), osl_div(moved.z, w)};
}

template <class T>
osl_Vec3<T> osl_transformVector(const osl_Matrix &a, const osl_Vec3<T> &v)
{
    return {column(a, v, 0), column(a, v, 1), column(a, v, 2)};
}

template <class T>
osl_Vec3<T> osl_transformNormal(const osl_Matrix &a, const osl_Vec3<T> &n)
{
    return osl_transformVector(osl_transpose(osl_inverse(a)), n);
}

template osl_Vec osl_transformPoint(const osl_Matrix &, const osl_Vec &);
template osl_Vec osl_transformVector(const osl_Matrix &, const osl_Vec &);
template osl_Vec osl_transformNormal(const osl_Matrix &, const osl_Vec &);
template osl_DualVec osl_transformPoint(const osl_Matrix &, const osl_DualVec &);
template osl_DualVec osl_transformVector(const osl_Matrix &, const osl_DualVec &);
template osl_DualVec osl_transformNormal(const osl_Matrix &, const osl_DualVec &);
