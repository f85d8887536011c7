#include "vaskel/base/vk_Noise.h"

#include "vaskel/base/vk_Sampler.h"

namespace
{
// Its slope and how that changes are 0 at both ends, so that cells join without a crease:
// Perlin, "Improving Noise", 2002.
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
    const std::uint32_t h = vk_hashOf(x, y, z) & 15;
    // Sixteen cases for the twelve edges of a cube: four slopes come twice, which shows nowhere and
    // spares a division by twelve (Perlin, 2002).
    const float u = h < 8 ? off.x : off.y;
    const float v = h < 4 ? off.y : (h == 12 || h == 14 ? off.x : off.z);
    return ((h & 1) != 0 ? -u : u) + ((h & 2) != 0 ? -v : v);
}
} // namespace

vk_Vec vk_within(const vk_Vec &at)
{
    // Whole coordinates have to fit an int, with room for a neighbour.
    const auto within = [](float x) { return std::clamp(x, -1e9f, 1e9f); };
    return {within(at.x), within(at.y), within(at.z)};
}

std::uint32_t vk_hashOf(int x, int y, int z)
{
    // Large odd factors, one for each axis: an odd one loses no bit of a coordinate, and different
    // ones keep diagonals apart (Ericson, "Real-Time Collision Detection", 2005). Unsigned, as
    // products may wrap round.
    return vk_hash(static_cast<std::uint32_t>(x) * 0x8da6b343u ^
                   static_cast<std::uint32_t>(y) * 0xd8163841u ^
                   static_cast<std::uint32_t>(z) * 0xcb1ab31fu);
}

float vk_noise(const vk_Vec &place)
{
    const vk_Vec at = vk_within(place);
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

float vk_clouds(const vk_Vec &at, int octaves)
{
    float sum = 0, height = 1, finer = 1;
    // Half as high and twice as fine each time, as mountains and clouds about are.
    for (int i = 0; i < octaves; ++i, height *= .5f, finer *= 2)
        sum += height * vk_noise(at * finer);
    return sum;
}

vk_Cell vk_cell(const vk_Vec &place)
{
    const vk_Vec at = vk_within(place);
    const int x = static_cast<int>(std::floor(at.x)), y = static_cast<int>(std::floor(at.y));
    const int z = static_cast<int>(std::floor(at.z));
    vk_Cell cell;
    float first = 1e9f;
    // The nearest point may lie in any of the cells around.
    for (int i = 0; i < 27; ++i) {
        const int cx = x + i % 3 - 1, cy = y + i / 3 % 3 - 1, cz = z + i / 9 - 1;
        const std::uint32_t h = vk_hashOf(cx, cy, cz);
        // Ten bits for each axis are finer than anything that is drawn of a cell.
        const vk_Vec off = {static_cast<float>(h & 1023) / 1023,
                            static_cast<float>(h >> 10 & 1023) / 1023,
                            static_cast<float>(h >> 20 & 1023) / 1023};
        const vk_Vec way =
            vk_Vec{static_cast<float>(cx), static_cast<float>(cy), static_cast<float>(cz)} + off -
            at;
        const float distance = vk_dot(way, way);
        if (distance < first) {
            first = distance;
            // Hashed again: these bits say where the point lies, which must not colour the cell.
            cell.name = vk_hash(h);
        }
    }
    cell.distance = std::sqrt(first);
    return cell;
}
