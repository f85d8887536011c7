// What shapes leave of light on its way: shadow rays, which pass straight through glass as far
// as the scene's shadow shader says, and by what is there in part.
//
// Rays are cast many at a time, so that each surface on their ways is asked once.
#pragma once

#include "vaskel/trace/vk_HitBatch.h"
#include "vaskel/trace/vk_NextEvent.h"

// From a point to a light, and what was found on the way.
struct vk_ShadowRay {
    vk_Segment way; // what is left of it when it was cast
    bool isOccluded = false;
    vk_Colour passes = {1, 1, 1};    // of what is in the shadow: through all shapes
    vk_Colour by = {1, 1, 1};        // of that, what passes by all of them
    vk_Between between = VK_NOTHING; // the worst of them
    std::uint64_t cost = 0;          // (vk_Work)
};

class vk_Shadows
{
public:
    // Keeps references to both.
    vk_Shadows(const vk_Scene &scene, const vk_World &world);

    // How shadows are aimed and dimmed: see doc/scene.md.
    const vk_Shadow &shadow() const { return myShadow; }

    // Whether light may come through shapes.
    bool areTransparent() const { return myAreTransparent; }

    // Fills in what is on the ways of rays.
    void cast(vk_ShadowRay *rays, std::size_t count) const;

    // Whether something lies on one way, whatever may come through it.
    bool isOccluded(const vk_Segment &way) const;

private:
    void passThrough(std::vector<vk_ShadowRay *> &open) const;
    bool cross(vk_ShadowRay &ray, const vk_Hit &hit, const vk_Material &material) const;
    vk_Colour through(const vk_Hit &hit, const vk_Material &material,
                      const vk_Vec &direction) const;

    const vk_World &myWorld;
    vk_Shadow myShadow;
    bool myCasts;
    bool myAreTransparent;
};
