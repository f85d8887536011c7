// The shapes of the scene language: each stands on y = 0 over the origin, faces
// +z and has texture coordinates u (around or across) and v (upwards).
#pragma once

#include "vaskel/shapes/vk_Mesh.h"

class vk_Shape : public vk_Parametrised
{
public:
    using Type = vk_Shape;
    virtual void build(vk_MeshBuilder &builder) const = 0;
};

constexpr std::size_t VK_SHAPE_COUNT = 5;
extern const vk_ShaderRow<vk_Shape> VK_SHAPES[VK_SHAPE_COUNT];

// The shape of a word, null when there is none.
const vk_ShaderRow<vk_Shape> *vk_findShape(std::string_view word);
