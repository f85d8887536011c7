// The soft gleam of fibres that stand up from a cloth.
//
// Estevez and Kulla, "Production Friendly Microfacet Sheen BRDF", SIGGRAPH 2017
// course; with the visibility of Neubelt and Pettineo, "Crafting a Next-Gen
// Material Pipeline for The Order: 1886", SIGGRAPH 2013 course.
#pragma once

// Roughness from 0.2 (a thin bright rim) to 1 (all over); also that of bench/fit.py.
constexpr float VK_LEAST_SHEEN = .2f;

// Reflected radiance per irradiance; cosines of the two directions and of their
// half vector to the normal. Reciprocal.
float vk_sheen(float cosIn, float cosOut, float cosHalf, float rough);

// About what a white sheen reflects of all that arrives from a direction, at most 1, so
// that what lies below can get the rest: within .01, and .015 at grazing angles.
float vk_sheenAlbedo(float cosine, float rough);
