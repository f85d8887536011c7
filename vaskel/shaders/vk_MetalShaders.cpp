#include "vaskel/shaders/vk_MetalShaders.h"

#include "vaskel/base/vk_Noise.h"
#include "vaskel/base/vk_Sampler.h"

#include <iterator>
#include <limits>

enum { METAL_COLOR, METAL_EDGE, METAL_ROUGH, METAL_COUNT };
const vk_Param VK_METAL[] = {
    {"color", VK_COLOUR, {.91f, .92f, .92f}, 0, 1, "reflectance straight on, or a metal's name"},
    {"edge", VK_COLOUR, {1, 1, 1}, 0, 1, "reflectance at grazing angles"},
    {"rough", VK_NUMBER, {.25f, 0, 0}, 0, 1, "roughness, 0 is a mirror"},
};

vk_Material vk_metal(const vk_Values &p, const vk_SurfacePoint &)
{
    vk_Material material;
    material.specular = p.vec(METAL_COLOR);
    material.edge = p.vec(METAL_EDGE);
    material.rough = p.number(METAL_ROUGH);
    return material;
}

enum { BRUSHED_COLOR, BRUSHED_EDGE, BRUSHED_ROUGH, BRUSHED_BRUSHED, BRUSHED_COUNT };
const vk_Param VK_BRUSHED[] = {
    {"color", VK_COLOUR, {.91f, .92f, .92f}, 0, 1, "reflectance straight on, or a metal's name"},
    {"edge", VK_COLOUR, {1, 1, 1}, 0, 1, "reflectance at grazing angles"},
    {"rough", VK_NUMBER, {.4f, 0, 0}, 0, 1, "roughness"},
    {"brushed", VK_NUMBER, {.9f, 0, 0}, 0, 1, "how much the scratches have one direction"},
};

vk_Material vk_brushed(const vk_Values &p, const vk_SurfacePoint &point)
{
    vk_Material material = vk_metal(p, point);
    material.brushed = p.number(BRUSHED_BRUSHED);
    return material;
}
static_assert(int(BRUSHED_ROUGH) == int(METAL_ROUGH), "brushed metal begins like metal");

enum { PAINT_COLOR, PAINT_FLAKE, PAINT_FLAKES, PAINT_SIZE, PAINT_SPREAD, PAINT_COAT, PAINT_COUNT };
const vk_Param VK_CARPAINT[] = {
    {"color", VK_COLOUR, {.02f, .06f, .3f}, 0, 1, "colour of the ground"},
    {"flake", VK_COLOUR, {.25f, .4f, .85f}, 0, 1, "reflectance of the flakes"},
    {"flakes", VK_NUMBER, {.5f, 0, 0}, 0, 1, "how much of the surface they cover"},
    {"size", VK_NUMBER, {.016f, 0, 0}, .001f, 10, "width of a flake"},
    {"spread", VK_NUMBER, {.2f, 0, 0}, 0, 1, "how far they lean to all sides"},
    {"coat", VK_NUMBER, {1, 0, 0}, 0, 1, "how much of a lacquer there is"},
};

namespace
{
// Ten bits of a hash as a number from 0 to 1.
float part(std::uint32_t hash, int which)
{
    return static_cast<float>((hash >> (10 * which)) & 1023) / 1023;
}

// The hash of the nearest of the points that are scattered one to each cell. Only
// the eight cells around are asked; that misses few points and shows in none.
std::uint32_t flakeAt(const vk_Vec &place)
{
    const vk_Vec at = vk_within(place);
    const vk_Vec low = {std::floor(at.x - .5f), std::floor(at.y - .5f), std::floor(at.z - .5f)};
    const int x = static_cast<int>(low.x), y = static_cast<int>(low.y);
    const int z = static_cast<int>(low.z);
    float least = std::numeric_limits<float>::max();
    std::uint32_t nearest = 0;
    for (int i = 0; i < 8; ++i) {
        const vk_Vec cell = low + vk_Vec{float(i & 1), float(i >> 1 & 1), float(i >> 2)};
        const std::uint32_t hash = vk_hashOf(x + (i & 1), y + (i >> 1 & 1), z + (i >> 2));
        const vk_Vec off = cell + vk_Vec{part(hash, 0), part(hash, 1), part(hash, 2)} - at;
        const float distance2 = vk_dot(off, off);
        if (distance2 < least) {
            least = distance2;
            nearest = hash;
        }
    }
    return vk_hash(nearest);
}
} // namespace

vk_Material vk_carpaint(const vk_Values &p, const vk_SurfacePoint &point)
{
    vk_Material material;
    material.diffuse = p.vec(PAINT_COLOR);
    material.coat = p.number(PAINT_COAT);
    material.coatRough = .05f;
    const std::uint32_t flake = flakeAt(point.position * (1 / p.number(PAINT_SIZE)));
    material.rough = .45f;
    material.specular = material.edge = p.vec(PAINT_FLAKE) * .4f; // of flakes further down
    if (part(vk_hash(flake), 0) >= p.number(PAINT_FLAKES))
        return material;
    const vk_Vec to = vk_Vec{part(flake, 0), part(flake, 1), part(flake, 2)} * 2 - vk_grey(1);
    material.lean = to * p.number(PAINT_SPREAD);
    material.specular = material.edge = p.vec(PAINT_FLAKE);
    return material;
}

static_assert(std::size(VK_METAL) == METAL_COUNT && std::size(VK_BRUSHED) == BRUSHED_COUNT &&
              std::size(VK_CARPAINT) == PAINT_COUNT);
