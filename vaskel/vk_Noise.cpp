#include "vaskel/vk_Noise.h"

#include "vaskel/vk_Sampler.h"

namespace
{
float fade(float t)
{
    return t * t * t * (t * (t * 6 - 15) + 10);
}
float mix(float a, float b, float t)
{
    return a + (b - a) * t;
}

// The share of one corner of a cell: one of twelve slopes, picked by a hash of
// the corner in place of a table of 256 numbers.
float slope(int x, int y, int z, const vk_Vec &off)
{
    const std::uint32_t h = vk_hash(static_cast<std::uint32_t>(x) * 0x8da6b343u ^
                                    static_cast<std::uint32_t>(y) * 0xd8163841u ^
                                    static_cast<std::uint32_t>(z) * 0xcb1ab31fu) &
                            15;
    const float u = h < 8 ? off.x : off.y;
    const float v = h < 4 ? off.y : (h == 12 || h == 14 ? off.x : off.z);
    return ((h & 1) != 0 ? -u : u) + ((h & 2) != 0 ? -v : v);
}
} // namespace

float vk_noise(const vk_Vec &at)
{
    const vk_Vec cell = {std::floor(at.x), std::floor(at.y), std::floor(at.z)};
    const vk_Vec off = at - cell;
    const int x = static_cast<int>(cell.x), y = static_cast<int>(cell.y);
    const int z = static_cast<int>(cell.z);
    const float tx = fade(off.x), ty = fade(off.y), tz = fade(off.z);
    float side[2];
    for (int k = 0; k < 2; ++k) {
        float edge[2];
        for (int j = 0; j < 2; ++j) {
            const vk_Vec back = off - vk_Vec{0, static_cast<float>(j), static_cast<float>(k)};
            edge[j] = mix(slope(x, y + j, z + k, back),
                          slope(x + 1, y + j, z + k, back - vk_Vec{1, 0, 0}), tx);
        }
        side[k] = mix(edge[0], edge[1], ty);
    }
    return mix(side[0], side[1], tz);
}
