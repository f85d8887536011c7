// How a material scatters light at one point, seen from one direction.
//
// Directions are unit vectors that point away from the surface. The models:
//
//   boundary   microfacets with the distribution of Trowbridge and Reitz (GGX):
//              Walter et al., "Microfacet Models for Refraction through Rough
//              Surfaces", EGSR 2007; masking and shadowing of Smith in its
//              height-correlated form: Heitz, JCGT 3(2), 2014; drawn from the
//              visible normals: Heitz, JCGT 7(4), 2018; Fresnel reflectance
//              after Schlick, 1994.
//   base       the energy that the boundary lets through, spread evenly and
//              reciprocally: Ashikhmin and Shirley, "An Anisotropic Phong BRDF
//              Model", 2000; without a boundary it is Lambert's.
//
// Both are symmetric in the two directions and never reflect more than arrives.
#pragma once

#include "vaskel/vk_Material.h"

class vk_Bsdf
{
public:
    // Keeps a reference to the material. A split one draws its directions from
    // the boundary and from the base once each, instead of from one of them by
    // chance; densities are then those of both samples together.
    // REQUIRES: dot(normal, out) > 0
    vk_Bsdf(const vk_Material &material, const vk_Vec &normal, const vk_Vec &out, bool split);

    // How many samples are to be drawn: 2 when it is split and has two parts.
    int rounds() const { return myBoundaryShare + myBaseShare > 1.5f ? 2 : 1; }

    // Reflected radiance per irradiance from `in`, times the cosine there; and
    // the density, per solid angle, with which sample() draws it. Both are 0
    // below the surface.
    vk_Colour evaluate(const vk_Vec &in, float &density) const;

    // A direction drawn roughly as much as it scatters, the boundary's for
    // round 0 and the base's for round 1 when they are split. May lie below
    // the surface, where nothing arrives.
    vk_Vec sample(const vk_Square &at, int round = 0) const;

private:
    vk_Colour fresnel(float cosine) const;
    vk_Colour base(float cosIn) const;
    vk_Vec visibleNormal(const vk_Square &at) const;
    vk_Vec sampleBoundary(const vk_Square &at) const;
    vk_Vec sampleBase(const vk_Square &at) const;

    const vk_Material &myMaterial;
    vk_Frame myFrame;
    vk_Vec myOut; // in the frame
    float myAlpha;
    float myBoundaryShare = 0; // samples from the boundary, 0 to 1,
    float myBaseShare = 1;     // and from the base
};
