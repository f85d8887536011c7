// The displacement shaders of the scene language.
#pragma once

#include "vaskel/params/vk_Shader.h"
#include "vaskel/scatter/vk_Material.h"

// Says how far a point of a shape moves along its normal, in the shape's own lengths:
// -1/2 to 1/2, so that an error in a scene leaves something to look at. It is asked once
// for each vertex, from many threads, and looks at the point's place in space, which has no
// seams, or at its texture coordinates. Those end at 0 and 1, where a pattern has to meet
// itself; normals are taken from beyond the ends too.
class vk_DisplaceShader : public vk_Parametrised
{
public:
    using Type = vk_DisplaceShader;
    virtual float displace(const vk_SurfacePoint &point) const = 0;

    // Where points go, so many at once. A shader may move them to any side.
    virtual void move(const vk_SurfacePoint *points, vk_Vec *moved, std::size_t count) const
    {
        for (std::size_t i = 0; i < count; ++i)
            moved[i] = points[i].position + points[i].normal * displace(points[i]);
    }
};

extern const vk_ShaderTable<vk_DisplaceShader> VK_DISPLACE_SHADERS;
