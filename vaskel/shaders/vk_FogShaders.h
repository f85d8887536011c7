// The fog shaders of the scene language.
#pragma once

#include "vaskel/params/vk_Shader.h"

// A fog fills a ball around the origin: how much light it takes away per length,
// and what share of that it scatters on.
struct vk_Medium {
    float extinction = 0; // at y = 0
    vk_Colour albedo;
    float radius = 0;
    float height = 0;  // where extinction has fallen to 1/e, and nothing below y = 0; 0: even
    float forward = 0; // -1 to 1: mean cosine between light's old and new direction
};

class vk_FogShader : public vk_Parametrised
{
public:
    using Type = vk_FogShader;
    virtual vk_Medium medium() const = 0;
};

extern const vk_ShaderTable<vk_FogShader> VK_FOG_SHADERS;
