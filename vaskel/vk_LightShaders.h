// The light shaders of the scene language, and what shadows make of them.
//
// Every light takes `from` and `to` (where it stands and aims), `color`, and
// `intensity`: what a white matte surface shows that faces the light at `to`.
#pragma once

#include "vaskel/vk_Light.h"
#include "vaskel/vk_Shader.h"

#include <memory>

using vk_LightFunction = std::unique_ptr<vk_Light>(const vk_Values &);
extern const vk_ShaderTable<vk_LightFunction> VK_LIGHT_SHADERS;

// A shadow shader says what still arrives through something opaque: 0 is a
// black shadow, 1 no shadow at all.
using vk_ShadowFunction = vk_Colour(const vk_Values &);
using vk_ShadowShader = vk_Shader<vk_ShadowFunction>;
extern const vk_ShaderTable<vk_ShadowFunction> VK_SHADOW_SHADERS;
