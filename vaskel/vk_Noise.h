// Smooth random heights in space: Perlin, "Improving Noise", SIGGRAPH 2002.
#pragma once

#include "vaskel/vk_Vec.h"

// About -1 to 1, 0 at whole coordinates; features are about one length wide.
float vk_noise(const vk_Vec &at);
