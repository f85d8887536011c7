// The surface shaders of the scene language.
#pragma once

#include "vaskel/params/vk_Shader.h"
#include "vaskel/scatter/vk_Material.h"

using vk_SurfaceFunction = vk_Material(const vk_Values &, const vk_SurfacePoint &);
using vk_SurfaceShader = vk_Shader<vk_SurfaceFunction>;

// A coloured base under a clear coat: how much of the coat there is, its
// roughness and its index of refraction.
vk_Material vk_coated(const vk_Colour &base, const vk_Colour &coat, float rough, float ior = 1.5f);

extern const vk_ShaderTable<vk_SurfaceFunction> VK_SURFACE_SHADERS;
