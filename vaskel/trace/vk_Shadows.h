// What shapes leave of light on its way: shadow rays, and glass that they pass straight
// through. How much that is the scene's shadow shader says.
//
// Rays are cast many at a time, so that each surface on their ways is asked once.
#pragma once

#include "vaskel/trace/vk_HitBatch.h"
#include "vaskel/trace/vk_NextEvent.h"

// From a point to a light, and what was found on the way.
struct vk_ShadowRay {
    vk_Segment way;
    bool isOccluded = false;
    vk_Colour passes = {1, 1, 1};    // of what is in the shadow: through all shapes
    vk_Between between = VK_NOTHING; // the worst of them
    int cost = 0;                    // rays that it took
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

    // Finds out.
    void cast(vk_ShadowRay *rays, std::size_t count) const;

    // Whether something lies on one way, whatever may come through it.
    bool isOccluded(const vk_Segment &way) const;

private:
    void passThrough(std::vector<vk_ShadowRay *> &inside) const;
    bool cross(vk_ShadowRay &ray, const vk_Hit &hit, const vk_Material &material) const;
    vk_Colour ofSurface(const vk_Hit &hit, const vk_Material &material,
                        const vk_Vec &direction) const;

    const vk_World &myWorld;
    vk_Shadow myShadow;
    bool myCasts;
    bool myAreTransparent;
};
