#include "vaskel/trace/vk_Shadows.h"

#include "vaskel/base/vk_Stats.h"

namespace
{
constexpr int MOST_LAYERS = 8; // that light passes
constexpr float DARK = 1e-3f;  // a share that is not worth going on

vk_Between betweenOf(const vk_Material &material)
{
    if (!material.isClear())
        return VK_OTHER_SHAPES;
    return material.isSmoothGlass() ? VK_SMOOTH_GLASS : VK_ROUGH_GLASS;
}

void block(vk_ShadowRay &ray)
{
    ray.passes = ray.by = {};
    ray.between = VK_OTHER_SHAPES;
}
} // namespace

vk_Shadows::vk_Shadows(const vk_Scene &scene, const vk_World &world)
    : myWorld(world), myShadow(scene.shadow->shadow()), myCasts(!(myShadow.left == vk_grey(1))),
      myAreTransparent(world.hasGlass() || myShadow.tint > 0)
{
}

bool vk_Shadows::isOccluded(const vk_Segment &way) const
{
    if (!myCasts)
        return false;
    vk_myWork.countShadowRays(1);
    return myWorld.occluded(way);
}

void vk_Shadows::cast(vk_ShadowRay *rays, std::size_t count) const
{
    if (!myCasts)
        return;
    // Most ways are free, and whether they are is asked for less than what lies there.
    std::vector<vk_ShadowRay *> occluded;
    for (std::size_t i = 0; i < count; ++i) {
        vk_ShadowRay &ray = rays[i];
        // It stays so where light comes through: what shadows leave counts for such ways too.
        ray.isOccluded = isOccluded(ray.way);
        ray.cost += vk_Work::SHADOW_RAY;
        if (ray.isOccluded)
            occluded.push_back(&ray);
    }
    // Takes those off the list that light comes through.
    if (myAreTransparent)
        passThrough(occluded);
    for (vk_ShadowRay *const ray : occluded)
        block(*ray);
}

// Straight through all that lies on the ways, layer by layer. Leaves those on the list that
// do not come through.
void vk_Shadows::passThrough(std::vector<vk_ShadowRay *> &open) const
{
    std::vector<vk_ShadowRay *> met;
    vk_HitBatch hits;
    // Once more than that: behind the last one that it passes a way must be free.
    for (int layer = 0; layer <= MOST_LAYERS && !open.empty(); ++layer) {
        met.clear();
        hits.clear();
        for (vk_ShadowRay *const ray : open) {
            const vk_Segment &way = ray->way;
            ray->cost += vk_Work::SHADOW_RAY;
            // A way that meets nothing more has come to its light, and keeps what it has.
            if (myWorld.intersect(way.origin, way.direction, hits.add(), way.distance))
                met.push_back(ray);
            else
                hits.dropLast();
        }
        vk_myWork.countShadowRays(open.size());
        hits.shadeForShadows();
        open.clear();
        for (std::size_t i = 0; i < hits.size(); ++i) {
            vk_ShadowRay &ray = *met[hits.index(i)];
            ray.cost += hits.cost(i);
            if (cross(ray, hits.hit(i), hits.material(i)))
                open.push_back(&ray);
        }
    }
}

// Past one surface. False when next to nothing comes through.
bool vk_Shadows::cross(vk_ShadowRay &ray, const vk_Hit &hit, const vk_Material &material) const
{
    // One surface that bends or stops a path's ray is enough to keep it from the light.
    ray.between = std::max(ray.between, betweenOf(material));
    ray.by = ray.by * material.passesBy;
    ray.passes = ray.passes * (material.passesBy + through(hit, material, ray.way.direction));
    if (vk_largest(ray.passes) < DARK) {
        block(ray);
        return false;
    }
    // On from behind the surface, and no further than to the light.
    ray.way.distance -= hit.distance;
    ray.way.origin = hit.start(ray.way.direction);
    return true;
}

// What comes straight through a surface, and the glass in front of it.
vk_Colour vk_Shadows::through(const vk_Hit &hit, const vk_Material &material,
                              const vk_Vec &direction) const
{
    if (!material.isClear())
        return material.diffuse * (myShadow.tint * material.presence);
    // Normals are to the ray's side, against its direction.
    const float cosine = std::abs(vk_dot(hit.normal, direction));
    // From the surface in front, or from where the way begins within the glass.
    const float length = hit.inside ? hit.distance : 0;
    return material.absorbed(length) * material.passesStraight(cosine) *
           (myShadow.filter * material.presence);
}
