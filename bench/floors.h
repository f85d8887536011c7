// What the machine needs at least for a text: each benchmark stands beside one of these.
#pragma once

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

inline std::string repeated(const std::string &piece, size_t size)
{
    std::string text;
    while (text.size() < size)
        text += piece;
    return text;
}

inline void countBytes(benchmark::State &state, size_t bytes)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}

inline void copyFloor(benchmark::State &state, const std::string &text)
{
    std::string copy(text.size(), ' ');
    for (auto _ : state) {
        std::memcpy(copy.data(), text.data(), text.size());
        benchmark::ClobberMemory();
    }
    countBytes(state, text.size());
}

// Searches from each `c` to the next.
inline void searchFloor(benchmark::State &state, const std::string &text, char c)
{
    const char *end = text.data() + text.size();
    for (auto _ : state) {
        for (const char *p = text.data(); p != nullptr && p < end;) {
            p = static_cast<const char *>(std::memchr(p, c, static_cast<size_t>(end - p)));
            p = p != nullptr ? p + 1 : nullptr;
            benchmark::DoNotOptimize(p);
        }
    }
    countBytes(state, text.size());
}
