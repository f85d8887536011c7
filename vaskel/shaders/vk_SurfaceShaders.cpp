#include "vaskel/shaders/vk_SurfaceShaders.h"

#include "vaskel/scatter/vk_Microfacet.h"
#include "vaskel/shaders/vk_MetalShaders.h"

#include <iterator>

namespace
{
struct Plastic final : vk_Pointwise<Plastic> {
    vk_Colour diff = vk_grey(.6f);
    vk_Colour spec = vk_grey(1);
    float rough = .2f;
    float ior = 1.5f;

    void describe(vk_ParamList &list) override
    {
        list.colour("diff", diff, 0, 1, "colour of the base");
        list.colour("spec", spec, 0, 1, "how much of the coat there is");
        list.number("rough", rough, 0, 1, "roughness of the coat, 0 is a mirror");
        list.number("ior", ior, 1, 4, "index of refraction of the coat");
    }
    vk_Material at(const vk_SurfacePoint &) const { return vk_coated(diff, spec, rough, ior); }
};

struct Matte final : vk_Pointwise<Matte> {
    // The grey by which the studio's lights are set (vk_EnvironmentShaders.cpp).
    vk_Colour diff = vk_grey(.5f);

    void describe(vk_ParamList &list) override { list.colour("diff", diff, 0, 1, "colour"); }
    vk_Material at(const vk_SurfacePoint &) const
    {
        vk_Material material;
        material.diffuse = diff;
        return material;
    }
};

struct Constant final : vk_Pointwise<Constant> {
    vk_Colour color = vk_grey(.5f);

    void describe(vk_ParamList &list) override
    {
        // Above 1 it lights its surroundings, as far as rays meet it: no samples are aimed at it,
        // so a small bright one is noisy.
        list.colour("color", color, 0, 1000, "radiance, whatever the light");
    }
    vk_Material at(const vk_SurfacePoint &) const
    {
        vk_Material material;
        // It reflects nothing, so paths end here and no light is asked.
        material.emission = color;
        return material;
    }
};

// The first one is that of shapes before any `surface` statement.
constexpr vk_ShaderRow<vk_SurfaceShader> ROWS[] = {
    vk_row<Plastic>("v_plastic", "a coloured base under a clear coat"),
    vk_row<Matte>("v_matte", "scatters evenly, no highlight"),
    vk_row<Constant>("v_constant", "one flat colour that needs no light"),
};
} // namespace

// The base does not dim itself for the coat: the BSDF knows what that lets through.
vk_Material vk_coated(const vk_Colour &base, const vk_Colour &coat, float rough, float ior)
{
    vk_Material material;
    material.diffuse = base;
    // The same factor for both ends of Schlick's curve: half a coat is half as bright at every
    // angle.
    material.edge = coat;
    material.specular = coat * vk_straightReflectance(ior);
    material.rough = rough;
    return material;
}

const vk_ShaderTable<vk_SurfaceShader> VK_SURFACE_SHADERS = {"surface", ROWS, std::size(ROWS),
                                                             &VK_METAL_SHADERS};
