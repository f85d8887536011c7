// Variable expansion: texts with and without references.
#include "UT/UT_ExpandVariables.h"

#include "UT/UT_ScratchBuffer.h"
#include "bench/floors.h"

namespace
{
const std::string PLAIN = repeated("/usr/local/share/textures ", 4096);
const std::string REFERENCES = repeated("$HOME/share/$NAME.$F4.pic ", 4096);
const std::string BRACES = repeated("${NAME}/share/${A${B}}.pic ", 4096);

const char *value(const char *, void *)
{
    return "value";
}

void expandVariables(benchmark::State &state, const std::string &text)
{
    UT_ScratchBuffer out;
    for (auto _ : state)
        UTexpandVariables(out, text.c_str(), value, nullptr, true, true);
    countBytes(state, text.size());
}

BENCHMARK_CAPTURE(expandVariables, no_reference_4KB, PLAIN);
BENCHMARK_CAPTURE(expandVariables, references_4KB, REFERENCES);
BENCHMARK_CAPTURE(expandVariables, braces_4KB, BRACES);
BENCHMARK_CAPTURE(copyFloor, path_4KB, PLAIN);
} // namespace
