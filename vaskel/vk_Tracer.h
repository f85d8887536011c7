// What light comes along a ray: path tracing.
//
// A path starts at the camera and goes from surface to surface. At each it
// gathers the light that arrives straight from the lights, and then follows
// one direction in which the surface scatters; at the first, one for the
// boundary and one for the base. Light that several ways could find is shared
// out by the balance heuristic (Veach and Guibas, "Optimally Combining Sampling
// Techniques", SIGGRAPH 1995). Paths end after four surfaces, and at the
// surface behind an evenly scattering one; the environment's light there is
// estimated from its first spherical harmonics (Ramamoorthi and Hanrahan, "An
// Efficient Representation for Irradiance Environment Maps", SIGGRAPH 2001).
//
// Two deliberate simplifications keep pictures quiet: behind an evenly
// scattering surface all reflections are blurred (Kaplanyan and Dachsbacher,
// "Path Space Regularization", 2013), and fog scatters light once.
#pragma once

#include "vaskel/vk_Lighting.h"

class vk_Tracer
{
public:
    // Keeps references to both.
    vk_Tracer(const vk_Scene &scene, const vk_World &world);
    vk_Tracer(const vk_Tracer &) = delete;
    vk_Tracer &operator=(const vk_Tracer &) = delete;

    // Linear radiance; finite and not negative.
    vk_Colour radiance(const vk_Vec &origin, const vk_Vec &direction, vk_Sampler &sampler) const;

private:
    struct Path;

    bool arrive(Path &path, vk_Hit &hit, vk_Material &material, vk_Sampler &sampler) const;
    void fadeFloor(Path &path, const vk_Hit &hit) const;
    void crossFog(Path &path, float distance, vk_Sampler &sampler) const;
    vk_Bsdf light(Path &path, const vk_Hit &hit, const vk_Material &material, int samples,
                  vk_Sampler &sampler) const;
    bool scatter(Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_Vec &next) const;
    vk_Colour follow(Path path, vk_Sampler &sampler) const;
    vk_Colour ambient(const vk_Vec &normal) const;
    vk_Colour seen(const Path &path, const vk_Vec &direction) const;

    const vk_Scene &myScene;
    const vk_World &myWorld;
    vk_Fog myFog;
    vk_Lighting myLighting;
    vk_Colour myMean;     // of the environment,
    vk_Colour mySlope[3]; // and how it leans along each axis
};
