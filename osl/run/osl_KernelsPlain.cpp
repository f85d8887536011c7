// The kernels for all processors, and the choice between them.
#include "osl/run/osl_KernelTable.h"

const osl_KernelSet &osl_plainKernels(int lanes, int width)
{
    if (width == 1)
        return kernelsOf<1, 1>();
    if (width == 8)
        return lanes == 1 ? kernelsOf<1, 8>() : kernelsOf<8, 8>();
    return lanes == 1 ? kernelsOf<1, 16>() : kernelsOf<16, 16>();
}

const osl_KernelSet &osl_kernels(int lanes, int width)
{
    const bool isWide = lanes > 1 && __builtin_cpu_supports("avx2") != 0;
    return isWide ? osl_avx2Kernels(width) : osl_plainKernels(lanes, width);
}
