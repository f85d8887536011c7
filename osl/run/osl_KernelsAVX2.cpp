// The wide kernels once more, for processors with AVX2.
#include "osl/run/osl_KernelTable.h"

const osl_KernelSet &osl_avx2Kernels(int width)
{
    return width == 8 ? kernelsOf<8, 8>() : kernelsOf<16, 16>();
}
