// Random patterns in space, the same at every run. Features are about one length
// wide. Coordinates reach a thousand million; what is beyond shows the edge there,
// as vk_within() moves it.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <cstdint>

vk_Vec vk_within(const vk_Vec &at);

// A well mixed number for each whole place.
std::uint32_t vk_hashOf(int x, int y, int z);

// Smooth heights from about -1 to 1, 0 at whole coordinates: Perlin, "Improving
// Noise", SIGGRAPH 2002.
float vk_noise(const vk_Vec &at);

// The same with finer and finer noise added, each octave half as high, down to
// the last of `octaves`.
float vk_clouds(const vk_Vec &at, int octaves);

// Cells around points that are strewn over space: Worley, "A Cellular Texture
// Basis Function", SIGGRAPH 1996.
struct vk_Cell {
    float distance = 0;     // from the cell's point, about 0 to 1
    std::uint32_t name = 0; // a well mixed number
};
vk_Cell vk_cell(const vk_Vec &at);

// A number from 0 to 1 out of a well mixed one: its lowest bits.
inline float vk_share(std::uint32_t name)
{
    return static_cast<float>(name & 0xffffu) / 65535;
}
