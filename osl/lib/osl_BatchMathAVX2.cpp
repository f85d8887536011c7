// Mathematical functions for processors with AVX2; compiled with -mavx2.
#include "osl/lib/osl_BatchMathKernels.h"

const osl_BatchMath &osl_batchMathForAVX2()
{
    return TABLE;
}
