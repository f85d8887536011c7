// What the samples of one pixel add up to.
#pragma once

#include "vaskel/trace/vk_PathTracer.h"

// How a colour rises within the square of a pixel, per pixel to the right and down.
struct vk_Gradient {
    vk_Colour x, y;
};

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

    // A sample's view, and where it lies within the pixel.
    void add(const vk_View &view, const vk_Square &place);

    vk_Colour light() const { return sum.light() * share(); }
    // Estimated from where samples lie; 0 for one sample.
    vk_Gradient lightGradient() const { return gradientOf(myLightAtPlace, light()); }
    vk_Gradient albedoGradient() const { return gradientOf(myAlbedoAtPlace, sum.albedo * share()); }
    Layers layers() const;

    // Estimates the errors from two halves of the samples, as one would from two pictures
    // of half of the samples each: how far the second half moved a mean is about how far
    // off it still is.
    void estimate();

private:
    Layers myFirstHalf; // means then
    int myFirstCount = 0;
    bool myIsEstimated = false;

    // Sums over samples of the way from the pixel's middle, and of colours times that.
    float myPlaceX = 0, myPlaceY = 0;
    vk_Gradient myLightAtPlace, myAlbedoAtPlace;

    vk_Gradient gradientOf(const vk_Gradient &atPlace, const vk_Colour &mean) const;

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
