#include "vaskel/shaders/vk_ShadowShaders.h"

#include <iterator>

namespace
{
enum { SHADOW_COLOR, SHADOW_FILTER, SHADOW_OWN };
constexpr vk_Param COLOR = {"color", VK_COLOUR, {0, 0, 0},
                            0,       1,         "what is left of the light in a full shadow"};
constexpr vk_Param FILTER = {"filter", VK_NUMBER, {1, 0, 0},
                             0,        1,         "how far glass lets light pass, in its colour"};

constexpr vk_Param RAY[] = {COLOR, FILTER};

vk_Shadow ray(const vk_Values &p)
{
    vk_Shadow shadow;
    shadow.left = p.vec(SHADOW_COLOR);
    shadow.filter = p.number(SHADOW_FILTER);
    return shadow;
}

enum { SOFT_SOFT = SHADOW_OWN };
constexpr vk_Param SOFT[] = {
    COLOR,
    FILTER,
    {"soft", VK_NUMBER, {2.5f, 0, 0}, 0, 10, "width of its edge: 0 is hard, 1 as lights have it"},
};

vk_Shadow soft(const vk_Values &p)
{
    vk_Shadow shadow = ray(p);
    shadow.soft = p.number(SOFT_SOFT);
    return shadow;
}

enum { STAIN_AMOUNT = SHADOW_OWN };
constexpr vk_Param STAIN[] = {
    COLOR,
    FILTER,
    {"amount", VK_NUMBER, {.6f, 0, 0}, 0, 1, "how far shapes let light pass, in their colour"},
};

vk_Shadow stained(const vk_Values &p)
{
    vk_Shadow shadow = ray(p);
    shadow.stain = p.number(STAIN_AMOUNT);
    return shadow;
}

vk_Shadow none(const vk_Values &)
{
    vk_Shadow shadow;
    shadow.left = vk_grey(1);
    return shadow;
}

constexpr vk_ShaderRow<vk_ShadowFunction> ROWS[] = {
    {"v_rayshadow", "shadows as lights cast them", RAY, ray},
    {"v_softshadow", "shadows with wider or with harder edges", SOFT, soft},
    {"v_filtershadow", "shadows in the colour of what casts them", STAIN, stained},
    {"v_noshadow", "lights shine through everything", {}, none},
};
static_assert(std::size(RAY) == SHADOW_OWN && std::size(SOFT) == SOFT_SOFT + 1 &&
              std::size(STAIN) == STAIN_AMOUNT + 1);
} // namespace

const vk_ShaderTable<vk_ShadowFunction> VK_SHADOW_SHADERS = {"shadow", ROWS, std::size(ROWS)};
