// Line gathering: logical lines out of a stream in memory.
#include "CPP/CPP_File.h"

#include "CPP/files/cpp_DefStream.h"
#include "UT/UT_IStream.h"
#include "bench/floors.h"

namespace
{
const std::string SHORT_LINES = repeated("12.3456 7.8901 23.4567 8.9012\n", 1 << 20);
const std::string LONG_LINES = repeated(repeated("12.3456 ", 1 << 16) + "\n", 1 << 20);
const std::string CONTINUED_LINES = repeated("12.3456 7.8901 23.4567 8.9012\\\n", 1 << 20);

void gatherLines(benchmark::State &state, const std::string &text)
{
    UT_ScratchBuffer line;
    for (auto _ : state) {
        UT_IStream in(text.data(), static_cast<int>(text.size()), false);
        auto *stream = new cpp_DefStream;
        stream->setStream(&in);
        auto *file = new CPP_File(stream);
        while (file->readLogicalLine(line))
            benchmark::DoNotOptimize(line.buffer());
        file->release();
    }
    countBytes(state, text.size());
}

BENCHMARK_CAPTURE(gatherLines, short_lines_1MB, SHORT_LINES);
BENCHMARK_CAPTURE(searchFloor, short_lines_1MB, SHORT_LINES, '\n');
BENCHMARK_CAPTURE(gatherLines, lines_of_64KB_1MB, LONG_LINES);
BENCHMARK_CAPTURE(searchFloor, lines_of_64KB_1MB, LONG_LINES, '\n');
BENCHMARK_CAPTURE(gatherLines, one_continued_line_1MB, CONTINUED_LINES);
BENCHMARK_CAPTURE(searchFloor, one_continued_line_1MB, CONTINUED_LINES, '\n');
} // namespace
