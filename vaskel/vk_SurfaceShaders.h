// The surface shaders of the scene language.
#pragma once

#include "vaskel/vk_Material.h"
#include "vaskel/vk_Shader.h"

using vk_SurfaceFunction = vk_Material(const vk_Values &, const vk_SurfacePoint &);
using vk_SurfaceShader = vk_Shader<vk_SurfaceFunction>;

// A coloured base under a clear coat: how much of the coat there is, its
// roughness and its index of refraction.
vk_Material vk_coated(const vk_Colour &base, const vk_Colour &coat, float rough, float ior = 1.5f);

extern const vk_ShaderTable<vk_SurfaceFunction> VK_SURFACE_SHADERS;
