#include "vaskel/shaders/vk_FogShaders.h"

#include <iterator>

namespace
{
constexpr const char *COLOR = "share of the light that it scatters on";
constexpr const char *DENSITY = "light that it takes away per length";
constexpr const char *RADIUS = "of the ball around the origin that it fills";

enum { FOG_COLOR, FOG_DENSITY, FOG_RADIUS, FOG_OWN };
constexpr vk_Param EVEN[] = {
    {"color", VK_COLOUR, {.9f, .9f, .9f}, 0, 1, COLOR},
    {"density", VK_NUMBER, {.07f, 0, 0}, 0, 100, DENSITY},
    {"radius", VK_NUMBER, {8, 0, 0}, 0, 1000, RADIUS},
};

vk_Medium even(const vk_Values &p)
{
    vk_Medium medium;
    medium.extinction = p.number(FOG_DENSITY);
    medium.albedo = p.vec(FOG_COLOR);
    medium.radius = p.number(FOG_RADIUS);
    return medium;
}

enum { GROUND_HEIGHT = FOG_OWN };
constexpr vk_Param GROUND[] = {
    {"color", VK_COLOUR, {.9f, .9f, .9f}, 0, 1, COLOR},
    {"density", VK_NUMBER, {.45f, 0, 0}, 0, 100, "light that it takes away per length at y = 0"},
    {"radius", VK_NUMBER, {9, 0, 0}, 0, 1000, RADIUS},
    {"height", VK_NUMBER, {.35f, 0, 0}, .01f, 1000, "where it has thinned out to 37 %"},
};

vk_Medium ground(const vk_Values &p)
{
    vk_Medium medium = even(p);
    medium.height = p.number(GROUND_HEIGHT);
    return medium;
}

enum { LIT_FORWARD = FOG_OWN };
constexpr vk_Param LIT[] = {
    {"color", VK_COLOUR, {1, 1, 1}, 0, 1, COLOR},
    {"density", VK_NUMBER, {.1f, 0, 0}, 0, 100, DENSITY},
    {"radius", VK_NUMBER, {6, 0, 0}, 0, 1000, RADIUS},
    {"forward",
     VK_NUMBER,
     {.3f, 0, 0},
     -.9f,
     .9f,
     "0: light goes on to all sides, .9: straight on"},
};

vk_Medium lit(const vk_Values &p)
{
    vk_Medium medium = even(p);
    medium.forward = p.number(LIT_FORWARD);
    return medium;
}

constexpr vk_ShaderRow<vk_FogFunction> ROWS[] = {
    {"v_fog", "even fog that takes light and shadow", EVEN, even},
    {"v_groundfog", "fog that lies on the floor", GROUND, ground},
    {"v_litfog", "haze in which beams of light show", LIT, lit},
};
static_assert(std::size(EVEN) == FOG_OWN && std::size(GROUND) == GROUND_HEIGHT + 1 &&
              std::size(LIT) == LIT_FORWARD + 1);
} // namespace

const vk_ShaderTable<vk_FogFunction> VK_FOG_SHADERS = {"fog", ROWS, std::size(ROWS)};
