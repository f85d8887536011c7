// What the samples of one pixel add up to.
#pragma once

#include "vaskel/trace/vk_PathTracer.h"

// Errors are squared and on about the scale of the file, on which a level x of light
// shows as its square root.
struct vk_Pixel {
    vk_View sum;
    vk_View estimated;         // means when errors were estimated last
    float errorSpecular = 0;   // of the specular layer's mean, estimated,
    float errorIrradiance = 0; // of what arrived to be scattered evenly,
    float errorAlbedo = 0;     // and of the colour that it met
    int count = 0;
    float variance = 0; // what one sample would leave of the error; 0: not estimated yet
    bool converged = false;
    bool bad = false; // had a sample that was no number

    void add(const vk_View &view);

    vk_Colour light() const { return sum.light() * share(); }
    vk_Colour specular() const { return sum.specular * share(); }
    vk_Colour albedo() const { return sum.albedo * share(); }

    // What arrived for each part of the albedo; 0 where there is none.
    vk_Colour irradiance() const;

    // Estimates the errors: how far the second half of the samples moved a mean is
    // about how far off it still is.
    void estimate();

private:
    int estimatedCount = 0; // samples then

    float share() const { return 1 / static_cast<float>(count); }
};

// How much a difference of light counts on the scale of the file, where there is so
// much light.
inline vk_Vec vk_visibility(const vk_Colour &light)
{
    constexpr float DARK = .002f;
    const auto of = [](float level) { return .25f / (std::max(level, 0.0f) + DARK); };
    return {of(light.x), of(light.y), of(light.z)};
}
inline float vk_visible(const vk_Colour &difference, const vk_Vec &visibility)
{
    return vk_dot(difference * difference, visibility) * (1.0f / 3);
}
