// Light that arrives straight from the lights of a scene: next-event estimation.
//
// A vertex takes a number of light samples. When there are no more lights than that, each
// light gets one; otherwise they are dealt out by strength. What the samples count and
// what is left for the ray that goes on is shared out in vk_NextEvent.h.
#pragma once

#include "vaskel/trace/vk_Fog.h"
#include "vaskel/trace/vk_Path.h"

class vk_DirectLight
{
public:
    // Keeps references to all three.
    vk_DirectLight(const vk_Scene &scene, const vk_World &world, const vk_Fog &fog);

    // What a vertex with so many samples leaves for rays that go on from there. `before`
    // is what was left for the ray that arrived, if it leaves glass there.
    vk_NextEvent atVertex(const vk_Bsdf &bsdf, int samples, const vk_NextEvent &before) const;

    // What is left behind the surface of glass, a distance further.
    vk_NextEvent throughGlass(vk_NextEvent next, float distance) const;

    // Light of the lights that a vertex scatters to where its BSDF was set up for, less
    // what rays that go on will count. `isWide` is the path's (see vk_Path). Glass sends on
    // what arrives from outside.
    vk_Scattered scattered(const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_NextEvent &vertex,
                           bool isWide, vk_Sampler &sampler) const;

    // Light of the lights that a ray meets before a distance, as far as it is the ray's to
    // count. In or behind glass that is no light that shadows leave: it was counted in front.
    vk_Colour met(const vk_Vec &origin, const vk_Vec &direction, float distance,
                  const vk_NextEvent &next) const;

    // Whether a ray would meet a light if nothing were in its way.
    bool isAhead(const vk_Vec &origin, const vk_Vec &direction) const;

    // Light of the lights that fog scatters back along a ray from all the way to a
    // distance: single scattering.
    vk_Colour inScattered(const vk_Vec &origin, const vk_Vec &direction, float distance,
                          vk_Sampler &sampler) const;

private:
    // What arrives of a light sample.
    struct Arrival {
        vk_Colour open;     // that nothing holds back, or that shadows leave,
        vk_Colour through;  // and that comes through shapes,
        vk_Between between; // the worst of them
    };
    struct Transmittance {
        vk_Colour share;
        vk_Between between;
    };
    struct Choice {
        const vk_Light *light;
        float expected; // samples of it on average
    };
    Choice choose(std::size_t i, int samples, float offset) const;
    std::size_t samplesOf(int samples) const;
    float expected(const vk_Light &light, int samples) const;
    std::size_t pick(float at) const;
    vk_Colour inScattered(const vk_Light &light, const vk_Vec &origin, const vk_Vec &direction,
                          float distance, vk_Sampler &sampler) const;
    Arrival arriving(const vk_Vec &from, const vk_Light &light, const vk_LightSample &sample,
                     const vk_Colour &left) const;
    bool isOccluded(const vk_Vec &from, const vk_Light &light, const vk_LightSample &sample) const;
    vk_Vec shadowRay(const vk_Vec &from, const vk_Light &light, const vk_LightSample &sample) const;
    Transmittance transmittance(vk_Vec origin, const vk_Vec &direction, float distance) const;
    vk_Colour ofSurface(const vk_Hit &hit, const vk_Material &material,
                        const vk_Vec &direction) const;

    const vk_Scene &myScene;
    const vk_World &myWorld;
    const vk_Fog &myFog;
    vk_Shadow myShadow;
    bool myCastsShadows;
    bool mySeesThrough; // shapes may let light pass
    float myTotal = 0;  // strength of all lights
};
