// What rough surfaces of microfacets send on of light that comes from a direction when it
// is scattered once, as tables: by roughness from 0 to 1 and cosine from 0 to 1, in equal
// steps, for facets that reflect all light, and its mean over all directions; and for those of
// glass, by the logarithm of the index of refraction of the far side over the near side, from 1/4
// to 4.
#pragma once

constexpr int VK_ALBEDO_ROUGHS = 16, VK_ALBEDO_COSINES = 16;
constexpr int VK_GLASS_ETAS = 17, VK_GLASS_ROUGHS = 9, VK_GLASS_COSINES = 9;

extern const float VK_FACET_ALBEDO[VK_ALBEDO_ROUGHS][VK_ALBEDO_COSINES];
extern const float VK_FACET_MEAN[VK_ALBEDO_ROUGHS];
extern const float VK_GLASS_ALBEDO[VK_GLASS_ETAS][VK_GLASS_ROUGHS][VK_GLASS_COSINES];
