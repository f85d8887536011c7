// Surface shaders of bare and of painted metal.
//
// Colours of metals are reflectances straight on; see vk_ColourNames.h for those
// that were measured. The scratches of brushed metal run along u. The paint is that
// of cars: coloured flakes at different angles in a coloured ground, under a lacquer
// (after Günther et al., "Efficient Acquisition and Realistic Rendering of Car
// Paint", VMV 2005); a flake is the cell around a scattered point (Worley, "A
// Cellular Texture Basis Function", SIGGRAPH 1996).
#pragma once

#include "vaskel/shaders/vk_SurfaceShaders.h"

extern const vk_ShaderTable<vk_SurfaceShader> VK_METAL_SHADERS;
