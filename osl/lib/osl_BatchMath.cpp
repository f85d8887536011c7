#include "osl/lib/osl_BatchMath.h"

// One of each source that includes osl_BatchMathKernels.h.
const osl_BatchMath &osl_batchMathForPlain();
const osl_BatchMath &osl_batchMathForAVX2();

const osl_BatchMath &osl_BatchMath::best()
{
    static const osl_BatchMath &table =
        __builtin_cpu_supports("avx2") != 0 ? osl_batchMathForAVX2() : osl_batchMathForPlain();
    return table;
}

const osl_BatchMath &osl_BatchMath::plain()
{
    return osl_batchMathForPlain();
}
