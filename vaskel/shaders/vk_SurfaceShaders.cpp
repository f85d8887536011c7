#include "vaskel/shaders/vk_SurfaceShaders.h"

#include "vaskel/scatter/vk_Microfacet.h"
#include "vaskel/shaders/vk_GlassShaders.h"
#include "vaskel/shaders/vk_MetalShaders.h"
#include "vaskel/shaders/vk_PatternShaders.h"
#include "vaskel/shaders/vk_SoftShaders.h"

#include <iterator>

namespace
{
enum { PLASTIC_DIFF, PLASTIC_SPEC, PLASTIC_ROUGH, PLASTIC_IOR };
constexpr vk_Param PLASTIC[] = {
    {"diff", VK_COLOUR, {.6f, .6f, .6f}, 0, 1, "colour of the base"},
    {"spec", VK_COLOUR, {1, 1, 1}, 0, 1, "how much of the coat there is"},
    {"rough", VK_NUMBER, {.2f, 0, 0}, 0, 1, "roughness of the coat, 0 is a mirror"},
    {"ior", VK_NUMBER, {1.5f, 0, 0}, 1, 4, "index of refraction of the coat"},
};

vk_Material plastic(const vk_Values &p, const vk_SurfacePoint &)
{
    return vk_coated(p.vec(PLASTIC_DIFF), p.vec(PLASTIC_SPEC), p.number(PLASTIC_ROUGH),
                     p.number(PLASTIC_IOR));
}

enum { MATTE_DIFF };
constexpr vk_Param MATTE[] = {
    {"diff", VK_COLOUR, {.5f, .5f, .5f}, 0, 1, "colour"},
};

vk_Material matte(const vk_Values &p, const vk_SurfacePoint &)
{
    vk_Material material;
    material.diffuse = p.vec(MATTE_DIFF);
    return material;
}

enum { CONSTANT_COLOR };
constexpr vk_Param CONSTANT[] = {
    {"color", VK_COLOUR, {.5f, .5f, .5f}, 0, 1000, "radiance, whatever the light"},
};

vk_Material constant(const vk_Values &p, const vk_SurfacePoint &)
{
    vk_Material material;
    material.emission = p.vec(CONSTANT_COLOR);
    return material;
}

constexpr vk_ShaderRow<vk_SurfaceFunction> ROWS[] = {
    {"v_plastic", "a coloured base under a clear coat", PLASTIC, plastic},
    {"v_matte", "scatters evenly, no highlight", MATTE, matte},
    {"v_metal", "bare metal", VK_METAL, vk_metal},
    {"v_brushed", "metal with scratches along u", VK_BRUSHED, vk_brushed},
    {"v_carpaint", "flakes in a coloured ground under lacquer", VK_CARPAINT, vk_carpaint},
    {"v_glass", "clear or tinted glass", VK_GLASS, vk_glass},
    {"v_frosted", "glass with a ground surface", VK_FROSTED, vk_frosted},
    {"v_velvet", "cloth whose fibres gleam at the rim", VK_VELVET, vk_velvet},
    {"v_skin", "light wanders below the surface, red the furthest", VK_SKIN, vk_translucent},
    {"v_wax", "light wanders deep below the surface", VK_WAX, vk_translucent},
    {"v_constant", "one flat colour that needs no light", CONSTANT, constant},
};
static_assert(std::size(PLASTIC) == PLASTIC_IOR + 1 && std::size(MATTE) == MATTE_DIFF + 1 &&
              std::size(CONSTANT) == CONSTANT_COLOR + 1);
} // namespace

vk_Material vk_coated(const vk_Colour &base, const vk_Colour &coat, float rough, float ior)
{
    vk_Material material;
    material.diffuse = base;
    material.edge = coat;
    material.specular = coat * vk_straightReflectance(ior);
    material.rough = rough;
    return material;
}

const vk_ShaderTable<vk_SurfaceFunction> VK_SURFACE_SHADERS = {"surface", ROWS, std::size(ROWS),
                                                               &VK_PATTERN_SHADERS};
