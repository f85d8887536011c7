// Noise: functions of one to four coordinates that look random and repeat for
// ever, with the values that every renderer of the language shows.
//
//   kind      names in the language            range     between lattice points
//   PERLIN    "perlin", "snoise", snoise()     [-1, 1]   Perlin's gradients (2002)
//   UPERLIN   "uperlin", "noise", noise()      [0, 1]    likewise
//   CELL      "cell", cellnoise()              [0, 1]    constant
//   HASH      "hash", hashnoise()              [0, 1]    unrelated everywhere
//   SIMPLEX   "simplex"                        [-1, 1]   Gustavson's simplex noise
//   USIMPLEX  "usimplex"                       [0, 1]    likewise
//   GABOR     "gabor"                          [-1, 1]   osl_Gabor.h
//   ZERO      "null"                           0         0
//   UZERO     "unull"                          0.5       0.5
//
// Coordinates past 2^31 count as the last whole number there, NaN as the first.
#pragma once

#include "osl/lib/osl_Gabor.h"

#include <string_view>

enum osl_NoiseKind {
    OSL_NOISE_PERLIN,
    OSL_NOISE_UPERLIN,
    OSL_NOISE_CELL,
    OSL_NOISE_HASH,
    OSL_NOISE_SIMPLEX,
    OSL_NOISE_USIMPLEX,
    OSL_NOISE_GABOR,
    OSL_NOISE_ZERO,
    OSL_NOISE_UZERO,
    OSL_NOISE_UNKNOWN
};

// By one of the names above; OSL_NOISE_UNKNOWN for any other.
osl_NoiseKind osl_noiseKind(std::string_view name);

// Whether it has derivatives at all (cell, hash and the zeros have none), and
// whether its value itself depends on the coordinates' derivatives (gabor).
bool osl_noiseHasDerivatives(osl_NoiseKind kind);
bool osl_noiseNeedsDerivatives(osl_NoiseKind kind);

// A call of noise() or pnoise() for n points: for each coordinate and each
// component of the result an array of n floats, of any alignment. Arrays of the
// result may be those of coordinates.
struct osl_NoiseCall {
    osl_NoiseKind kind = OSL_NOISE_UPERLIN;
    int dimensions = 1; // 1 to 4: u; u v; x y z; x y z t
    int components = 1; // 1 or 3
    const float *coord[4] = {};

    // For pnoise: a period for each coordinate, rounded down, at least 1. Null (the
    // first of them) for noise. Simplex noise has no periodic form: it ignores them.
    const float *period[4] = {};

    // Derivatives of the coordinates: null where there are none (they count as 0).
    const float *coordDx[4] = {};
    const float *coordDy[4] = {};

    // The result; its derivatives only where outDx[0] is set, which then are all set.
    float *out[3] = {};
    float *outDx[3] = {};
    float *outDy[3] = {};

    osl_GaborOptions gabor; // for GABOR only
};

// The points go eight at a time, with AVX2 where the processor has it; the bits of the
// results do not depend on that or on n.
// REQUIRES: kind != OSL_NOISE_UNKNOWN
void osl_noise(const osl_NoiseCall &call, int n);

// The same without AVX2, wherever we run.
void osl_noisePlain(const osl_NoiseCall &call, int n);

// One component for one point, without derivatives; p holds `dimensions` coordinates.
// Gabor noise is not filtered here.
float osl_noise(osl_NoiseKind kind, const float *p, int dimensions);
