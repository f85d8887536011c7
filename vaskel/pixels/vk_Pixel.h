// What the samples of one pixel add up to.
#pragma once

#include "vaskel/trace/vk_PathTracer.h"

struct vk_Pixel {
    // What the filter takes means of.
    struct Layers {
        vk_Colour specular, irradiance, albedo;

        vk_Colour light() const { return specular + irradiance * albedo; }
    };

    // Squared, and on about the scale of the file, on which a level x of light shows as
    // its square root.
    struct Errors {
        float specular = 0;   // of the specular layer's mean,
        float irradiance = 0; // of what arrived to be scattered evenly,
        float albedo = 0;     // and of the colour that it met
    };

    vk_View sum;
    Errors errors; // estimated
    int count = 0;
    bool converged = false;
    bool bad = false; // had a sample that was no number

    void add(const vk_View &view);

    vk_Colour light() const { return sum.light() * share(); }
    Layers layers() const;

    // Estimates the errors from two halves of the samples, as one would from two pictures
    // of half of the samples each: how far the second half moved a mean is about how far
    // off it still is.
    void estimate();

private:
    Layers myFirstHalf; // means then
    int myFirstCount = 0;
    bool myIsEstimated = false;

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
