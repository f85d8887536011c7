// Light that arrives straight from the lights of a scene: next-event estimation.
//
// A vertex takes a number of light samples. When there are no more lights than that, each
// light gets one; otherwise they are dealt out by strength. What the samples count and
// what is left for the ray that goes on is shared out in vk_NextEvent.h.
#pragma once

#include "vaskel/trace/vk_Fog.h"
#include "vaskel/trace/vk_LightQueue.h"

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

    // Takes samples of the lights that a vertex scatters to where its BSDF was set up for,
    // less what rays that go on will count. Glass sends on what arrives from outside.
    void sample(const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_NextEvent &vertex, vk_Path &path,
                vk_LightQueue &queue) const;

    // Casts the shadow rays of all these samples, and adds to the views of their paths what
    // comes through. The queue is empty then.
    void collect(vk_LightQueue &queue) const;

    // What is left behind a surface that is there in part, for a ray that passes by.
    vk_NextEvent passedBy(vk_NextEvent next, float distance) const;

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
    struct Choice {
        std::size_t light;
        float expected; // samples of it on average
    };
    Choice choose(std::size_t i, int samples, float offset) const;
    std::size_t samplesOf(int samples) const;
    float expected(const vk_Light &light, int samples) const;
    std::size_t pick(float at) const;
    vk_Colour inScattered(const vk_Light &light, const vk_Vec &origin, const vk_Vec &direction,
                          float distance, vk_Sampler &sampler) const;
    vk_Vec softened(const vk_Vec &from, const vk_Light &light, const vk_Vec &direction) const;
    vk_Segment wayTo(const vk_Vec &from, const vk_Light &light, const vk_LightSample &sample) const;
    vk_Scattered arriving(const vk_LightQueue::Sample &sample, const vk_ShadowRay &ray,
                          const vk_NextEvent &vertex) const;

    const vk_Scene &myScene;
    const vk_Fog &myFog;
    vk_Shadows myShadows;
    std::vector<vk_Ball> myBounds; // of the scene's lights, one by one
    float myTotal = 0;             // strength of all lights
};
