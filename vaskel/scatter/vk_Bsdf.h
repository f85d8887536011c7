// How a material scatters light at one point, seen from one direction.
//
// Directions are unit vectors that point away from the surface. The parts of a
// material (vk_Material.h) after their sources:
//
//   coat, boundary, glass   microfacets, see vk_Microfacet.h
//   sheen                   see vk_Sheen.h
//   base                    the energy that the boundary lets through, spread evenly
//                           and reciprocally: Ashikhmin and Shirley, "An Anisotropic
//                           Phong BRDF Model", 2000; without a boundary Lambert's
//
// All are symmetric in the two directions but for compensation(), glass after division by the
// square of the index of refraction on the light's side. None sends on more
// than arrives, and metal and glass that are white send on all of it. What lies below coat or sheen
// gets what these do not reflect, on the way in and on the way out.
#pragma once

#include "vaskel/scatter/vk_Material.h"
#include "vaskel/scatter/vk_Microfacet.h"

#include <optional>

// What reaches the viewer by way of the coat, the boundary and the glass (specular),
// and by way of the base and the sheen (diffuse).
struct vk_Scattered {
    vk_Colour specular, diffuse;

    vk_Colour sum() const { return specular + diffuse; }
};

class vk_Bsdf
{
public:
    // Keeps a reference to the material. A split one draws its directions once for
    // each of two rounds, specular and diffuse (for glass reflected and refracted),
    // instead of one of them by chance; a diffuse one twice. Densities are then those of both
    // samples together. `along` is where u grows, needed where a material is brushed.
    // `inside` says that the viewer looks from within glass.
    // REQUIRES: dot(normal, out) > 0
    vk_Bsdf(const vk_Material &material, const vk_Vec &normal, const vk_Vec &out, bool split,
            const vk_Vec &along = {}, bool inside = false);

    // How many samples are to be drawn: 2 when it is split, but for one of specular parts alone.
    int rounds() const { return myRounds; }
    // Whether both draw from the same parts.
    bool repeats() const { return myRepeats; }

    vk_Vec mirror() const;

    // About the highest density that evaluate() gives.
    float peakPdf() const;

    // What is added for light that facets scatter more than once, as a factor to what they
    // scatter once. It knows the viewer's direction only. Metal that is not brushed gets
    // half of it in this way.
    vk_Colour compensation() const { return myCompensation; }

    // Whether it has a base or a sheen.
    bool isDiffuse() const { return myShare[SHEEN] > 0 || myShare[BASE] > 0; }
    // Above which evaluate() gives something, but for glass.
    const vk_Vec &normal() const { return myTop.normal; }
    bool isGlass() const { return myIsGlass; }
    bool isSmoothGlass() const { return myIsGlass && myMaterial.isSmoothGlass(); }

    // Reflected or refracted radiance per irradiance from `in`, times the cosine
    // there; and the density, per solid angle, with which sample() draws it. Both
    // are 0 below a surface that is not glass.
    vk_Scattered evaluate(const vk_Vec &in, float &density) const;

    // A direction drawn roughly as much as it scatters, the specular parts' for round
    // 0 and the diffuse ones' for round 1 when they are split. May be one from where nothing
    // arrives, with density 0. `choice`, from 0 to 1, decides between what glass
    // reflects and refracts when it is not split.
    vk_Vec sample(const vk_Square &at, int round = 0, float choice = 0) const;

private:
    enum Part { COAT, BOUNDARY, MULTIPLE, SHEEN, BASE, PARTS };

    void compensate();
    void share(bool split);
    vk_Colour fresnel(float cosine) const;
    vk_Colour base(float cosIn) const;
    float below(float cosine) const;
    const vk_Frame &bottom() const { return myTilted ? *myTilted : myTop; }
    // Apart from plain surfaces, whose evaluate() then needs no room on the stack.
    [[gnu::noinline]] vk_Scattered evaluateLayers(const vk_Vec &in, float &density) const;
    [[gnu::noinline]] vk_Scattered evaluateGlass(const vk_Vec &in, float &density) const;
    vk_Scattered evaluateTop(const vk_Vec &in, float &density) const;
    void addBoundary(const vk_Vec &in, float left, vk_Scattered &scattered, float &density) const;
    void addBase(float cosine, float left, vk_Scattered &scattered, float &density) const;
    vk_Vec sampleGlass(const vk_Square &at, int round, float choice) const;
    vk_Vec samplePart(Part part, const vk_Square &at) const;

    const vk_Material &myMaterial;
    bool myIsGlass;
    bool myHasBoundary;
    bool myIsPlain = false;           // has a boundary and a base at most, around the same normal
    vk_Frame myTop;                   // of the coat and the sheen, and of what lies below
    std::optional<vk_Frame> myTilted; // unless that is turned: of that
    vk_Vec myOut;                     // in myTop
    vk_Vec myLower;                   // in bottom()
    vk_Facets myFacets, myCoat;
    float myEta; // glass: index of the far side over the near side
    vk_Colour myCompensation = {1, 1, 1};
    vk_Colour myMultiple; // of metal: what arrives and is lost when facets scatter it once
    float myLost = 0;     // what of it the wide lobe gets, for the viewer's direction;
    float myMeanLost = 1; // all of it, for all directions
    float myPassed = 1;   // share that the boundary lets pass on the way out, before a factor,
    float myBelow = 1;    // and that coat and sheen leave on the way out
    int myRounds = 1;
    bool myRepeats = false;
    float myShare[PARTS] = {}; // samples of each part
};
