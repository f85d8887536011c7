#include "vaskel/shaders/vk_EnvironmentShaders.h"

#include <iterator>

namespace
{
enum { STUDIO_TOP, STUDIO_HORIZON, STUDIO_GROUND, STUDIO_INTENSITY };
constexpr vk_Param STUDIO[] = {
    {"top", VK_COLOUR, {.11f, .125f, .15f}, 0, 1000, "colour overhead"},
    {"horizon", VK_COLOUR, {.40f, .40f, .395f}, 0, 1000, "colour at the horizon"},
    {"ground", VK_COLOUR, {.08f, .076f, .072f}, 0, 1000, "colour below"},
    {"intensity", VK_NUMBER, {1, 0, 0}, 0, 1000, "a factor for all three"},
};

vk_Colour studio(const vk_Values &p, const vk_Vec &direction)
{
    const float up = direction.y;
    const vk_Colour sky =
        vk_mix(p.vec(STUDIO_HORIZON), p.vec(STUDIO_TOP), vk_smoothStep(-.1f, .8f, up));
    const float below = vk_smoothStep(.02f, -.25f, up);
    return vk_mix(sky, p.vec(STUDIO_GROUND), below) * p.number(STUDIO_INTENSITY);
}

constexpr vk_ShaderRow<vk_EnvironmentFunction> ENVIRONMENT_ROWS[] = {
    {"v_studio", "a soft sky with a horizon", STUDIO, studio},
};

static_assert(std::size(STUDIO) == STUDIO_INTENSITY + 1);
} // namespace

const vk_ShaderTable<vk_EnvironmentFunction> VK_ENVIRONMENT_SHADERS = {
    "environment", ENVIRONMENT_ROWS, std::size(ENVIRONMENT_ROWS)};
