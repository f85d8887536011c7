#include "vaskel/shaders/vk_GlassShaders.h"

#include <iterator>

namespace
{
enum { COLOR, TINT, IOR, ROUGH, COUNT };
constexpr vk_Param COLOR_ROW = {"color", VK_COLOUR, {1, 1, 1},
                                0,       1,         "share that the surface lets pass"};
constexpr vk_Param IOR_ROW = {"ior", VK_NUMBER, {1.5f, 0, 0},
                              1,     4,         "index of refraction; clamped to at least 1.01"};
constexpr const char *TINT_MEANING =
    "share that is left after one length; clamped to at least .001";

float absorption(float tint)
{
    return -std::log(std::max(tint, .001f));
}
} // namespace

const vk_Param VK_GLASS[] = {
    COLOR_ROW,
    {"tint", VK_COLOUR, {.93f, .97f, .95f}, 0, 1, TINT_MEANING},
    IOR_ROW,
};
const vk_Param VK_FROSTED[] = {
    COLOR_ROW,
    {"tint", VK_COLOUR, {.93f, .97f, .95f}, 0, 1, TINT_MEANING},
    IOR_ROW,
    {"rough", VK_NUMBER, {.45f, 0, 0}, 0, 1, "roughness, 0 is clear"},
};
static_assert(std::size(VK_GLASS) == ROUGH && std::size(VK_FROSTED) == COUNT);

vk_Material vk_glass(const vk_Values &p, const vk_SurfacePoint &)
{
    vk_Material material;
    const vk_Vec &tint = p.vec(TINT);
    material.clear = p.vec(COLOR);
    material.absorbs = {absorption(tint.x), absorption(tint.y), absorption(tint.z)};
    material.ior = std::max(p.number(IOR), 1.01f);
    material.rough = 0;
    return material;
}

vk_Material vk_frosted(const vk_Values &p, const vk_SurfacePoint &point)
{
    vk_Material material = vk_glass(p, point);
    material.rough = p.number(ROUGH);
    return material;
}
