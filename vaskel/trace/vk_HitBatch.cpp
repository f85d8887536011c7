#include "vaskel/trace/vk_HitBatch.h"

#include "vaskel/base/vk_Stats.h"

#include <algorithm>

void vk_HitBatch::clear()
{
    // Hits stay, to be written over.
    mySize = 0;
    myOrder.clear();
    mySurfaces.clear();
    myPoints.clear();
}

vk_Hit &vk_HitBatch::add()
{
    if (mySize == myHits.size())
        myHits.emplace_back();
    return myHits[mySize++];
}

// In the order of each surface's first hit: results must not depend on addresses.
void vk_HitBatch::sort()
{
    for (std::size_t i = 0; i < size(); ++i)
        if (std::find(mySurfaces.begin(), mySurfaces.end(), myHits[i].surface) == mySurfaces.end())
            mySurfaces.push_back(myHits[i].surface);
    // Surfaces are so few that a walk for each costs less than sorting.
    for (const vk_SurfaceShader *const surface : mySurfaces)
        for (std::size_t i = 0; i < size(); ++i)
            if (myHits[i].surface == surface) {
                myOrder.push_back(i);
                // Copied, as shaders take points that lie side by side.
                myPoints.push_back(myHits[i].point);
            }
}

// ask(surface, points, materials, count) for each surface: a shader that has to set something up
// does so once a batch, and may work on several points at a time.
template <class Ask>
void vk_HitBatch::askEach(Ask ask)
{
    sort();
    // Shaders write all of a material, so what was there before need not be set up anew.
    myMaterials.resize(std::max(myMaterials.size(), size()));
    myCosts.resize(myMaterials.size());
    for (std::size_t begin = 0, end = 0; begin < size(); begin = end) {
        // After sort() all hits of a surface follow each other.
        const vk_SurfaceShader &surface = *hit(begin).surface;
        while (end < size() && hit(end).surface == &surface)
            ++end;
        const std::uint64_t before = vk_myWork.steps;
        ask(surface, &myPoints[begin], &myMaterials[begin], end - begin);
        // Programs tell what they took for all points together.
        const std::uint64_t each = (vk_myWork.steps - before) / (end - begin);
        std::fill(myCosts.begin() + static_cast<std::ptrdiff_t>(begin),
                  myCosts.begin() + static_cast<std::ptrdiff_t>(end), each);
    }
}

void vk_HitBatch::shade()
{
    askEach([](const vk_SurfaceShader &surface, const vk_SurfacePoint *points,
               vk_Material *materials,
               std::size_t count) { surface.shade(points, materials, count); });
}

void vk_HitBatch::shadeForShadows()
{
    askEach([](const vk_SurfaceShader &surface, const vk_SurfacePoint *points,
               vk_Material *materials,
               std::size_t count) { surface.shadeForShadows(points, materials, count); });
}
