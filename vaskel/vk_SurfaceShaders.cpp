#include "vaskel/vk_SurfaceShaders.h"

#include "vaskel/vk_GlassShaders.h"
#include "vaskel/vk_MetalShaders.h"
#include "vaskel/vk_Microfacet.h"
#include "vaskel/vk_SoftShaders.h"

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
    vk_Material material;
    material.diffuse = p.vec(PLASTIC_DIFF);
    material.edge = p.vec(PLASTIC_SPEC);
    material.specular = material.edge * vk_straightReflectance(p.number(PLASTIC_IOR));
    material.rough = p.number(PLASTIC_ROUGH);
    return material;
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

enum { CHECKER_DIFF1, CHECKER_DIFF2, CHECKER_SIZE, CHECKER_SPEC, CHECKER_ROUGH };
constexpr vk_Param CHECKER[] = {
    {"diff1", VK_COLOUR, {.42f, .42f, .42f}, 0, 1, "colour of one half of the checks"},
    {"diff2", VK_COLOUR, {.24f, .24f, .24f}, 0, 1, "colour of the other half"},
    {"size", VK_NUMBER, {.5f, 0, 0}, .001f, 1000, "edge of a check, in scene lengths"},
    {"spec", VK_COLOUR, {0, 0, 0}, 0, 1, "how much of a coat there is"},
    {"rough", VK_NUMBER, {.3f, 0, 0}, 0, 1, "roughness of the coat"},
};

vk_Material checker(const vk_Values &p, const vk_SurfacePoint &point)
{
    // The small shift keeps a floor at y = 0 off the planes between checks.
    const vk_Vec at = point.position * (1 / p.number(CHECKER_SIZE)) + vk_grey(1e-3f);
    const float cells = std::floor(at.x) + std::floor(at.y) + std::floor(at.z);
    const bool odd = std::fmod(cells, 2.0f) != 0;
    vk_Material material;
    material.diffuse = p.vec(odd ? CHECKER_DIFF2 : CHECKER_DIFF1);
    material.edge = p.vec(CHECKER_SPEC);
    material.specular = material.edge * vk_straightReflectance(1.5f);
    material.rough = p.number(CHECKER_ROUGH);
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
    {"v_checker", "checks of two colours in space", CHECKER, checker},
};
static_assert(std::size(PLASTIC) == PLASTIC_IOR + 1 && std::size(MATTE) == MATTE_DIFF + 1 &&
              std::size(CONSTANT) == CONSTANT_COLOR + 1 && std::size(CHECKER) == CHECKER_ROUGH + 1);
} // namespace

const vk_ShaderTable<vk_SurfaceFunction> VK_SURFACE_SHADERS = {"surface", ROWS, std::size(ROWS)};
