// The displacement shaders of the scene language.
//
// A displacement says how far a point of a shape moves along its normal, in the
// shape's own lengths: -1/2 to 1/2, so that an error in a scene leaves something to
// look at. It is asked once for each vertex and looks at the point's place in
// space, which has no seams, or at its texture coordinates. Those end at 0 and 1,
// where a pattern has to meet itself; normals are taken from beyond the ends too.
#pragma once

#include "vaskel/params/vk_Shader.h"
#include "vaskel/scatter/vk_Material.h"

using vk_DisplaceFunction = float(const vk_Values &, const vk_SurfacePoint &);
using vk_DisplaceShader = vk_Shader<vk_DisplaceFunction>;

extern const vk_ShaderTable<vk_DisplaceFunction> VK_DISPLACE_SHADERS;
