#include "osl/code/osl_Fold.h"

#include "osl/run/osl_Kernel.h"

#include <algorithm>

namespace
{
constexpr int MAX_WORDS = 64; // larger ones are not worth it
} // namespace

bool osl_fold(osl_Op op, const std::vector<std::pair<const int *, int>> &arguments,
              std::vector<int> &result)
{
    const osl_Kernel kernel = osl_plainKernels(1, 1).plain[op];
    if (kernel == nullptr || result.size() > MAX_WORDS)
        return false;
    std::vector<int> memory(result.size());
    std::vector<osl_Operand> operands(1);
    operands[0].words = static_cast<int>(result.size());
    operands[0].step = result.size() > 1 ? 1 : 0;
    for (const auto &[data, words] : arguments) {
        if (words > MAX_WORDS)
            return false;
        osl_Operand operand;
        operand.at = static_cast<int>(memory.size());
        operand.words = words;
        operand.step = words > 1 ? 1 : 0;
        memory.insert(memory.end(), data, data + words);
        operands.push_back(operand);
    }
    // Derivatives of constants are 0: a stretch of zeros behind everything.
    for (osl_Operand &operand : operands)
        operand.dx = operand.dy = static_cast<int>(memory.size());
    memory.resize(memory.size() + MAX_WORDS);
    osl_Instruction in;
    in.op = op;
    in.words = static_cast<int>(result.size());
    kernel(memory.data(), in, operands.data());
    std::copy_n(memory.begin(), result.size(), result.begin());
    return true;
}
