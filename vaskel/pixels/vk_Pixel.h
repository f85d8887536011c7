// What the samples of one pixel add up to.
#pragma once

#include "vaskel/trace/vk_Tracer.h"

// Errors are squared and on about the scale of the file, on which a level x of light
// shows as its square root.
struct vk_Pixel {
    vk_View sum;
    vk_View judged;         // means when errors were estimated last
    float errorSharp = 0;   // of the sharp layer's mean, estimated,
    float errorEven = 0;    // of what arrived to be scattered evenly,
    float errorTexture = 0; // and of the colour that it met
    int count = 0;
    float spread = 0; // what one sample would leave of the error; 0: not estimated yet
    bool quiet = false;
    bool bad = false; // had a sample that was no number

    void add(const vk_View &view);

    vk_Colour light() const { return sum.light() * share(); }
    vk_Colour sharp() const { return sum.sharp * share(); }
    vk_Colour albedo() const { return sum.albedo * share(); }

    // What arrived for each part of the albedo; 0 where there is none.
    vk_Colour arriving() const;

    // Estimates the errors: how far the second half of the samples moved a mean is
    // about how far off it still is.
    void judge();

private:
    int judgedCount = 0; // samples then

    float share() const { return 1 / static_cast<float>(count); }
};

// How much a difference of light counts on the scale of the file, where there is so
// much light.
inline vk_Vec vk_visibility(const vk_Colour &light)
{
    constexpr float DARK = .002f;
    return {.25f / (light.x + DARK), .25f / (light.y + DARK), .25f / (light.z + DARK)};
}
inline float vk_visible(const vk_Colour &difference, const vk_Vec &visibility)
{
    return vk_dot(difference * difference, visibility) * (1.0f / 3);
}
