// Noise for every processor.
#include "osl/lib/osl_NoiseKernels.h"

void osl_noiseForPlain(const osl_NoiseCall &call, int n)
{
    runNoise(call, n);
}
