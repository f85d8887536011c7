// Lights that throw a picture: small glowing balls behind a slide that lets part of
// their light pass. A cone is the simplest picture, a disc.
//
// A slide is a function of x (level, to the right as the light sees it) and y
// (upwards), which reach from -1 to 1 as far as the light's angle; it says what
// share of the light passes there. A new one is a function and a row.
#pragma once

#include "vaskel/lights/vk_LightShaders.h"

extern const vk_ShaderTable<vk_LightShader> VK_SLIDE_LIGHTS;
