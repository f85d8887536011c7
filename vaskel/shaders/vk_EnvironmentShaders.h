// The environment shaders of the scene language.
#pragma once

#include "vaskel/params/vk_Shader.h"

class vk_EnvironmentShader : public vk_Parametrised
{
public:
    using Type = vk_EnvironmentShader;

    // The radiance that arrives from a direction.
    virtual vk_Colour light(const vk_Vec &direction) const = 0;
};

extern const vk_ShaderTable<vk_EnvironmentShader> VK_ENVIRONMENT_SHADERS;
