// The light shaders of the scene language.
//
// Every light takes `from` and `to` (where it stands and aims), `color`, and
// `intensity`: what a white matte surface shows that faces the light at `to`, or
// would show there if no slide were in the way.
#pragma once

#include "vaskel/lights/vk_Light.h"
#include "vaskel/params/vk_Shader.h"

#include <memory>

// These come first in the table of each light; its own begin at VK_LIGHT_OWN.
enum { VK_FROM, VK_TO, VK_COLOR, VK_INTENSITY, VK_LIGHT_OWN };
constexpr vk_Param VK_LIGHT_FROM = {"from", VK_POINT, {-4, 6, 5}, -1e6f, 1e6f, "where it stands"};
constexpr vk_Param VK_LIGHT_TO = {"to", VK_POINT, {0, 1, 0}, -1e6f, 1e6f, "where it aims"};
constexpr vk_Param VK_LIGHT_COLOR = {"color", VK_COLOUR, {1, 1, 1}, 0, 1000, "colour"};
constexpr vk_Param VK_LIGHT_INTENSITY = {"intensity", VK_NUMBER, {.8f, 0, 0},
                                         0,           1000,      "what white matte shows at `to`"};

// What a white matte surface shows that faces the light at `to`.
vk_Colour vk_lightWhite(const vk_Values &p);

using vk_LightFunction = std::unique_ptr<vk_Light>(const vk_Values &);
extern const vk_ShaderTable<vk_LightFunction> VK_LIGHT_SHADERS;
