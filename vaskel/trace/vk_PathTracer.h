// What the camera sees along rays: path tracing.
//
// Terms and symbols are those of Pharr, Jakob and Humphreys, "Physically Based
// Rendering", 4th edition, 2023 (PBRT):
//
//   radiance Li           light that arrives along a ray
//   vertex                where a path meets a surface; a bounce leads from one to the next
//   throughput, beta      product of BSDF times cosine over pdf at the vertices so far: how
//                         much of the light that arrives now reaches the camera
//   BSDF, pdf             how a surface scatters, and the density, per solid angle, with
//                         which a direction is drawn (vk_Bsdf.h)
//   next-event estimation light samples taken at each vertex (vk_DirectLight.h)
//   MIS weight            share of one of several ways that find the same light
//                         (vk_NextEvent.h, with the table of lights behind glass)
//   specular, diffuse     scattered like a mirror or widely; also the two layers of a view,
//                         which the filter treats apart
//   splitting, roulette   several paths that go on from a vertex, and paths that end by
//                         chance (Arvo and Kirk, "Particle Transport and Image Synthesis",
//                         SIGGRAPH 1990)
//   dielectric            glass: reflects or refracts
//   transmittance         what is left of light behind fog, glass or a coloured shadow
//   irradiance            what arrives at a surface: the diffuse layer, divided by its albedo
//                         (demodulated)
//
// Paths of many pixels go from vertex to vertex together (Laine, Karras and Aila,
// "Megakernels Considered Harmful", HPG 2013), so that each surface's shader is asked once
// for all hits on it. They end by roulette, which is unbiased, and after 64 bounces.
//
// Deliberate simplifications keep pictures free of noise; doc/scene.md tells what shows:
//   - behind a vertex that scattered as widely as matte does all reflections are blurred
//     (Kaplanyan and Dachsbacher, "Path Space Regularization for Holistic and Robust Light
//     Transport", 2013). Floor beside a mirror gets .8 % less light for it, the worst block of
//     16 x 16 pixels 4 % less. Behind one without base and sheen that did so, as by the tail
//     of a metal's lobe, they are blurred less for every sample of a pixel, so that it goes away:
//     where two metals of roughness .2 meet, a block gets 4 % more light at default quality;
//   - behind one that scattered widely, glass is looked through straight on, as shadows do;
//   - paths that were scattered widely and come upon something very bright are clamped,
//     which takes less than .1 %;
//   - pixels converge by an error that their own samples tell for a half (vk_ErrorMap.h), so
//     that those that missed a caustic stop sooner: .1 % of the floor's light, 5 % of a block's;
//   - fog scatters light of the lights once, and that of the environment as a mean;
//   - where shadows are softer or harder than lights are wide, what is there in part and glass
//     let light pass that a ray beside it meets;
//   - subsurface scattering is that of the first vertex only.
#pragma once

#include "vaskel/trace/vk_DirectLight.h"

class vk_PathTracer
{
public:
    // Keeps references to both.
    vk_PathTracer(const vk_Scene &scene, const vk_World &world);
    vk_PathTracer(const vk_PathTracer &) = delete;
    vk_PathTracer &operator=(const vk_PathTracer &) = delete;

    // Follows all paths to their ends and adds what they find to their views: linear
    // radiance, finite; not negative but for the noise of roulette. The list is empty then.
    void Li(std::vector<vk_Path> &paths) const;

    // Of one camera ray.
    vk_View Li(const vk_Vec &origin, const vk_Vec &direction, const vk_Sampler &sampler) const;

private:
    struct Vertex;
    struct Outgoing;

    bool arrive(vk_Path &path, vk_Hit &hit) const;
    void leave(const Vertex &vertex, vk_Path &path, Outgoing &outgoing) const;
    bool choosePart(const vk_Hit &hit, const vk_Material &material, vk_Path &path,
                    Outgoing &outgoing) const;
    void crossFog(vk_Path &path, float distance) const;
    void fadeFloor(vk_Path &path, const vk_Hit &hit) const;
    vk_Colour environment(const vk_Path &path, const vk_Vec &direction) const;
    void lookThrough(const vk_Hit &hit, const vk_Material &material, vk_Path &path) const;
    bool survives(vk_Path &path) const;
    void scatterBelow(const vk_Hit &hit, vk_Material &material, vk_Path path,
                      Outgoing &outgoing) const;
    void scatter(const vk_Hit &hit, const vk_Bsdf &bsdf, vk_Path &path, Outgoing &outgoing) const;

    const vk_Scene &myScene;
    const vk_World &myWorld;
    vk_Fog myFog;
    vk_DirectLight myDirectLight;
    vk_Colour myMeanSky; // of the environment over all directions
};
