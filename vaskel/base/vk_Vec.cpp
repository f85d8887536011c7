#include "vaskel/base/vk_Vec.h"

vk_Vec vk_toDisc(const vk_Square &s)
{
    const float a = 2 * s.u - 1;
    const float b = 2 * s.v - 1;
    if (a == 0 && b == 0)
        return {};
    // Squares around the middle become circles: the larger coordinate is the radius, the ratio
    // of both the angle.
    const bool wide = std::abs(a) > std::abs(b);
    const float radius = wide ? a : b;
    const float angle = wide ? VK_PI / 4 * (b / a) : VK_PI / 2 - VK_PI / 4 * (a / b);
    return {radius * std::cos(angle), radius * std::sin(angle), 0};
}

vk_Vec vk_toCap(const vk_Square &s, float height)
{
    // The disc's area maps linearly to the cap's height (Archimedes).
    const vk_Vec disc = vk_toDisc(s);
    const float down = (disc.x * disc.x + disc.y * disc.y) * height;
    const float scale = std::sqrt(height * std::max(0.0f, 2 - down));
    return {disc.x * scale, disc.y * scale, 1 - down};
}
