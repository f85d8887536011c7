// Three floats: a point, a direction or a linear colour.
//
// Colours are linear red, green, blue with the primaries of sRGB (IEC
// 61966-2-1); 1 is what a white matte surface shows in full light.
#pragma once

#include <algorithm>
#include <cmath>

constexpr float VK_PI = 3.14159265358979f;

struct vk_Vec {
    float x = 0;
    float y = 0;
    float z = 0;
};
using vk_Colour = vk_Vec;

constexpr vk_Vec operator+(const vk_Vec &a, const vk_Vec &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr vk_Vec operator-(const vk_Vec &a, const vk_Vec &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr vk_Vec operator-(const vk_Vec &a)
{
    return {-a.x, -a.y, -a.z};
}
constexpr vk_Vec operator*(const vk_Vec &a, const vk_Vec &b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
constexpr vk_Vec operator*(const vk_Vec &a, float s)
{
    return {a.x * s, a.y * s, a.z * s};
}
constexpr vk_Vec operator*(float s, const vk_Vec &a)
{
    return a * s;
}
constexpr vk_Vec &operator+=(vk_Vec &a, const vk_Vec &b)
{
    return a = a + b;
}
constexpr bool operator==(const vk_Vec &a, const vk_Vec &b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

constexpr vk_Vec vk_grey(float level)
{
    return {level, level, level};
}
constexpr vk_Vec vk_mix(const vk_Vec &a, const vk_Vec &b, float t)
{
    return a + (b - a) * t;
}
constexpr float vk_dot(const vk_Vec &a, const vk_Vec &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr vk_Vec vk_cross(const vk_Vec &a, const vk_Vec &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float vk_length(const vk_Vec &a)
{
    return std::sqrt(vk_dot(a, a));
}
inline float vk_largest(const vk_Vec &a)
{
    // By value, not std::max: it leaves no branch.
    const float ofTwo = a.y < a.z ? a.z : a.y;
    return a.x < ofTwo ? ofTwo : a.x;
}
inline bool vk_isFinite(const vk_Vec &a)
{
    return std::isfinite(a.x + a.y + a.z);
}
inline vk_Vec vk_exp(const vk_Vec &a)
{
    return {std::exp(a.x), std::exp(a.y), std::exp(a.z)};
}

// Relative luminance (ITU-R BT.709).
constexpr float vk_luminance(const vk_Colour &c)
{
    return 0.2126f * c.x + 0.7152f * c.y + 0.0722f * c.z;
}

// The direction of a vector; (0 0 1) for one without a direction.
inline vk_Vec vk_normalize(const vk_Vec &a)
{
    const float length = vk_length(a);
    return length > 0 ? a * (1 / length) : vk_Vec{0, 0, 1};
}

// 0 below a, 1 above b, smooth between.
inline float vk_smoothStep(float a, float b, float x)
{
    const float t = std::clamp((x - a) / (b - a), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

// A right-handed set of perpendicular unit vectors around a direction, after
// Duff et al., "Building an Orthonormal Basis, Revisited", JCGT 6(1), 2017.
struct vk_Frame {
    vk_Vec tangent, bitangent, normal;

    // With the tangent as near to a direction as can be; any tangent when that is
    // the normal's, or no direction.
    vk_Frame(const vk_Vec &unit, const vk_Vec &along) : vk_Frame(unit)
    {
        const vk_Vec level = along - unit * vk_dot(along, unit);
        if (vk_dot(level, level) < 1e-12f)
            return;
        tangent = vk_normalize(level);
        bitangent = vk_cross(unit, tangent);
    }

    explicit vk_Frame(const vk_Vec &unit) : normal(unit)
    {
        const float sign = std::copysign(1.0f, unit.z);
        const float a = -1 / (sign + unit.z);
        const float b = unit.x * unit.y * a;
        tangent = {1 + sign * unit.x * unit.x * a, sign * b, -sign * unit.x};
        bitangent = {b, sign + unit.y * unit.y * a, -unit.y};
    }

    vk_Vec toWorld(const vk_Vec &v) const { return tangent * v.x + bitangent * v.y + normal * v.z; }
    vk_Vec toLocal(const vk_Vec &v) const
    {
        return {vk_dot(v, tangent), vk_dot(v, bitangent), vk_dot(v, normal)};
    }
};

// Maps of the unit square that keep relative areas, so that well spread points
// stay well spread: to the unit disc (Shirley and Chiu, "A Low Distortion Map
// Between Disk and Square", 1997), and to the cap of directions around +z that is
// `height` high, 1 less the cosine at its rim (density 1 / (2 pi height)).
struct vk_Square {
    float u = 0, v = 0;
};
vk_Vec vk_toDisc(const vk_Square &s);
vk_Vec vk_toCap(const vk_Square &s, float height);
