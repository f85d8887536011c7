// The displacement and environment shaders of the scene language.
#pragma once

#include "vaskel/vk_Shader.h"

// A displacement says how far a point of a shape moves along its normal; the
// point is in the shape's own space. It is a function of space, so seams of a
// shape stay closed.
using vk_DisplaceFunction = float(const vk_Values &, const vk_Vec &position);
using vk_DisplaceShader = vk_Shader<vk_DisplaceFunction>;
extern const vk_ShaderTable<vk_DisplaceFunction> VK_DISPLACE_SHADERS;

// An environment says what light arrives from a direction.
using vk_EnvironmentFunction = vk_Colour(const vk_Values &, const vk_Vec &direction);
using vk_EnvironmentShader = vk_Shader<vk_EnvironmentFunction>;
extern const vk_ShaderTable<vk_EnvironmentFunction> VK_ENVIRONMENT_SHADERS;
