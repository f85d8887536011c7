// The surface shaders of the scene language.
#pragma once

#include "vaskel/vk_Material.h"
#include "vaskel/vk_Shader.h"

using vk_SurfaceFunction = vk_Material(const vk_Values &, const vk_SurfacePoint &);
using vk_SurfaceShader = vk_Shader<vk_SurfaceFunction>;

extern const vk_ShaderTable<vk_SurfaceFunction> VK_SURFACE_SHADERS;
