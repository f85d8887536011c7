#include "vaskel/base/vk_Vec.h"

namespace
{
// Of an eighth of a turn at most, by Taylor's series, which floats cannot tell from the functions.
float sine(float x)
{
    const float x2 = x * x;
    return x + x * x2 * (-1 / 6.f + x2 * (1 / 120.f + x2 * (-1 / 5040.f + x2 * (1 / 362880.f))));
}
float cosine(float x)
{
    const float x2 = x * x;
    return 1 + x2 * (-1 / 2.f + x2 * (1 / 24.f + x2 * (-1 / 720.f + x2 * (1 / 40320.f))));
}
} // namespace

vk_Vec vk_toDisc(const vk_Square &s)
{
    const float a = 2 * s.u - 1;
    const float b = 2 * s.v - 1;
    if (a == 0 && b == 0)
        return {};
    // Squares around the middle become circles: the larger coordinate is the radius, the ratio
    // of both the angle.
    const bool wide = std::abs(a) > std::abs(b);
    const float radius = wide ? a : b, angle = VK_PI / 4 * (wide ? b / a : a / b);
    const float along = radius * cosine(angle), across = radius * sine(angle);
    return wide ? vk_Vec{along, across, 0} : vk_Vec{across, along, 0};
}

vk_Vec vk_toCap(const vk_Square &s, float height)
{
    // The disc's area maps linearly to the cap's height (Archimedes).
    const vk_Vec disc = vk_toDisc(s);
    const float down = (disc.x * disc.x + disc.y * disc.y) * height;
    const float scale = std::sqrt(height * std::max(0.0f, 2 - down));
    return {disc.x * scale, disc.y * scale, 1 - down};
}
