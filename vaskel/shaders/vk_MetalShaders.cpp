#include "vaskel/shaders/vk_MetalShaders.h"

#include "vaskel/base/vk_Noise.h"
#include "vaskel/base/vk_Sampler.h"
#include "vaskel/shaders/vk_GlassShaders.h"

#include <iterator>
#include <limits>

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
    // From half a cell back, so that the place is at least half a cell inside of the eight.
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
    // Hashed again, as the first one's bits say where the point lies.
    return vk_hash(nearest);
}

struct Metal final : vk_Pointwise<Metal> {
    vk_Colour color = {.91f, .92f, .92f};
    // At grazing angles every metal reflects all light, whatever its colour.
    vk_Colour edge = vk_grey(1);
    float rough = .25f;

    void describe(vk_ParamList &list) override
    {
        list.colour("color", color, 0, 1, "reflectance straight on, or a metal's name");
        list.colour("edge", edge, 0, 1, "reflectance at grazing angles");
        list.number("rough", rough, 0, 1, "roughness, 0 is a mirror");
    }
    vk_Material at(const vk_SurfacePoint &) const
    {
        vk_Material material;
        material.specular = color;
        material.edge = edge;
        material.rough = rough;
        return material;
    }
};

struct Brushed final : vk_Pointwise<Brushed> {
    vk_Colour color = {.91f, .92f, .92f};
    vk_Colour edge = vk_grey(1);
    float rough = .4f;
    float brushed = .9f;

    void describe(vk_ParamList &list) override
    {
        list.colour("color", color, 0, 1, "reflectance straight on, or a metal's name");
        list.colour("edge", edge, 0, 1, "reflectance at grazing angles");
        list.number("rough", rough, 0, 1, "roughness");
        list.number("brushed", brushed, 0, 1, "how much the scratches have one direction");
    }
    vk_Material at(const vk_SurfacePoint &) const
    {
        vk_Material material;
        material.specular = color;
        material.edge = edge;
        material.rough = rough;
        material.brushed = brushed;
        return material;
    }
};

struct CarPaint final : vk_Pointwise<CarPaint> {
    vk_Colour color = {.02f, .06f, .3f};
    vk_Colour flake = {.25f, .4f, .85f};
    float flakes = .5f;
    float size = .016f;
    float spread = .2f;
    float coat = 1;

    void describe(vk_ParamList &list) override
    {
        list.colour("color", color, 0, 1, "colour of the ground");
        list.colour("flake", flake, 0, 1, "reflectance of the flakes");
        list.number("flakes", flakes, 0, 1, "how much of the surface they cover");
        list.number("size", size, .001f, 10, "width of a flake");
        list.number("spread", spread, 0, 1, "how far they lean to all sides");
        list.number("coat", coat, 0, 1, "how much of a lacquer there is");
    }
    vk_Material at(const vk_SurfacePoint &point) const
    {
        vk_Material material;
        material.diffuse = color;
        material.coat = coat;
        // Sprayed lacquer is not quite a mirror.
        material.coatRough = .05f;
        // By the place in the shape's own space: flakes stay where they are when it is moved.
        const std::uint32_t hash = flakeAt(point.position * (1 / size));
        // A real flake is nearly a mirror, but far finer: each of these stands for many.
        material.rough = .45f;
        material.specular = material.edge = flake * .4f; // of flakes further down
        // A hash of its own, so that how many flakes there are does not turn those that stay.
        if (part(vk_hash(hash), 0) >= flakes)
            return material;
        // To all sides alike, so that on average flakes face as the surface does.
        const vk_Vec to = vk_Vec{part(hash, 0), part(hash, 1), part(hash, 2)} * 2 - vk_grey(1);
        // Added to a normal of length 1: a spread of 1 leans flakes by some 45 degrees.
        material.tilt = to * spread;
        material.specular = material.edge = flake;
        return material;
    }
};

constexpr vk_ShaderRow<vk_SurfaceShader> ROWS[] = {
    vk_row<Metal>("v_metal", "bare metal"),
    vk_row<Brushed>("v_brushed", "metal with scratches along u"),
    vk_row<CarPaint>("v_carpaint", "flakes in a coloured ground under lacquer"),
};
} // namespace

const vk_ShaderTable<vk_SurfaceShader> VK_METAL_SHADERS = {"surface", ROWS, std::size(ROWS),
                                                           &VK_GLASS_SHADERS};
