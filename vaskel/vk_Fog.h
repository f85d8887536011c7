// What fog does to light on its way.
#pragma once

#include "vaskel/vk_VolumeShaders.h"

class vk_Fog
{
public:
    // Clear air for a shader that is not chosen.
    explicit vk_Fog(const vk_FogShader &shader);

    bool isClear() const { return myMedium.extinction <= 0; }
    const vk_Colour &albedo() const { return myMedium.albedo; }

    // Share of light that passes along a ray; the distance may be infinite.
    float passes(const vk_Vec &origin, const vk_Vec &direction, float distance) const;

    // A place on the way where light is lost, drawn as often as it is lost
    // there. REQUIRES: passes(...) < 1; 0 <= at < 1
    vk_Vec place(const vk_Vec &origin, const vk_Vec &direction, float distance, float at) const;

private:
    struct Chord {
        float begin = 0, length = 0;
    };
    Chord chord(const vk_Vec &origin, const vk_Vec &direction, float distance) const;

    vk_Medium myMedium;
};
