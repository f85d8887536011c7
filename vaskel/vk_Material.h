// What a surface is made of at one point: the answer of a surface shader.
//
// A material is a base that scatters light evenly (diffuse) under a rough
// boundary that reflects it (specular and edge), plus light of its own. A
// dielectric's boundary reflects a few per cent straight on and everything at
// grazing angles; a metal has a coloured boundary and no base.
#pragma once

#include "vaskel/vk_Vec.h"

struct vk_Material {
    vk_Colour emission; // radiance
    vk_Colour diffuse;  // albedo of the base, 0 to 1
    vk_Colour specular; // reflectance straight on, 0 to 1
    vk_Colour edge;     // reflectance at grazing angles, 0 to 1; 0: no boundary
    float rough = 1;    // 0 to 1, perceptual; see vk_alpha()

    bool reflects() const { return vk_largest(diffuse) > 0 || vk_largest(edge) > 0; }
};

// Where a surface shader is asked.
struct vk_SurfacePoint {
    vk_Vec position; // in the shape's own space, before its transforms
    float u = 0, v = 0;
};

// The width of the distribution of microfacets: the square of the roughness
// (Burley, "Physically Based Shading at Disney", 2012), at least 0.001, where a
// reflection is as sharp as a mirror's.
inline float vk_alpha(float rough)
{
    return std::max(0.001f, rough * rough);
}
