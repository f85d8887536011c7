// What libFuzzer's main calls.
#include "fuzz/fuzz.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz(std::string(reinterpret_cast<const char *>(data), size));
    return 0;
}
