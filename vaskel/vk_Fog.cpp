#include "vaskel/vk_Fog.h"

vk_Fog::vk_Fog(const vk_FogShader &shader)
{
    if (shader)
        myMedium = shader();
}

// The part of a ray inside the ball of fog.
vk_Fog::Chord vk_Fog::chord(const vk_Vec &origin, const vk_Vec &direction, float distance) const
{
    const float middle = -vk_dot(origin, direction);
    const vk_Vec nearest = origin + direction * middle;
    const float half2 = myMedium.radius * myMedium.radius - vk_dot(nearest, nearest);
    const float half = std::sqrt(std::max(0.0f, half2));
    const float begin = std::max(0.0f, middle - half);
    return {begin, std::max(0.0f, std::min(distance, middle + half) - begin)};
}

float vk_Fog::passes(const vk_Vec &origin, const vk_Vec &direction, float distance) const
{
    if (isClear())
        return 1;
    return std::exp(-myMedium.extinction * chord(origin, direction, distance).length);
}

vk_Vec vk_Fog::place(const vk_Vec &origin, const vk_Vec &direction, float distance, float at) const
{
    const Chord in = chord(origin, direction, distance);
    const float lost = 1 - std::exp(-myMedium.extinction * in.length);
    const float depth = -std::log(1 - at * lost) / myMedium.extinction;
    return origin + direction * (in.begin + std::min(depth, in.length));
}
