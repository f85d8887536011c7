// A rough boundary as many small mirrors or windows.
//
//   distribution   of Trowbridge and Reitz (GGX), wider along one direction than
//                  across it where asked: Walter et al., "Microfacet Models for
//                  Refraction through Rough Surfaces", EGSR 2007; Burley,
//                  "Physically Based Shading at Disney", 2012
//   masking        of Smith, in its height-correlated form: Heitz, JCGT 3(2), 2014
//   samples        from the visible facets: Heitz, JCGT 7(4), 2018
//   reflectance    after Fresnel, or his formula as Schlick shortened it, 1994
//   light that facets scatter more than once   for metal half of it as a wide lobe of its own:
//                  Kulla and Conty, "Revisiting Physically Based Shading at Imageworks",
//                  SIGGRAPH 2017 course; and half of it in proportion to what they scatter
//                  once: Turquin, "Practical Multiple Scattering Compensation for Microfacet
//                  Models", 2019. All of it so for glass and for brushed metal. Halves are
//                  about what a random walk between facets gives: Heitz et al.,
//                  "Multiple-Scattering Microfacet BSDFs with the Smith Model", SIGGRAPH 2016
//
// Directions are in a frame around the surface's normal z, point away from the
// surface, and x is the direction along which the boundary may be wider.
#pragma once

#include "vaskel/base/vk_Vec.h"

// Reflectance where the way meets the facet with a cosine from 0 to 1; given
// are those straight on and at grazing angles (Schlick).
inline vk_Colour vk_schlick(const vk_Colour &straight, const vk_Colour &edge, float cosine)
{
    const float c = 1 - std::clamp(cosine, 0.0f, 1.0f), c2 = c * c;
    return vk_mix(straight, edge, c2 * c2 * c);
}

// The same straight on, between air and an index of refraction.
inline float vk_straightReflectance(float ior)
{
    const float ratio = (ior - 1) / (ior + 1);
    return ratio * ratio;
}

// Fresnel's reflectance for light without polarisation; eta is the index of the
// far side over that of the near side. 1 for total reflection.
float vk_fresnel(float cosine, float eta);

// Into the far side through a facet, `out` on its side; (0 0 0) when there is
// total reflection.
vk_Vec vk_refract(const vk_Vec &out, const vk_Vec &facet, float eta);

// Share of light from a direction that facets send on which reflect all of it, or which are
// those of glass with an index eta, when it is scattered once; the rest is scattered again.
// `rough` is perceptual, see vk_alpha(). Facets that are not as wide in all directions:
// vk_Facets::albedo().
float vk_facetAlbedo(float cosine, float rough);
float vk_facetMean(float rough); // over the hemisphere, weighted by the cosine
float vk_glassAlbedo(float cosine, float rough, float eta);

class vk_Facets
{
public:
    // Widths along x and y; the larger, the rougher (see vk_alpha).
    vk_Facets(float alongX, float alongY) : myX(alongX), myY(alongY) {}

    // The perceptual roughness of facets that are as wide in all directions.
    float rough() const { return std::sqrt(std::sqrt(myX * myY)); }

    // As vk_facetAlbedo().
    float albedo(const vk_Vec &out) const;

    // Facets that face h, per solid angle and area of the surface. Written so
    // that it does not cancel for small widths.
    float density(const vk_Vec &h) const
    {
        const float xy = myX * myY;
        const float width = h.x * h.x * myY / myX + h.y * h.y * myX / myY + xy * h.z * h.z;
        return xy / (VK_PI * width * width);
    }

    // Share of the facets seen from `out` that are there to be seen: G1.
    float visible(const vk_Vec &out) const { return 2 * out.z / (out.z + smith(out)); }

    // Seen from both directions, over 4 times both cosines: G2 / (4 cos cos).
    float shared(const vk_Vec &a, const vk_Vec &b) const
    {
        return .5f / (b.z * smith(a) + a.z * smith(b));
    }

    // A facet drawn as often as it is seen from `out`: density is
    // density(h) * visible(out) * dot(out, h) / out.z. Light between facets may also come
    // from below, with out.z < 0.
    vk_Vec sample(const vk_Vec &out, const vk_Square &at) const;

private:
    float smith(const vk_Vec &v) const
    {
        const float x = myX * v.x, y = myY * v.y;
        return std::sqrt(x * x + y * y + v.z * v.z);
    }
    float myX, myY;
};
