// Gabor noise: sparse convolution with Gabor kernels, filtered by the footprint
// of a pixel.
//
// After Lagae, Lefebvre, Drettakis and Dutre, "Procedural Noise using Sparse Gabor
// Convolution", SIGGRAPH 2009, and Lagae and Drettakis, "Filtering Solid Gabor
// Noise", SIGGRAPH 2011.
#pragma once

#include "osl/lib/osl_Vec.h"

struct osl_GaborOptions {
    int anisotropic = 0;           // 0 isotropic, 1 along `direction`, 2 hybrid
    osl_Vec direction = {1, 0, 0}; // its length is the frequency
    float bandwidth = 1;           // octaves; limited to 0.01 to 100
    float impulses = 16;           // mean number per kernel; limited to 1 to 32
    bool isFiltered = true;        // "do_filter"
};

// The noise at p, and its derivatives. The filter comes from p's derivatives and is
// left out where they span no area. `seed` tells the components of a colour apart
// (0, 1, 2). With a period, rounded down, the noise repeats along the axes after so many
// radii of a kernel (0.786 for one octave); null for none.
osl_Dual osl_gabor(const osl_GaborOptions &options, const osl_DualVec &p, int seed,
                   const osl_Vec *period);
