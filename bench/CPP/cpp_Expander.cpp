// Macro expansion: a line among 10,000 macros.
#include "CPP/macros/cpp_Expander.h"

#include "CPP/CPP_File.h"
#include "CPP/CPP_Manager.h"
#include "CPP/files/cpp_DefStream.h"
#include "bench/floors.h"

namespace
{
const std::string NUMBERS = repeated("12.3456 7.8901 23.4567 ", 4096);
const std::string WORDS = repeated("red green blue alpha depth ", 4096);
const std::string FIFTH_WORD = repeated("red green blue alpha M77 ", 4096);
const std::string NESTED = repeated("TWICE(TWICE(red, 1), M77) ", 4096);

void define(CPP_Manager &manager, const std::string &definition)
{
    UT_String result;
    manager.defineMacro(definition.c_str(), result, false);
}

void expandLine(benchmark::State &state, const std::string &text)
{
    CPP_Manager manager;
    for (int i = 0; i < 10000; ++i)
        define(manager, "M" + std::to_string(i) + " value");
    define(manager, "TWICE(x,y) (x+x*y)");
    auto *file = new CPP_File(new cpp_DefStream);
    cpp_Expander expander(manager.macros());
    UT_ScratchBuffer out;
    for (auto _ : state) {
        out.clear();
        if (!expander.expand(*file, text.data(), static_cast<int>(text.size()), 0, out))
            state.SkipWithError(expander.message());
    }
    file->release();
    countBytes(state, text.size());
}

BENCHMARK_CAPTURE(expandLine, numbers_4KB, NUMBERS);
BENCHMARK_CAPTURE(expandLine, words_4KB, WORDS);
BENCHMARK_CAPTURE(expandLine, fifth_word_4KB, FIFTH_WORD);
BENCHMARK_CAPTURE(expandLine, nested_calls_4KB, NESTED);
BENCHMARK_CAPTURE(copyFloor, words_4KB, WORDS);
} // namespace
