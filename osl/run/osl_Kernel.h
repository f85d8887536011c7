// The machine's kernels: what a pure operation does with the lanes of its operands.
//
// Each kernel exists for a number of lanes and a width (the distance of words), with and
// without derivatives. Wide kernels are made twice, for all processors and for AVX2;
// both do the same arithmetic.
#pragma once

#include "osl/code/osl_Code.h"

#include <cstdint>

// A word of a register as bits, whatever is in it.
typedef int32_t osl_Word __attribute__((may_alias));

using osl_Kernel = void (*)(int *memory, const osl_Instruction &in, const osl_Operand *operands);

struct osl_KernelSet {
    osl_Kernel plain[OSL_OPS] = {};
    osl_Kernel dual[OSL_OPS] = {}; // the result has derivatives
};

// Lanes is 1 or the width; widths are 1, 8 and 16.
const osl_KernelSet &osl_kernels(int lanes, int width);

// The same without AVX2, wherever we run.
const osl_KernelSet &osl_plainKernels(int lanes, int width);

// For osl_kernels: sets of all widths, with lanes = width.
const osl_KernelSet &osl_avx2Kernels(int width);
