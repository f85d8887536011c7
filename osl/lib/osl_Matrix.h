// 4 x 4 matrices that transform points written as rows.
//
//   (x y z 1) * M      M[row][column], translation in row 3
//
// Products read from left to right: p * (A * B) transforms by A, then by B.
#pragma once

#include "osl/lib/osl_Vec.h"

struct osl_Matrix {
    float m[4][4];

    // s times the identity.
    static osl_Matrix diagonal(float s);
};

bool operator==(const osl_Matrix &a, const osl_Matrix &b);
osl_Matrix operator*(const osl_Matrix &a, const osl_Matrix &b);
osl_Matrix operator*(const osl_Matrix &a, float s); // every component
osl_Matrix operator-(const osl_Matrix &a);

// The identity for a matrix that has no inverse.
osl_Matrix osl_inverse(const osl_Matrix &a);
osl_Matrix osl_transpose(const osl_Matrix &a);
float osl_determinant(const osl_Matrix &a);

// a * inverse(b), and the components divided by s; those by 0 are 0.
osl_Matrix osl_div(const osl_Matrix &a, const osl_Matrix &b);
osl_Matrix osl_div(const osl_Matrix &a, float s);

// Inverts the same few matrices again and again, as those of spaces: the last one is kept.
class osl_Inverter
{
public:
    const osl_Matrix &inverse(const osl_Matrix &a);

private:
    osl_Matrix myMatrix = osl_Matrix::diagonal(1);
    osl_Matrix myInverse = osl_Matrix::diagonal(1);
};

// A position is divided by its fourth component; the null point where that is 0.
// A vector takes no translation. A normal goes by the inverse's transpose, so
// that it stays perpendicular to the surface. T is float or osl_Dual.
template <class T>
osl_Vec3<T> osl_transformPoint(const osl_Matrix &a, const osl_Vec3<T> &p);
template <class T>
osl_Vec3<T> osl_transformVector(const osl_Matrix &a, const osl_Vec3<T> &v);
template <class T>
osl_Vec3<T> osl_transformNormal(const osl_Matrix &a, const osl_Vec3<T> &n);
