// Mathematical functions for every processor.
#include "osl/lib/osl_BatchMathKernels.h"

const osl_BatchMath &osl_batchMathForPlain()
{
    return TABLE;
}
