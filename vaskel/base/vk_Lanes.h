// Four floats that go through the same arithmetic together.
//
// A vector extension of GCC and Clang: + - * / and comparisons are those of each lane, and
// a ? b : c picks by lane. Four is what every 64-bit processor does at once, so none needs
// code of its own.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <cstdint>
#include <cstring>

using vk_Lanes = float __attribute__((vector_size(16)));
using vk_LaneMask = std::int32_t __attribute__((vector_size(16)));

constexpr int VK_LANES = 4;

// Of four floats that follow each other, at any address.
inline vk_Lanes vk_load(const float *from)
{
    vk_Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}
inline void vk_store(const vk_Lanes &lanes, float *to)
{
    std::memcpy(to, &lanes, sizeof lanes);
}
inline vk_Lanes vk_lanes(float x)
{
    return vk_Lanes{x, x, x, x};
}
inline vk_Lanes vk_min(const vk_Lanes &a, const vk_Lanes &b)
{
    return a < b ? a : b;
}
inline vk_Lanes vk_max(const vk_Lanes &a, const vk_Lanes &b)
{
    return a > b ? a : b;
}
inline vk_Lanes vk_abs(const vk_Lanes &a)
{
    return vk_max(a, -a);
}
inline bool vk_any(const vk_LaneMask &mask)
{
    std::int64_t halves[2];
    std::memcpy(halves, &mask, sizeof halves);
    return (halves[0] | halves[1]) != 0;
}

// Four colours or directions.
struct vk_VecLanes {
    vk_Lanes x, y, z;
};
inline vk_VecLanes operator+(const vk_VecLanes &a, const vk_VecLanes &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline vk_VecLanes operator-(const vk_VecLanes &a, const vk_VecLanes &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline vk_VecLanes operator*(const vk_VecLanes &a, const vk_VecLanes &b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline vk_VecLanes operator*(const vk_VecLanes &a, const vk_Lanes &s)
{
    return {a.x * s, a.y * s, a.z * s};
}
inline vk_VecLanes vk_min(const vk_VecLanes &a, const vk_VecLanes &b)
{
    return {vk_min(a.x, b.x), vk_min(a.y, b.y), vk_min(a.z, b.z)};
}
inline vk_VecLanes vk_max(const vk_VecLanes &a, const vk_VecLanes &b)
{
    return {vk_max(a.x, b.x), vk_max(a.y, b.y), vk_max(a.z, b.z)};
}
inline vk_Lanes vk_dot(const vk_VecLanes &a, const vk_VecLanes &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline vk_VecLanes vk_pick(const vk_LaneMask &mask, const vk_VecLanes &a, const vk_VecLanes &b)
{
    return {mask ? a.x : b.x, mask ? a.y : b.y, mask ? a.z : b.z};
}
