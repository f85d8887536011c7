// What rough surfaces send on of light that comes from a direction when it is scattered once, as
// tables, in equal steps. Where nothing else is said they go by roughness from 0 to 1 and by the
// cosine to the normal from 0 to 1.
#pragma once

constexpr int VK_ALBEDO_ROUGHS = 16, VK_ALBEDO_COSINES = 16;
constexpr int VK_BRUSHED_ROUGHS = 9, VK_BRUSHED_RATIOS = 6, VK_BRUSHED_WIDTHS = 3;
constexpr int VK_BRUSHED_COSINES = 9;
constexpr float VK_BRUSHED_LEAST = .1f;
constexpr int VK_GLASS_ETAS = 17, VK_GLASS_ROUGHS = 9, VK_GLASS_COSINES = 9;
constexpr int VK_SHEEN_ROUGHS = 9, VK_SHEEN_COSINES = 11;

// Microfacets that reflect all light, and the mean over all directions.
extern const float VK_FACET_ALBEDO[VK_ALBEDO_ROUGHS][VK_ALBEDO_COSINES];
extern const float VK_FACET_MEAN[VK_ALBEDO_ROUGHS];

// Those that are wider along one direction: by the roughness there, by the width across it over
// that along it from VK_BRUSHED_LEAST to 1, by the width along the light's way from the least to
// the most, and by cosine.
extern const float VK_BRUSHED_ALBEDO[VK_BRUSHED_ROUGHS][VK_BRUSHED_RATIOS][VK_BRUSHED_WIDTHS]
                                    [VK_BRUSHED_COSINES];

// Those of glass: first by the logarithm of the index of refraction of the far side over the near
// side, from 1/4 to 4.
extern const float VK_GLASS_ALBEDO[VK_GLASS_ETAS][VK_GLASS_ROUGHS][VK_GLASS_COSINES];

// Fibres (vk_Sheen.h), which may send on more than arrives: by roughness from VK_LEAST_SHEEN to 1
// and by the square root of the cosine, as nearly all of it changes at grazing angles.
extern const float VK_SHEEN_ALBEDO[VK_SHEEN_ROUGHS][VK_SHEEN_COSINES];
