#include "vaskel/vk_Fog.h"

namespace
{
constexpr float FLAT = 1e-4f; // a fall that does not show

// Extinction gathered over the first part of a chord.
float depthOf(float extinction, float fall, float length)
{
    if (std::abs(fall * length) < FLAT)
        return extinction * length;
    return extinction * (1 - std::exp(-fall * length)) / fall;
}

// The inverse.
float lengthOf(float extinction, float fall, float depth)
{
    const float x = fall * depth / extinction;
    if (std::abs(x) < FLAT)
        return depth / extinction;
    return -std::log(std::max(1 - x, 1e-20f)) / fall;
}
} // namespace

// Places on a chord by the angle under which a lamp sees them.
struct vk_Fog::Angles {
    float along;  // nearest place to the lamp, from where the chord begins,
    float beside; // and how near
    float low, high;

    Angles(const vk_Vec &begin, const vk_Vec &direction, float length, const vk_Vec &lamp)
        : along(vk_dot(lamp - begin, direction)),
          beside(std::max(vk_length(lamp - begin - direction * along), 1e-3f)),
          low(std::atan2(-along, beside)), high(std::atan2(length - along, beside))
    {
    }
    float at(float u) const { return along + beside * std::tan(low + (high - low) * u); }
    float density(float t) const
    {
        const float off = t - along;
        return beside / (std::max(high - low, 1e-6f) * (beside * beside + off * off));
    }
};

vk_Fog::vk_Fog(const vk_FogShader &shader)
{
    if (shader)
        myMedium = shader();
}

// The part of a ray inside the ball of fog, above its bottom.
vk_Fog::Chord vk_Fog::chord(const vk_Vec &origin, const vk_Vec &direction, float distance) const
{
    const float middle = -vk_dot(origin, direction);
    const vk_Vec nearest = origin + direction * middle;
    const float half2 = myMedium.radius * myMedium.radius - vk_dot(nearest, nearest);
    const float half = std::sqrt(std::max(0.0f, half2));
    float begin = std::max(0.0f, middle - half), end = std::min(distance, middle + half);
    if (myMedium.height <= 0)
        return {begin, std::max(0.0f, end - begin), myMedium.extinction, 0};
    const float toBottom = -origin.y / direction.y;
    if (direction.y > 0)
        begin = std::max(begin, toBottom);
    else if (direction.y < 0)
        end = std::min(end, toBottom);
    else if (origin.y < 0)
        end = begin;
    const float y = std::max(0.0f, origin.y + direction.y * begin) / myMedium.height;
    return {begin, std::max(0.0f, end - begin), myMedium.extinction * std::exp(-y),
            direction.y / myMedium.height};
}

float vk_Fog::passes(const vk_Vec &origin, const vk_Vec &direction, float distance) const
{
    if (isClear())
        return 1;
    const Chord in = chord(origin, direction, distance);
    return std::exp(-depthOf(in.extinction, in.fall, in.length));
}

vk_Fog::Place vk_Fog::place(const vk_Vec &origin, const vk_Vec &direction, float distance,
                            const vk_Vec *lamp, float at) const
{
    const Chord in = chord(origin, direction, distance);
    const float lost = 1 - std::exp(-depthOf(in.extinction, in.fall, in.length));
    if (lost < 1e-6f)
        return {};
    const vk_Vec begin = origin + direction * in.begin;
    const Angles angles(begin, direction, in.length, lamp != nullptr ? *lamp : begin);
    const float byAngle = lamp != nullptr ? .5f : 0;
    float t = 0;
    if (at < byAngle)
        t = angles.at(at / byAngle);
    else
        t = lengthOf(in.extinction, in.fall, -std::log(1 - (at - byAngle) / (1 - byAngle) * lost));
    t = std::clamp(t, 0.0f, in.length);
    // Light scattered there, per length, as seen from the origin.
    const float scattered =
        in.extinction * std::exp(-in.fall * t - depthOf(in.extinction, in.fall, t));
    const float density =
        (1 - byAngle) * scattered / lost + (byAngle > 0 ? byAngle * angles.density(t) : 0);
    return {in.begin + t, density > 0 ? scattered / density : 0};
}

float vk_Fog::phase(float cosine) const
{
    const float g = myMedium.forward;
    const float d = 1 + g * g - 2 * g * cosine;
    return (1 - g * g) / (4 * VK_PI * d * std::sqrt(d));
}
