// A light: something that shines and can be aimed at by its place.
//
// Lights have a size, so their shadows are soft. They are seen in reflections
// but not by the camera itself. Densities are per solid angle.
#pragma once

#include "vaskel/base/vk_Ball.h"

struct vk_LightSample {
    vk_Vec direction; // unit, towards the light
    float distance = 0;
    float density = 0; // 0: the light does not reach the point
    vk_Colour radiance;
};

struct vk_Span {
    float begin = 0, end = 0;
};

class vk_Light
{
public:
    virtual ~vk_Light() = default;

    // A place on the light as seen from a point.
    virtual vk_LightSample sample(const vk_Vec &from, const vk_Square &at) const = 0;

    // Towards the middle of the light, wherever it shines most; only the way there counts.
    virtual vk_LightSample middle(const vk_Vec &from) const { return sample(from, {.5f, .5f}); }

    // The light's place that a ray meets, if it does: density is that of
    // sample() for the direction, 0 for a miss.
    virtual vk_LightSample hit(const vk_Vec &from, const vk_Vec &direction) const = 0;

    // Where it stands, null when it is far away; and the part of a ray, as distances,
    // that it can light at most. Both guide where its light is looked for in fog.
    virtual const vk_Vec *place() const { return nullptr; }
    virtual vk_Span reach(const vk_Vec &origin, const vk_Vec &direction) const;

    // How far its parts lie from its place at most; 0 when it has no place.
    virtual float size() const { return 0; }

    // Around all of it, endless when it is far away.
    vk_Ball bound() const;

    // How much light it gives to the scene, roughly, for choosing one of many.
    float strength() const { return myStrength; }

protected:
    explicit vk_Light(float strength) : myStrength(strength) {}

private:
    float myStrength;
};

// Light from a cap of directions, as a ball or a far disc shows it. The cap's height
// is 1 less the cosine at its rim: out of the square of the sine there, without
// cancellation.
float vk_capHeight(float sin2);
vk_Vec vk_inCap(const vk_Vec &axis, float height, const vk_Square &at);
vk_LightSample vk_capSample(const vk_Vec &direction, float height);
