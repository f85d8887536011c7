#include "vaskel/lights/vk_Light.h"

#include <limits>

vk_Span vk_Light::reach(const vk_Vec &, const vk_Vec &) const
{
    return {0, std::numeric_limits<float>::infinity()};
}

vk_Ball vk_Light::bound() const
{
    constexpr float MARGIN = 1.01f; // for rounding: what is left out is lost

    return place() != nullptr ? vk_Ball{*place(), MARGIN * size()} : vk_Ball::endless();
}

float vk_capHeight(float sin2)
{
    // 1 - sqrt(1 - x) written as x / (1 + sqrt(1 - x)): for a sun of half a degree the first
    // form would leave a few bits.
    return sin2 / (1 + std::sqrt(std::max(0.0f, 1 - sin2)));
}

vk_Vec vk_inCap(const vk_Vec &axis, float height, const vk_Square &at)
{
    return vk_Frame(axis).toWorld(vk_toCap(at, height));
}

vk_LightSample vk_capSample(const vk_Vec &direction, float height)
{
    vk_LightSample sample;
    sample.direction = direction;
    // Even over the cap, whose solid angle that is.
    sample.density = 1 / (2 * VK_PI * height);
    return sample;
}
