// Comment stripping: one line at a time, copied into the buffer that it changes.
#include "CPP/lines/cpp_Comments.h"

#include "UT/UT_ScratchBuffer.h"
#include "bench/floors.h"

namespace
{
const std::string PLAIN = repeated("12.3456 7.8901 23.4567 ", 4096) + "\n";
const std::string COMMENTS = repeated("word /* some note here */ ", 4096) + "\n";
const std::string QUOTES = repeated("\"a text with // in it\" / ", 4096) + "\n";

void strip(benchmark::State &state, const std::string &text)
{
    UT_ScratchBuffer line;
    for (auto _ : state) {
        line.clear();
        line.append(text.data(), static_cast<int>(text.size()));
        benchmark::DoNotOptimize(stripComments(line, true, true, false));
    }
    countBytes(state, text.size());
}

BENCHMARK_CAPTURE(strip, numbers_4KB, PLAIN);
BENCHMARK_CAPTURE(strip, block_comments_4KB, COMMENTS);
BENCHMARK_CAPTURE(strip, quoted_signs_4KB, QUOTES);
BENCHMARK_CAPTURE(copyFloor, line_4KB, PLAIN);
BENCHMARK_CAPTURE(searchFloor, slashes_4KB, COMMENTS, '/');
} // namespace
