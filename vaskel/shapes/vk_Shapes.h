// The shapes of the scene language: each stands on y = 0 over the origin, faces
// +z and has texture coordinates u (around or across) and v (upwards).
#pragma once

#include "vaskel/params/vk_Params.h"
#include "vaskel/shapes/vk_Mesh.h"

#include <string_view>

struct vk_ShapeRow {
    const char *word;
    const char *what; // one line for the list
    vk_ParamTable params;
    void (*build)(const vk_Values &, vk_MeshBuilder &);
};

constexpr std::size_t VK_SHAPE_COUNT = 5;
extern const vk_ShapeRow VK_SHAPES[VK_SHAPE_COUNT];

// The shape of a word, null when there is none.
const vk_ShapeRow *vk_findShape(std::string_view word);
