// Where light that leaves a surface went in, for materials in which it wanders.
//
// The profile is that of Christensen and Burley, "Approximate Reflectance Profiles
// for Efficient Subsurface Scattering", 2015: normalised diffusion,
// (exp(-r/d) + exp(-r/3d)) / (8 pi d r) at a distance r, with d from
// vk_Material::scatter for each colour. Places are found by rays through the shape along
// the normal and across it: King, Kulla, Conty and Fajardo, "BSSRDF Importance
// Sampling", SIGGRAPH 2013 talks.
#pragma once

#include "vaskel/base/vk_Sampler.h"
#include "vaskel/trace/vk_World.h"

// The profile at a distance above 0, per area; and how often it is that far away
// at most.
float vk_profile(float distance, float scatter);
float vk_profileWithin(float distance, float scatter);

// Puts a place where light goes in to come out at `exit` into `entry`, with its
// normals to the same side of the shape as there, and how much each colour counts there. Colours
// are looked for as far as they wander, and as often as `albedo` makes them seen. False when the
// ray through the shape found none. REQUIRES: all of scatter > 0, an albedo with an inverse
bool vk_sampleEntry(const vk_World &world, const vk_Hit &exit, const vk_Vec &scatter,
                    const vk_Colour &albedo, vk_Sampler &sampler, vk_Hit &entry, vk_Colour &weight);
