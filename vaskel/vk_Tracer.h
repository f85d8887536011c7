// What light comes along a ray: path tracing.
//
// A path starts at the camera and goes from surface to surface. At each it
// gathers the light that arrives straight from the lights, and then follows
// one direction in which the surface scatters. Light that both ways could find
// is shared out by the balance heuristic (Veach and Guibas, "Optimally
// Combining Sampling Techniques", SIGGRAPH 1995). Paths end after four
// surfaces; what would come after that is estimated from the environment.
//
// Two deliberate simplifications keep pictures quiet: behind an evenly
// scattering surface all reflections are blurred (Kaplanyan and Dachsbacher,
// "Path Space Regularization", 2013), and fog scatters light once.
#pragma once

#include "vaskel/vk_Bsdf.h"
#include "vaskel/vk_Sampler.h"
#include "vaskel/vk_World.h"

class vk_Tracer
{
public:
    // Keeps references to both.
    vk_Tracer(const vk_Scene &scene, const vk_World &world);

    // Linear radiance; finite and not negative.
    vk_Colour radiance(const vk_Vec &origin, const vk_Vec &direction, vk_Sampler &sampler) const;

private:
    struct Path;
    struct Chord;

    bool      advance(Path &path, vk_Sampler &sampler) const;
    vk_Colour surroundings(const Path &path) const;
    void      fadeFloor(Path &path, const vk_Hit &hit) const;
    void      addLightsHit(Path &path, float distance) const;
    vk_Colour arriving(const vk_Vec &from, const vk_LightSample &light) const;
    vk_Colour direct(const vk_Hit &hit, const vk_Bsdf &bsdf, int picks, vk_Sampler &sampler) const;
    float     expected(const vk_Light &light, int picks) const;
    std::size_t pick(float at) const;

    Chord     chord(const vk_Vec &origin, const vk_Vec &direction, float distance) const;
    float     clear(const vk_Vec &origin, const vk_Vec &direction, float distance) const;
    void      crossFog(Path &path, float distance, vk_Sampler &sampler) const;
    vk_Colour scatteredByFog(const vk_Vec &at, vk_Sampler &sampler) const;

    const vk_Scene &myScene;
    const vk_World &myWorld;
    vk_Colour       myBlocked; // what arrives through something opaque
    bool            myCastsShadows;
    vk_Medium       myFog;
    vk_Colour       myAmbient; // mean of the environment
    float           myTotalStrength = 0;
};
