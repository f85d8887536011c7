#include "vaskel/trace/vk_Fog.h"

namespace
{
constexpr float FLAT = 1e-4f; // a fall that does not show
} // namespace

// A part of a ray in the fog. Extinction is largest at its low end and falls away from it
// as an exponential does; counted from there nothing overflows.
struct vk_Fog::Chord {
    float begin = 0, length = 0;
    float low = 0;     // extinction at the low end
    float fall = 0;    // per length, not below 0
    bool rises = true; // begins with the low end

    bool isFlat() const { return fall * length < FLAT; }
    float fromLow(float t) const { return rises ? t : length - t; }
    float extinction(float t) const { return low * std::exp(-fall * fromLow(t)); }

    // Extinction gathered from the beginning.
    float depth(float t) const
    {
        if (isFlat())
            return low * t;
        const float gathered = std::exp(-fall * fromLow(t)) - std::exp(-fall * fromLow(0));
        return low * std::abs(gathered) / fall;
    }

    // The inverse.
    float at(float gathered) const
    {
        if (isFlat())
            return gathered / low;
        const float part = fall * gathered / low;
        const float left = std::exp(-fall * fromLow(0)) + (rises ? -part : part);
        const float off = -std::log(std::max(left, 1e-30f)) / fall;
        return rises ? off : length - off;
    }
};

// Places on a chord by the angle under which a lamp sees them: equiangular, so that the pdf cancels
// the inverse square of their distance to the lamp.
struct vk_Fog::Angles {
    float along;  // nearest place to the lamp, from where the chord begins,
    float beside; // and how near
    float low, high;

    Angles(const vk_Vec &begin, const vk_Vec &direction, float length, const vk_Vec &lamp)
        : along(vk_dot(lamp - begin, direction)),
          // A lamp on the ray itself would see all places at right angles.
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

vk_Fog::vk_Fog(const vk_FogShader *shader)
{
    if (shader != nullptr)
        myMedium = shader->medium();
}

// The part of a ray inside the ball of fog, above its bottom.
vk_Fog::Chord vk_Fog::chord(const vk_Vec &origin, const vk_Vec &direction, float distance) const
{
    const float middle = -vk_dot(origin, direction);
    const vk_Vec nearest = origin + direction * middle;
    // Negative where the ray misses the ball: both ends fall together then.
    const float half2 = myMedium.radius * myMedium.radius - vk_dot(nearest, nearest);
    const float half = std::sqrt(std::max(0.0f, half2));
    float begin = std::max(0.0f, middle - half), end = std::min(distance, middle + half);
    if (myMedium.height <= 0)
        return {begin, std::max(0.0f, end - begin), myMedium.extinction, 0, true};
    // Below the floor there is no fog; a level ray never comes to the bottom.
    const float toBottom = -origin.y / direction.y;
    if (direction.y > 0)
        begin = std::max(begin, toBottom);
    else if (direction.y < 0)
        end = std::min(end, toBottom);
    else if (origin.y < 0)
        end = begin;
    end = std::max(begin, end);
    const bool rises = direction.y >= 0;
    const float y = origin.y + direction.y * (rises ? begin : end);
    return {begin, end - begin,
            myMedium.extinction * std::exp(-std::max(0.0f, y) / myMedium.height),
            std::abs(direction.y) / myMedium.height, rises};
}

float vk_Fog::passes(const vk_Vec &origin, const vk_Vec &direction, float distance) const
{
    if (isClear())
        return 1;
    const Chord in = chord(origin, direction, distance);
    return std::exp(-in.depth(in.length));
}

vk_Fog::Place vk_Fog::place(const vk_Vec &origin, const vk_Vec &direction, float distance,
                            const vk_Vec *lamp, float at) const
{
    const Chord in = chord(origin, direction, distance);
    const float lost = 1 - std::exp(-in.depth(in.length));
    if (lost < 1e-6f)
        return {};
    const vk_Vec begin = origin + direction * in.begin;
    const Angles angles(begin, direction, in.length, lamp != nullptr ? *lamp : begin);
    // Half of the places where the lamp's light is dense, half where the fog scatters most of what
    // reaches the viewer; the balance heuristic puts both together.
    const float byAngle = lamp != nullptr ? .5f : 0;
    float t = 0;
    if (at < byAngle)
        t = angles.at(at / byAngle);
    else
        t = in.at(-std::log(1 - (at - byAngle) / (1 - byAngle) * lost));
    // Tangents near a right angle overshoot by rounding.
    t = std::clamp(t, 0.0f, in.length);
    // Light scattered there, per length, as seen from the origin.
    const float scattered = in.extinction(t) * std::exp(-in.depth(t));
    const float density =
        (1 - byAngle) * scattered / lost + (byAngle > 0 ? byAngle * angles.density(t) : 0);
    return {in.begin + t, density > 0 ? scattered / density : 0};
}

float vk_Fog::phase(float cosine) const
{
    const float g = myMedium.forward;
    // Henyey and Greenstein, 1941. The cosine is between both ways that light goes, so forward
    // is 1.
    const float d = 1 + g * g - 2 * g * cosine;
    return (1 - g * g) / (4 * VK_PI * d * std::sqrt(d));
}
