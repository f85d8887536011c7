#include "vaskel/shaders/vk_SoftShaders.h"

#include "vaskel/scatter/vk_Microfacet.h"
#include "vaskel/scatter/vk_Sheen.h"
#include "vaskel/shaders/vk_PatternShaders.h"

#include <iterator>

namespace
{
struct Velvet final : vk_Pointwise<Velvet> {
    vk_Colour diff = {.22f, .01f, .05f};
    vk_Colour sheen = {.9f, .45f, .55f};
    float rough = .35f;

    void describe(vk_ParamList &list) override
    {
        list.colour("diff", diff, 0, 1, "colour of the ground");
        list.colour("sheen", sheen, 0, 1, "colour of the fibres' gleam");
        list.number("rough", rough, 0, 1, "how wide the gleam is; clamped to at least .2");
    }
    vk_Material at(const vk_SurfacePoint &) const
    {
        // Without a boundary: fibres have no smooth side that could mirror.
        vk_Material material;
        material.diffuse = diff;
        material.sheen = sheen;
        material.sheenRough = std::max(rough, VK_LEAST_SHEEN);
        return material;
    }
};

// What lets light in and out again elsewhere.
struct Translucent : vk_Pointwise<Translucent> {
    vk_Colour diff, scatter, spec;
    float rough;

    Translucent(const vk_Colour &color, const vk_Colour &far, float shine, float roughness)
        : diff(color), scatter(far), spec(vk_grey(shine)), rough(roughness)
    {
    }
    void describe(vk_ParamList &list) override
    {
        list.colour("diff", diff, 0, 1, "colour");
        // In lengths of the scene, whatever `scale` makes of the shape.
        list.colour("scatter", scatter, 0, 10, "how far light wanders, by colour");
        list.colour("spec", spec, 0, 1, "how much it shines");
        list.number("rough", rough, 0, 1, "roughness");
    }
    vk_Material at(const vk_SurfacePoint &) const
    {
        vk_Material material;
        material.diffuse = diff;
        material.scatter = scatter;
        material.edge = spec;
        // Of skin, wax and their like: all lie between 1.35 and 1.45.
        material.specular = spec * vk_straightReflectance(1.4f);
        material.rough = rough;
        return material;
    }
};

// Lengths as in a ball the size of a marble: in one the size of a head they would not show. Red
// goes furthest, since blood absorbs it least.
struct Skin final : Translucent {
    Skin() : Translucent({.75f, .43f, .3f}, {.12f, .06f, .035f}, .8f, .42f) {}
};
struct Wax final : Translucent {
    Wax() : Translucent({.92f, .76f, .42f}, {.2f, .14f, .08f}, 1, .35f) {}
};

constexpr vk_ShaderRow<vk_SurfaceShader> ROWS[] = {
    vk_row<Velvet>("v_velvet", "cloth whose fibres gleam at the rim"),
    vk_row<Skin>("v_skin", "light wanders below the surface, red the furthest"),
    vk_row<Wax>("v_wax", "light wanders deep below the surface"),
};
} // namespace

const vk_ShaderTable<vk_SurfaceShader> VK_SOFT_SHADERS = {"surface", ROWS, std::size(ROWS),
                                                          &VK_PATTERN_SHADERS};
