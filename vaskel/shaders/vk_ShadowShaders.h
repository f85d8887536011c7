// The shadow shaders of the scene language: what becomes of light on its way past
// the shapes.
#pragma once

#include "vaskel/params/vk_Shader.h"

struct vk_Shadow {
    vk_Colour left;   // of the light in a full shadow: 0 is black, 1 no shadow at all
    float soft = 1;   // how wide lights are for shadows, times their own width
    float filter = 1; // how far glass lets light pass, in its colour
    float tint = 0;   // the same for everything else, in the colour of its base
};

class vk_ShadowShader : public vk_Parametrised
{
public:
    using Type = vk_ShadowShader;
    virtual vk_Shadow shadow() const = 0;
};

extern const vk_ShaderTable<vk_ShadowShader> VK_SHADOW_SHADERS;
