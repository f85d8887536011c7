#include "vaskel/shaders/vk_SoftShaders.h"

#include "vaskel/scatter/vk_Microfacet.h"
#include "vaskel/scatter/vk_Sheen.h"

#include <iterator>

enum { VELVET_DIFF, VELVET_SHEEN, VELVET_ROUGH, VELVET_COUNT };
const vk_Param VK_VELVET[] = {
    {"diff", VK_COLOUR, {.22f, .01f, .05f}, 0, 1, "colour of the ground"},
    {"sheen", VK_COLOUR, {.9f, .45f, .55f}, 0, 1, "colour of the fibres' gleam"},
    {"rough", VK_NUMBER, {.35f, 0, 0}, 0, 1, "how wide the gleam is; clamped to at least .2"},
};

vk_Material vk_velvet(const vk_Values &p, const vk_SurfacePoint &)
{
    vk_Material material;
    material.diffuse = p.vec(VELVET_DIFF);
    material.sheen = p.vec(VELVET_SHEEN);
    material.sheenRough = std::max(p.number(VELVET_ROUGH), VK_LEAST_SHEEN);
    return material;
}

enum { SKIN_DIFF, SKIN_SCATTER, SKIN_SPEC, SKIN_ROUGH, SKIN_COUNT };
const vk_Param VK_SKIN[] = {
    {"diff", VK_COLOUR, {.75f, .43f, .3f}, 0, 1, "colour"},
    {"scatter", VK_COLOUR, {.12f, .06f, .035f}, 0, 10, "how far light wanders, by colour"},
    {"spec", VK_COLOUR, {.8f, .8f, .8f}, 0, 1, "how much it shines"},
    {"rough", VK_NUMBER, {.42f, 0, 0}, 0, 1, "roughness"},
};
const vk_Param VK_WAX[] = {
    {"diff", VK_COLOUR, {.92f, .76f, .42f}, 0, 1, "colour"},
    {"scatter", VK_COLOUR, {.2f, .14f, .08f}, 0, 10, "how far light wanders, by colour"},
    {"spec", VK_COLOUR, {1, 1, 1}, 0, 1, "how much it shines"},
    {"rough", VK_NUMBER, {.35f, 0, 0}, 0, 1, "roughness"},
};

vk_Material vk_translucent(const vk_Values &p, const vk_SurfacePoint &)
{
    vk_Material material;
    material.diffuse = p.vec(SKIN_DIFF);
    material.scatter = p.vec(SKIN_SCATTER);
    material.edge = p.vec(SKIN_SPEC);
    material.specular = material.edge * vk_straightReflectance(1.4f);
    material.rough = p.number(SKIN_ROUGH);
    return material;
}

static_assert(std::size(VK_VELVET) == VELVET_COUNT && std::size(VK_SKIN) == SKIN_COUNT &&
              std::size(VK_WAX) == SKIN_COUNT);
