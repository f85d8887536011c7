// Word splitting, in a fresh copy of the text each time.
#include "UT/UT_String.h"

#include "UT/UT_WordList.h"
#include "bench/floors.h"

namespace
{
const std::string WORDS = repeated("diff .62 .02 .02 rough .12 ", 4096);
const std::string QUOTED = repeated("\"a text\" diff 'another one' ", 4096);

void splitWords(benchmark::State &state, const std::string &text)
{
    UT_WordList words;
    for (auto _ : state) {
        UT_String copy(text.c_str(), true);
        benchmark::DoNotOptimize(copy.splitWords(words));
    }
    countBytes(state, text.size());
}

BENCHMARK_CAPTURE(splitWords, words_4KB, WORDS);
BENCHMARK_CAPTURE(splitWords, quoted_4KB, QUOTED);
BENCHMARK_CAPTURE(copyFloor, text_4KB, WORDS);
BENCHMARK_CAPTURE(searchFloor, blanks_4KB, WORDS, ' ');
} // namespace
