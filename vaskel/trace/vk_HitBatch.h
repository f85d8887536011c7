// Hits whose surfaces are asked what they are made of: each surface once for all hits on it.
#pragma once

#include "vaskel/trace/vk_World.h"

#include <vector>

class vk_HitBatch
{
public:
    void clear();

    // One more, to be filled in before the next; and takes the last one back.
    vk_Hit &add();
    void dropLast() { --mySize; }
    std::size_t size() const { return mySize; }

    // Asks, for paths or for shadows (see vk_SurfaceShader).
    void shade();
    void shadeForShadows();

    // Once that is done, in the order in which surfaces were asked: a hit, its material, and
    // its index in the order of add().
    const vk_Hit &hit(std::size_t i) const { return myHits[myOrder[i]]; }
    const vk_Material &material(std::size_t i) const { return myMaterials[i]; }
    vk_Material &material(std::size_t i) { return myMaterials[i]; }
    std::uint64_t cost(std::size_t i) const { return myCosts[i]; } // of asking (vk_Work)
    std::size_t index(std::size_t i) const { return myOrder[i]; }

private:
    void sort();
    template <class Ask>
    void askEach(Ask ask);

    // Never shrinks: to set up hits anew, only to be filled in, takes as long as to fill them in.
    std::vector<vk_Hit> myHits;
    std::size_t mySize = 0; // of them are there
    std::vector<std::size_t> myOrder;
    std::vector<const vk_SurfaceShader *> mySurfaces;
    std::vector<vk_SurfacePoint> myPoints; // in order,
    std::vector<vk_Material> myMaterials;  // as these,
    std::vector<std::uint64_t> myCosts;    // and these
};
