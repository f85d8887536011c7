// Three numbers: a point, a direction, a normal or a colour of a shader.
//
// T is float, or osl_Dual where derivatives go along. All arithmetic is by
// components; a number beside a vector stands for three equal components.
#pragma once

#include "osl/lib/osl_Dual.h"

template <class T>
struct osl_Vec3 {
    T x{};
    T y{};
    T z{};
};
using osl_Vec = osl_Vec3<float>;
using osl_DualVec = osl_Vec3<osl_Dual>;

template <class T>
constexpr osl_Vec3<T> operator+(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
template <class T>
constexpr osl_Vec3<T> operator-(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
template <class T>
constexpr osl_Vec3<T> operator-(const osl_Vec3<T> &a)
{
    return {-a.x, -a.y, -a.z};
}
template <class T>
constexpr osl_Vec3<T> operator*(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
template <class T, class S>
constexpr osl_Vec3<T> operator*(const osl_Vec3<T> &a, const S &s)
{
    return {a.x * s, a.y * s, a.z * s};
}
constexpr bool operator==(const osl_Vec &a, const osl_Vec &b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

template <class T>
constexpr T osl_dot(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
template <class T>
constexpr osl_Vec3<T> osl_cross(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
template <class T>
T osl_length(const osl_Vec3<T> &a)
{
    return osl_sqrt(osl_dot(a, a));
}

// The direction as a unit vector; 0 for the null vector.
template <class T>
osl_Vec3<T> osl_normalize(const osl_Vec3<T> &a)
{
    return a * osl_div(T(1), osl_length(a));
}

template <class T>
T osl_distance(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
{
    return osl_length(a - b);
}

// From q to the nearest point of the line segment from a to b.
float osl_distance(const osl_Vec &a, const osl_Vec &b, const osl_Vec &q);

// N, turned so that it faces against I as `reference` does: N when their dot
// product is below 0, else -N.
osl_Vec osl_faceForward(const osl_Vec &n, const osl_Vec &i, const osl_Vec &reference);

// The mirrored and the refracted direction of I at a unit normal. `eta` is the
// refractive index on I's side divided by that on the other; total internal
// reflection gives the null vector.
osl_Vec osl_reflect(const osl_Vec &i, const osl_Vec &n);
osl_Vec osl_refract(const osl_Vec &i, const osl_Vec &n, float eta);

// What a smooth dielectric surface does with unpolarised light from I (unit).
struct osl_Fresnel {
    float reflected;    // share of the light, 0 to 1
    float transmitted;  // likewise, scaled for the change of solid angle
    osl_Vec reflection; // directions, as osl_reflect and osl_refract give them
    osl_Vec refraction;
};
osl_Fresnel osl_fresnel(const osl_Vec &i, const osl_Vec &n, float eta);

// q turned by `angle` radians, counter-clockwise when the axis from `from` to `to`
// points at the eye. An axis without length turns nothing.
osl_Vec osl_rotate(const osl_Vec &q, float angle, const osl_Vec &from, const osl_Vec &to);
