// The surface shaders of the scene language.
#pragma once

#include "vaskel/params/vk_Shader.h"
#include "vaskel/scatter/vk_Material.h"

// Says what a surface is made of. After it got its parameters a shader is asked from
// many threads, so it keeps nothing.
class vk_SurfaceShader : public vk_Parametrised
{
public:
    using Type = vk_SurfaceShader;

    // At so many points at once: those of a tile's rays that met this surface. What a
    // shader has to do only once for all of them need not be done for each. Writes all of each
    // material: what it is given there may be of another surface.
    virtual void shade(const vk_SurfacePoint *points, vk_Material *materials,
                       std::size_t count) const = 0;

    // The same for what shadows ask of a surface: how far it is clear, and what colour light
    // takes on that comes through (clear, absorbs, ior, rough, diffuse, presence,
    // passesBy). The rest is not looked at.
    virtual void shadeForShadows(const vk_SurfacePoint *points, vk_Material *materials,
                                 std::size_t count) const
    {
        shade(points, materials, count);
    }

    // Whether it looks at more of a point than its position, u and v.
    virtual bool usesGeometry() const { return false; }

    // Whether light may pass it, as it passes glass.
    virtual bool mayBeClear() const { return shade(vk_SurfacePoint()).isClear(); }

    vk_Material shade(const vk_SurfacePoint &point) const
    {
        vk_Material material;
        shade(&point, &material, 1);
        return material;
    }
};

// A shader that looks at each point alone: Shader has vk_Material at(const
// vk_SurfacePoint &) const.
template <class Shader>
class vk_Pointwise : public vk_SurfaceShader
{
public:
    using vk_SurfaceShader::shade;
    void shade(const vk_SurfacePoint *points, vk_Material *materials, std::size_t count) const final
    {
        for (std::size_t i = 0; i < count; ++i)
            materials[i] = static_cast<const Shader *>(this)->at(points[i]);
    }
};

// A coloured base under a clear coat: how much of the coat there is, its
// roughness and its index of refraction.
vk_Material vk_coated(const vk_Colour &base, const vk_Colour &coat, float rough, float ior = 1.5f);

extern const vk_ShaderTable<vk_SurfaceShader> VK_SURFACE_SHADERS;
