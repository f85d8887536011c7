// Surface shaders whose base has a pattern: a block of material from which the
// shape is carved. Coats are clear, as that of v_plastic.
#pragma once

#include "vaskel/shaders/vk_SurfaceShaders.h"

extern const vk_ShaderTable<vk_SurfaceShader> VK_PATTERN_SHADERS;
