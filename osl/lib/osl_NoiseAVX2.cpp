// Noise for processors with AVX2; compiled with -mavx2.
#include "osl/lib/osl_NoiseKernels.h"

void osl_noiseForAVX2(const osl_NoiseCall &call, int n)
{
    runNoise(call, n);
}
