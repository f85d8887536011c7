// Surface shaders of glass: a shape is filled with it, clear or with a tint that
// grows with the way through (Beer and Lambert), behind a smooth or a ground surface
// (vk_Microfacet.h).
#pragma once

#include "vaskel/shaders/vk_SurfaceShaders.h"

extern const vk_ShaderTable<vk_SurfaceShader> VK_GLASS_SHADERS;
