// Operations on constants, done while code is made, by the machine's own kernels.
#pragma once

#include "osl/check/osl_Builtins.h"

#include <utility>
#include <vector>

// The result of a pure operation; each argument is its words and their number. False
// when it has to be left to the machine.
bool osl_fold(osl_Op op, const std::vector<std::pair<const int *, int>> &arguments,
              std::vector<int> &result);
