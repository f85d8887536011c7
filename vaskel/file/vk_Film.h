// Pixels, and how light becomes numbers in a file.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <cstdint>
#include <vector>

// Rows from the top, three bytes (red, green, blue, sRGB) a pixel.
struct vk_Film {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

// Rolls highlights off as film does and leaves middle greys where they are:
// Lottes, "Advanced Techniques and Optimization of HDR Color Pipelines", GDC
// 2016. Rises with its argument, from 0 at 0 to 1 at VK_WHITE and above.
constexpr float VK_WHITE = 8;
float vk_toneCurve(float linear);

// Linear light from 0 to 1 as sRGB from 0 to 1 (IEC 61966-2-1).
float vk_toSrgb(float linear);

// A linear colour as three bytes, by both of the above.
void vk_develop(const vk_Colour &colour, std::uint8_t *bytes);

// One linear colour by both of the above, from 0 to 1, out of a table: faster, and right to a
// tenth of a byte's step.
float vk_shown(float linear);
