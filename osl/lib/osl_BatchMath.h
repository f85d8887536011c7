// Mathematical functions for many numbers at once.
//
// Each function works on n numbers of any alignment; the result may stand in
// place of an argument. The table is made twice, for plain x86 (SSE2) and for
// AVX2, and both give the same bits. What osl_Math.h says about arguments
// outside a function's domain holds here too; NaN gives any number.
//
// Largest errors:
//   sin, cos         1e-7 absolute
//   tan              4e-7 relative, away from its poles
//   exp, exp2        3e-7 relative
//   log, log2        2e-7 absolute or relative, whichever is larger
//   pow              1e-6 relative for results from 1e-10 to 1e10, 1e-5 beyond;
//                    none for exponents 1 and 2
//   the others       the last bit
#pragma once

using osl_Unary = void (*)(float *out, const float *x, int n);
using osl_Binary = void (*)(float *out, const float *x, const float *y, int n);

struct osl_BatchMath {
    osl_Unary sin;
    osl_Unary cos;
    osl_Unary tan;
    osl_Unary exp;
    osl_Unary exp2;
    osl_Unary log;
    osl_Unary log2;
    osl_Unary sqrt;
    osl_Unary inverseSqrt;
    osl_Unary floor;
    osl_Binary pow;
    osl_Binary div;
    osl_Binary mod;

    // For the processor at hand; chosen at the first call. Thread safe.
    static const osl_BatchMath &best();
    // Without AVX2, wherever we run.
    static const osl_BatchMath &plain();
};
