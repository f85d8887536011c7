// What a surface is made of at one point: the answer of a surface shader.
//
// From the outside in, each part only where its colour is not 0:
//
//   coat       a clear lacquer over all (coat)
//   sheen      the gleam of a cloth's fibres (sheen)
//   boundary   reflects (specular and edge): a dielectric's a few per cent straight
//              on and everything at grazing angles; a metal's is coloured, and nothing
//              lies below it
//   base       scatters evenly (diffuse); light may come out again some way from where
//              it went in (scatter)
//   clear      in place of boundary and base: glass (clear), which refracts
//
// plus light of its own (emission). A shader fills in what it needs; the rest is
// not there. All of it may be there in part, as lace is (presence, passesBy).
#pragma once

#include "vaskel/base/vk_Transform.h"

struct vk_Material {
    vk_Colour emission; // radiance
    vk_Colour diffuse;  // albedo of the base, 0 to 1
    vk_Colour specular; // reflectance straight on, 0 to 1
    vk_Colour edge;     // reflectance at grazing angles, 0 to 1; 0: no boundary
    float rough = 1;    // of the boundary or the glass, 0 to 1, perceptual; see vk_alpha()
    float brushed = 0;  // 0 to 1: how much rougher across u than along it

    float coat = 0; // how much of a lacquer (index of refraction 1.5), 0 to 1
    float coatRough = 0;
    vk_Vec tilt; // turns the normal of what lies below the coat, as flakes do

    vk_Colour sheen; // 0 to 1
    float sheenRough = 0;

    vk_Colour clear;   // share of light that passes the surface of glass, 0 to 1
    vk_Colour absorbs; // by the glass, per length
    float ior = 1.5f;  // index of refraction of the glass, not 1

    vk_Vec scatter; // how far light wanders below the surface, for red, green, blue; 0: not

    // A surface that is there in part: what light passes by, straight on, and how much there is
    // of all above but emission, which counts only where light passes by.
    float presence = 1;
    vk_Colour passesBy = {0, 0, 0};

    bool isClear() const { return vk_largest(clear) > 0; }
    bool isWhole() const { return vk_largest(passesBy) <= 0; }
    // Glass so smooth that it is not lit by lights: rays find what it shows of them.
    bool isSmoothGlass() const { return isClear() && rough < .02f; }
    // What passes straight through the surface of glass at a cosine to its normal, and
    // what is left of light after a length of glass (Beer and Lambert).
    vk_Colour passesStraight(float cosine) const;
    vk_Colour absorbed(float length) const { return vk_exp(absorbs * -length); }

    // About the largest share of light that it sends on.
    float reflectance() const
    {
        return isClear() || coat > 0 ? 1 : std::min(vk_largest(diffuse + edge + sheen), 1.0f);
    }
    bool reflects() const
    {
        return presence > 0 && (vk_largest(diffuse) > 0 || vk_largest(edge) > 0 || isClear() ||
                                vk_largest(sheen) > 0 || coat > 0);
    }
};

// Where a surface shader is asked.
struct vk_SurfacePoint {
    vk_Vec position; // in the shape's own space, before its transforms
    float u = 0, v = 0;

    // What only shaders know that say so (vk_SurfaceShader::usesGeometry), in the scene's
    // space. Normals are to the ray's side.
    vk_Vec place = {};
    vk_Vec normal = {0, 0, 1}, facet = {0, 0, 1};
    vk_Vec incoming = {0, 0, -1};          // the ray's direction
    vk_Vec dPdu = {}, dPdv = {};           // 0 where u and v do not tell
    float footprint = 0;                   // width of a pixel there
    const vk_Transform *toShape = nullptr; // null: the shape's space is the scene's
    bool isBack = false;                   // the ray met the back of a shape
};

// The width of the distribution of microfacets: the square of the roughness
// (Burley, "Physically Based Shading at Disney", 2012), at least 0.001, where a
// reflection is as sharp as a mirror's.
inline float vk_alpha(float rough)
{
    return std::max(0.001f, rough * rough);
}
