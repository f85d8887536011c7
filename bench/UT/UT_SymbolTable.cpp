// Symbol lookup: names that are there and names that are not.
#include "UT/UT_SymbolTable.h"

#include "bench/floors.h"

#include <vector>

namespace
{
// In an order that is not that of their insertion: 7919 is prime.
std::vector<std::string> makeNames(const std::string &prefix, int count)
{
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i)
        names.push_back(prefix + std::to_string(static_cast<int64_t>(i) * 7919 % count));
    return names;
}

void countNames(benchmark::State &state, size_t count)
{
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(count));
}

void findSymbols(benchmark::State &state, const std::string &prefix)
{
    const int count = static_cast<int>(state.range(0));
    UT_SymbolTable table;
    for (int i = 0; i < count; ++i)
        table.addSymbol(("name" + std::to_string(i)).c_str(), nullptr);
    const std::vector<std::string> names = makeNames(prefix, count);
    for (auto _ : state) {
        for (const std::string &name : names)
            benchmark::DoNotOptimize(table.findSymbol(name.c_str()));
    }
    countNames(state, names.size());
}

// Only looks at each name.
void nameFloor(benchmark::State &state)
{
    const std::vector<std::string> names = makeNames("name", static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (const std::string &name : names)
            benchmark::DoNotOptimize(std::memchr(name.c_str(), '\0', name.size() + 1));
    }
    countNames(state, names.size());
}

BENCHMARK_CAPTURE(findSymbols, there, "name")->Arg(100)->Arg(10000)->Arg(1000000);
BENCHMARK_CAPTURE(findSymbols, missing, "none")->Arg(100)->Arg(10000)->Arg(1000000);
BENCHMARK(nameFloor)->Arg(100)->Arg(10000)->Arg(1000000);
} // namespace
