// The light that reaches a point straight from the lights of a scene.
//
// A point asks for a number of samples. When there are no more lights than
// that, each light gets one; otherwise they are dealt out by strength.
#pragma once

#include "vaskel/base/vk_Sampler.h"
#include "vaskel/scatter/vk_Bsdf.h"
#include "vaskel/trace/vk_Fog.h"
#include "vaskel/trace/vk_World.h"

// Whether a path that counts with this weight is cut short.
inline bool vk_isFaint(const vk_Colour &weight)
{
    return vk_largest(weight) < .12f;
}

// Whether a path that a surface or rough glass scattered with a density, to count with a
// weight, is refracted by the glass that it meets. Others look through glass straight on.
inline bool vk_refracts(float density, const vk_Colour &weight)
{
    return vk_isSharp(density) && !vk_isFaint(weight);
}

// What a ray may still find of the lights. Where it set out they were asked for samples,
// but for smooth glass and the inside of glass; a ray that smooth glass refracts is still
// that of who asked before the glass.
struct vk_Asked {
    int samples = 0;
    float likeliest = 0;       // see vk_Bsdf; 0 for glass, and where none lets light pass
    float density = 0;         // with which the ray was scattered there; 0: finds nothing
    float way = 0;             // from there to where the ray is now
    vk_Colour due = {1, 1, 1}; // share of light that counts where it is found now
    bool isShaded = false;     // glass dims lights as its shadow does; not for the viewer
    bool behindGlass = false;  // what shadows leave was found; the ray is in or behind glass,
    bool isRefracted = false;  // and is no longer straight
};

class vk_Lighting
{
public:
    // Keeps references to all three.
    vk_Lighting(const vk_Scene &scene, const vk_World &world, const vk_Fog &fog);

    // To ask for so many samples where a surface is hit; `before` is a ray's that leaves
    // glass there.
    vk_Asked ask(const vk_Bsdf &bsdf, int samples, const vk_Asked &before) const;

    // What is asked for on a ray that crosses the surface of glass after a distance.
    vk_Asked passed(vk_Asked asked, float distance) const;

    // Light that a surface sends on to where its scattering was set up for,
    // weighted against what scattered rays will find (see reached()), or all of it where
    // none follow. Glass sends on what arrives from outside. `weight` is that of the way
    // so far. Who finds light that comes through shapes:
    //   other shapes than glass are among them     this function, before all glass
    //   rays look straight through glass           both, weighted as in the open
    //   rays are refracted by rough glass          that glass, where they leave it
    //   rays are refracted by smooth glass         those rays; this function for lights
    //                                              so small that few of them hit, and
    //                                              where rough glass is lit
    vk_Scattered reflected(const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_Colour &weight,
                           const vk_Asked &asked, bool isLast, vk_Sampler &sampler) const;

    // Whether a light's edge may be mirrored sharply at a hit. There one direction for
    // each sample tells too little, and mirrored() draws several at little cost: the
    // light that they find in place of one ray that reached() would be asked about.
    bool mirrorsLight(const vk_Hit &hit, const vk_Bsdf &bsdf) const;
    vk_Colour mirrored(const vk_Hit &hit, const vk_Bsdf &bsdf, int samples,
                       vk_Sampler &sampler) const;

    // Light that a ray finds on its way; `distance` is what it meets first. In or behind
    // glass that is no light that shadows leave: it was found before the glass, and a
    // viewer sees it behind all of the glass.
    vk_Colour reached(const vk_Vec &origin, const vk_Vec &direction, float distance,
                      const vk_Asked &asked) const;

    // Light of the lights that fog scatters back along a ray from all the way to a
    // distance.
    vk_Colour scattered(const vk_Vec &origin, const vk_Vec &direction, float distance,
                        vk_Sampler &sampler) const;

private:
    enum Between { SMOOTH_GLASS, ROUGH_GLASS, OTHER_SHAPES };
    struct Arrival {
        vk_Colour open;    // light that nothing holds back,
        vk_Colour through; // and light that comes through shapes,
        Between between;   // the worst of them
    };
    struct Passing {
        vk_Colour share;
        Between between;
    };
    vk_Colour scattered(const vk_Light &light, const vk_Vec &origin, const vk_Vec &direction,
                        float distance, vk_Sampler &sampler) const;
    float expected(const vk_Light &light, int samples) const;
    std::size_t pick(float at) const;
    Arrival arriving(const vk_Vec &from, const vk_Light &light, const vk_LightSample &sample,
                     const vk_Colour &left) const;
    bool isHidden(const vk_Vec &from, const vk_Light &light, const vk_LightSample &sample) const;
    vk_Vec shadowRay(const vk_Vec &from, const vk_Light &light, const vk_LightSample &sample) const;
    Passing passing(vk_Vec origin, const vk_Vec &direction, float distance) const;
    static Between kindOf(const vk_Material &material);
    static float shareOfSample(Between between, const vk_Asked &asked, float chance, float density,
                               bool refracts);
    vk_Colour through(const vk_Hit &hit, const vk_Material &material,
                      const vk_Vec &direction) const;

    const vk_Scene &myScene;
    const vk_World &myWorld;
    const vk_Fog &myFog;
    vk_Shadow myShadow;
    bool myCastsShadows;
    bool mySeesThrough; // shapes may let light pass
    float myTotal = 0;  // strength of all lights
};
