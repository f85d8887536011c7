// The environment shaders of the scene language.
#pragma once

#include "vaskel/params/vk_Shader.h"

// An environment says what light arrives from a direction.
using vk_EnvironmentFunction = vk_Colour(const vk_Values &, const vk_Vec &direction);
using vk_EnvironmentShader = vk_Shader<vk_EnvironmentFunction>;
extern const vk_ShaderTable<vk_EnvironmentFunction> VK_ENVIRONMENT_SHADERS;
