// What rough surfaces of microfacets send on of light that comes from a direction when it
// is scattered once, as tables: by roughness from 0 to 1 and cosine from 0 to 1, in equal
// steps, for facets that reflect all light, and its mean over all directions; and for those of
// glass, by the logarithm of the index of refraction of the far side over the near side, from 1/4
// to 4. For facets that are wider along one direction: by the roughness there, by the width
// across it over that along it from a least one to 1, by the width along the light's way from
// the least to the most, and by cosine. And what fibres send on (vk_Sheen.h), at most 1: by
// roughness from VK_LEAST_SHEEN to 1 and by the square root of the cosine, as nearly all of it
// changes at grazing angles.
#pragma once

constexpr int VK_ALBEDO_ROUGHS = 16, VK_ALBEDO_COSINES = 16;
constexpr int VK_BRUSHED_ROUGHS = 9, VK_BRUSHED_RATIOS = 6, VK_BRUSHED_WIDTHS = 3;
constexpr int VK_BRUSHED_COSINES = 9;
constexpr float VK_BRUSHED_LEAST = .1f;
constexpr int VK_GLASS_ETAS = 17, VK_GLASS_ROUGHS = 9, VK_GLASS_COSINES = 9;
constexpr int VK_SHEEN_ROUGHS = 9, VK_SHEEN_COSINES = 11;

extern const float VK_FACET_ALBEDO[VK_ALBEDO_ROUGHS][VK_ALBEDO_COSINES];
extern const float VK_FACET_MEAN[VK_ALBEDO_ROUGHS];
extern const float VK_BRUSHED_ALBEDO[VK_BRUSHED_ROUGHS][VK_BRUSHED_RATIOS][VK_BRUSHED_WIDTHS]
                                    [VK_BRUSHED_COSINES];
extern const float VK_GLASS_ALBEDO[VK_GLASS_ETAS][VK_GLASS_ROUGHS][VK_GLASS_COSINES];
extern const float VK_SHEEN_ALBEDO[VK_SHEEN_ROUGHS][VK_SHEEN_COSINES];
