// Splines through or near uniformly spaced knots, and their inverse.
//
// A basis takes four knots for a segment and advances by its step:
//
//   basis         step   knots for n segments
//   catmull-rom   1      n + 3
//   bspline       1      n + 3
//   linear        1      n + 3   (the first and the last are ignored)
//   constant      1      n + 3   (the first and the last two are ignored)
//   bezier        3      3 n + 1
//   hermite       2      2 n + 2 (value and tangent by turns)
//
// x runs from 0 to 1 over all segments and is clamped to that. Knots beyond the
// last whole segment are ignored.
#pragma once

#include "osl/lib/osl_Dual.h"

#include <string_view>

struct osl_SplineBasis {
    const char *name;
    int step;
    float weights[4][4]; // row: power of x, cubic first; column: knot

    // Null for an unknown name.
    static const osl_SplineBasis *find(std::string_view name);
};

// How a text of the language is answered: a basis that is unknown counts as "linear".
const osl_SplineBasis &osl_splineBasis(std::string_view name);

// Knots of one component: value i is data[i * stride]. `dx` and `dy` are laid out
// likewise, null for knots without derivatives.
// REQUIRES: count >= 4
struct osl_Knots {
    const float *data;
    int count;
    int stride = 1;
    const float *dx = nullptr;
    const float *dy = nullptr;
};

float osl_spline(const osl_SplineBasis &basis, float x, const osl_Knots &knots);
osl_Dual osl_spline(const osl_SplineBasis &basis, const osl_Dual &x, const osl_Knots &knots);

// The x whose spline is y, for knots that only rise or only fall: at the ends for a y
// outside of them, else within 1e-6 by regula falsi and bisection on each segment.
float osl_splineInverse(const osl_SplineBasis &basis, float y, const osl_Knots &knots);
osl_Dual osl_splineInverse(const osl_SplineBasis &basis, const osl_Dual &y, const osl_Knots &knots);
