// The light shaders of the scene language.
#pragma once

#include "vaskel/lights/vk_Light.h"
#include "vaskel/params/vk_Shader.h"

#include <memory>

// Every light takes `from` and `to` (where it stands and aims), `color`, and
// `intensity`: what a white matte surface shows that faces the light at `to`, or
// would show there if no slide were in the way.
class vk_LightShader : public vk_Parametrised
{
public:
    using Type = vk_LightShader;

    vk_Vec from = {-4, 6, 5};
    vk_Vec to = {0, 1, 0};
    vk_Colour color = vk_grey(1);
    float intensity = .8f;

    void describe(vk_ParamList &list) override;
    std::string fault() const override;

    // The light, with the parameters that the shader has now.
    virtual std::unique_ptr<vk_Light> make() const = 0;

    // What a white matte surface shows that faces the light at `to`.
    vk_Colour white() const { return color * intensity; }
};

extern const vk_ShaderTable<vk_LightShader> VK_LIGHT_SHADERS;
