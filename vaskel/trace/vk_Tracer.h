// What light comes along a ray: path tracing.
//
// A path starts at the camera and goes from surface to surface. At each it
// gathers the light that arrives straight from the lights, and then follows
// one direction in which the surface scatters; at the first, one for its sharp and
// one for its even parts, and in glass both ways at the first two. Light that several
// ways could find is shared out by the balance heuristic (Veach and Guibas,
// "Optimally Combining Sampling Techniques", SIGGRAPH 1995). Paths end after four
// surfaces (and eight of glass), and at the surface behind an evenly scattering one;
// the environment's light there is estimated from its first spherical harmonics
// (Ramamoorthi and Hanrahan, "An Efficient Representation for Irradiance
// Environment Maps", SIGGRAPH 2001).
//
// Deliberate simplifications keep pictures quiet. Behind an evenly scattering
// surface all reflections are blurred (Kaplanyan and Dachsbacher, "Path Space
// Regularization", 2013), and glass is looked through straight on, as shadows do. Small
// lights that a surface mirrors by way of smooth glass come straight through it instead.
// Fog scatters light of the lights once. Light wanders below the first surface only.
#pragma once

#include "vaskel/trace/vk_Lighting.h"

// What a ray brings, in the two layers that a filter treats apart, and what it met.
struct vk_View {
    static constexpr float NOWHERE = 1024; // distance of what is not there

    vk_Colour sharp;  // all but
    vk_Colour even;   // light that the first surface scattered evenly,
    vk_Colour albedo; // about so much of what arrived there; not 0 where there is even light
    vk_Vec normal;    // of that surface; to the viewer where there is none
    float distance = 0;
    float blurred = 0; // how far the even layer is without edges: 1 where light wandered

    vk_Colour light() const { return sharp + even; }
};

class vk_Tracer
{
public:
    // Keeps references to both.
    vk_Tracer(const vk_Scene &scene, const vk_World &world);
    vk_Tracer(const vk_Tracer &) = delete;
    vk_Tracer &operator=(const vk_Tracer &) = delete;

    // Linear radiance; finite and not negative.
    vk_View view(const vk_Vec &origin, const vk_Vec &direction, vk_Sampler &sampler) const;

private:
    struct Path;
    struct Branches;

    bool arrive(Path &path, vk_Hit &hit, vk_Material &material, vk_Sampler &sampler) const;
    void lookThrough(Path &path, const vk_Hit &hit, const vk_Material &material) const;
    void fadeFloor(Path &path, const vk_Hit &hit) const;
    void crossFog(Path &path, float distance, vk_Sampler &sampler) const;
    void first(Path &path, vk_Sampler &sampler, Branches &branches) const;
    void wander(Path path, const vk_Hit &hit, vk_Material &material, vk_Sampler &sampler,
                Branches &branches) const;
    void follow(Path path, vk_Sampler &sampler, Branches &branches) const;
    void branch(const Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf, vk_Sampler &sampler,
                Branches &branches) const;
    vk_Bsdf light(Path &path, const vk_Hit &hit, const vk_Material &material, int samples,
                  bool split, vk_Sampler &sampler) const;
    bool scatter(Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_Vec &next) const;
    void turn(Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf, float density, float above) const;
    vk_Colour ambient(const vk_Vec &normal) const;
    vk_Colour seen(const Path &path, const vk_Vec &direction) const;

    const vk_Scene &myScene;
    const vk_World &myWorld;
    vk_Fog myFog;
    vk_Lighting myLighting;
    vk_Colour myMean;     // of the environment,
    vk_Colour mySlope[3]; // and how it leans along each axis
};
