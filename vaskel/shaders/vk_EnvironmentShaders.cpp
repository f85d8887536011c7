#include "vaskel/shaders/vk_EnvironmentShaders.h"

#include <iterator>

namespace
{
struct Studio final : vk_EnvironmentShader {
    // With the three lights of doc/scene.md, matte of albedo .5 then shows as about 50 % grey.
    vk_Colour top = {.11f, .125f, .15f};
    vk_Colour horizon = {.40f, .40f, .395f};
    vk_Colour ground = {.08f, .076f, .072f};
    float intensity = 1;

    void describe(vk_ParamList &list) override
    {
        list.colour("top", top, 0, 1000, "colour overhead");
        list.colour("horizon", horizon, 0, 1000, "colour at the horizon");
        list.colour("ground", ground, 0, 1000, "colour below");
        list.number("intensity", intensity, 0, 1000, "a factor for all three");
    }
    vk_Colour light(const vk_Vec &direction) const override
    {
        // Smooth where it meets the ground: what a mirror shows there must not look like an edge of
        // the shape.
        const vk_Colour sky = vk_mix(horizon, top, vk_smoothStep(-.1f, .8f, direction.y));
        return vk_mix(sky, ground, vk_smoothStep(.02f, -.25f, direction.y)) * intensity;
    }
};

// A scene that names none has the first one.
constexpr vk_ShaderRow<vk_EnvironmentShader> ROWS[] = {
    vk_row<Studio>("v_studio", "a soft sky with a horizon"),
};
} // namespace

const vk_ShaderTable<vk_EnvironmentShader> VK_ENVIRONMENT_SHADERS = {"environment", ROWS,
                                                                     std::size(ROWS)};
