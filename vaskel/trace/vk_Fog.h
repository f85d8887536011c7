// What fog does to light on its way.
//
// Its density is constant or falls with height as an exponential does, so that
// what passes is a formula. Scattering is that of Henyey and Greenstein, 1941. Places
// where light is scattered are drawn half where the fog takes light away and half
// where light of a lamp is strong: Kulla and Fajardo, "Importance Sampling
// Techniques for Path Tracing in Participating Media", EGSR 2012.
#pragma once

#include "vaskel/shaders/vk_FogShaders.h"

class vk_Fog
{
public:
    // Clear air when there is no shader.
    explicit vk_Fog(const vk_FogShader *shader);

    bool isClear() const { return myMedium.extinction <= 0; }
    const vk_Colour &albedo() const { return myMedium.albedo; }

    // Share of light that passes along a ray; the distance may be infinite.
    float passes(const vk_Vec &origin, const vk_Vec &direction, float distance) const;

    // A place along a ray: how far, and how much light that arrives there (per solid
    // angle and before albedo and phase) counts at the origin.
    struct Place {
        float distance = 0;
        float weight = 0; // 0: none
    };
    // `lamp` is where the light comes from that is of interest, null when it is far
    // away. 0 <= at < 1.
    Place place(const vk_Vec &origin, const vk_Vec &direction, float distance, const vk_Vec *lamp,
                float at) const;

    // Share of scattered light that goes on at an angle, per solid angle.
    float phase(float cosine) const;

private:
    struct Chord;
    struct Angles;
    Chord chord(const vk_Vec &origin, const vk_Vec &direction, float distance) const;

    vk_Medium myMedium;
};
