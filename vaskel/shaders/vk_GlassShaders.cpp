#include "vaskel/shaders/vk_GlassShaders.h"

#include "vaskel/shaders/vk_SoftShaders.h"

#include <iterator>

namespace
{
float absorption(float tint)
{
    // Beer and Lambert: what is left after a length falls by the same share over the next. Black
    // would absorb without bounds.
    return -std::log(std::max(tint, .001f));
}

// What both have.
struct Body {
    vk_Colour color = vk_grey(1);
    // Slightly green, as iron in the sand makes it.
    vk_Colour tint = {.93f, .97f, .95f};
    float ior = 1.5f;

    void describe(vk_ParamList &list)
    {
        list.colour("color", color, 0, 1, "share that the surface lets pass");
        list.colour("tint", tint, 0, 1,
                    "share that is left after one length; clamped to at least .001");
        // To 4, as far as the table of what rough glass sends on reaches (vk_AlbedoData.h).
        list.number("ior", ior, 1, 4, "index of refraction; clamped to at least 1.01");
    }
    vk_Material material(float rough) const
    {
        vk_Material material;
        // No reflectance is given: what glass mirrors follows from its index.
        material.clear = color;
        material.absorbs = {absorption(tint.x), absorption(tint.y), absorption(tint.z)};
        // At 1 nothing bends and nothing reflects, and half vectors do not exist.
        material.ior = std::max(ior, 1.01f);
        material.rough = rough;
        return material;
    }
};

struct Glass final : vk_Pointwise<Glass> {
    Body body;

    void describe(vk_ParamList &list) override { body.describe(list); }
    vk_Material at(const vk_SurfacePoint &) const { return body.material(0); }
};

struct Frosted final : vk_Pointwise<Frosted> {
    Body body;
    float rough = .45f;

    void describe(vk_ParamList &list) override
    {
        body.describe(list);
        list.number("rough", rough, 0, 1, "roughness, 0 is clear");
    }
    vk_Material at(const vk_SurfacePoint &) const { return body.material(rough); }
};

constexpr vk_ShaderRow<vk_SurfaceShader> ROWS[] = {
    vk_row<Glass>("v_glass", "clear or tinted glass"),
    vk_row<Frosted>("v_frosted", "glass with a ground surface"),
};
} // namespace

const vk_ShaderTable<vk_SurfaceShader> VK_GLASS_SHADERS = {"surface", ROWS, std::size(ROWS),
                                                           &VK_SOFT_SHADERS};
