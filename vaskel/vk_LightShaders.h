// The light shaders of the scene language.
//
// Every light takes `from` and `to` (where it stands and aims), `color`, and
// `intensity`: what a white matte surface shows that faces the light at `to`.
#pragma once

#include "vaskel/vk_Light.h"
#include "vaskel/vk_Shader.h"

#include <memory>

using vk_LightFunction = std::unique_ptr<vk_Light>(const vk_Values &);
extern const vk_ShaderTable<vk_LightFunction> VK_LIGHT_SHADERS;
