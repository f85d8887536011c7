// Surface shaders of what is soft: cloth, skin and wax.
//
// Velvet's gleam is described in vk_Sheen.h, how light wanders in skin and wax in
// vk_Subsurface.h. How far it does so in skin, by colour, is after Jensen et al., "A
// Practical Model for Subsurface Light Transport", SIGGRAPH 2001, for a ball the
// size of a marble.
#pragma once

#include "vaskel/shaders/vk_SurfaceShaders.h"

extern const vk_ShaderTable<vk_SurfaceShader> VK_SOFT_SHADERS;
