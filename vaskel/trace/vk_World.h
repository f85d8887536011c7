// The geometry of a scene, ready for rays: the shapes as meshes in Embree, the
// floor as a plane.
//
// After construction all operations are const and may be called from any
// number of threads.
#pragma once

#include "vaskel/scene/vk_Scene.h"

#include <limits>
#include <memory>
#include <string>

struct vk_Hit {
    float distance = 0;
    vk_Vec position;
    vk_Vec facet;          // unit normal of the geometry, to the ray's side
    vk_Vec normal;         // unit, smooth, to the ray's side
    vk_SurfacePoint point; // for the surface shader
    const vk_SurfaceShader *surface = nullptr;
    bool isFloor = false;
    bool inside = false;              // the ray met the back of a shape
    unsigned shape = 0, triangle = 0; // of the world's

    // Where rays start that leave to a direction: off the surface, on that side.
    vk_Vec start(const vk_Vec &direction) const
    {
        // Floats near the position are this far apart, with a margin for the
        // rounding of the intersection itself.
        const float size =
            vk_largest({std::abs(position.x), std::abs(position.y), std::abs(position.z)});
        // Past the floor, so far that it is not met again.
        if (isFloor && direction.y < 0)
            return position - vk_Vec{0, 2 * TOUCHING * (1 + size), 0};
        const float off = 1e-5f * std::max(size, 1.0f) + 1e-5f * distance;
        return position + facet * (vk_dot(facet, direction) < 0 ? -off : off);
    }

    // More than start() moves rays off shapes nearby.
    static constexpr float TOUCHING = 5e-5f;
};

// A way to look along.
struct vk_Segment {
    vk_Vec origin, direction; // unit
    float distance = 0;
};

class vk_World
{
public:
    // Keeps a reference to the scene.
    explicit vk_World(const vk_Scene &scene);
    ~vk_World();
    vk_World(const vk_World &) = delete;
    vk_World &operator=(const vk_World &) = delete;

    // Why there is no world to look at, when Embree failed; else "".
    const std::string &error() const { return myError; }

    // The first thing that a ray meets within a length; false when it meets nothing.
    bool intersect(const vk_Vec &origin, const vk_Vec &direction, vk_Hit &hit,
                   float length = std::numeric_limits<float>::infinity()) const;

    // Direction in which u grows at a hit, of no certain length; (1 0 0) on the floor.
    vk_Vec along(const vk_Hit &hit) const;

    // Whether light may pass through a shape, as through glass.
    bool hasGlass() const { return myHasGlass; }

    // Of all meshes.
    std::size_t corners() const;

    // How many times as long rays take as with meshes of few corners.
    float rayCost() const;

    // Of a ball around all shapes.
    float diameter() const { return 2 * myBall.radius; }

    // Whether something lies on the way.
    bool occluded(const vk_Segment &way) const;

private:
    struct Shape;
    struct Embree;

    // False, with an infinite distance, when the floor is not on the way.
    bool meetFloor(const vk_Vec &origin, const vk_Vec &direction, float &distance) const;
    // Most rays of a small scene miss all shapes; this is cheaper than asking Embree.
    bool mayMeetShapes(const vk_Vec &origin, const vk_Vec &direction) const
    {
        return !myShapes.empty() && myBall.mayMeet(origin, direction);
    }
    void encloseShapes();
    void describeGeometry(const vk_Vec &direction, vk_Hit &hit) const;
    void describeShape(unsigned geometry, unsigned quad, float u, float v, vk_Hit &hit) const;

    const vk_Scene &myScene;
    std::vector<std::unique_ptr<Shape>> myShapes; // by Embree's geometry number
    std::unique_ptr<Embree> myEmbree;
    float myPixel;  // how wide one is, at a distance of 1 from the camera
    vk_Ball myBall; // around all shapes
    bool myHasGlass = false;
    std::string myError;
};
