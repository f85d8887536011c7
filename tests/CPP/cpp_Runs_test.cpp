#include "CPP/cpp_Runs.h"
#include "tests/support/Random.h"

#include <algorithm>
#include <gtest/gtest.h>

TEST(Runs, EndWhereByteByByteComparisonSaysSo)
{
    Random random;
    SCOPED_TRACE(random.seed());
    for (int i = 0; i < 20000; ++i) {
        std::string text =
            random.text({"1", " ", "\t", "12.5 -7", "\n", "\n\n", "{}", "\x80\xff"}, 40);
        for (size_t strays = random.below(3); strays > 0 && !text.empty(); --strays)
            text[random.below(text.size())] = static_cast<char>(random.below(256));
        const char *end = text.data() + text.size();
        for (const cpp_RunKind kind : {cpp_RunKind::KEPT, cpp_RunKind::DROPPED})
            ASSERT_EQ(runEndByBytes(kind, text.data(), end), runEnd(kind, text.data(), end))
                << text;
        ASSERT_EQ(std::count(text.begin(), text.end(), '\n'), countLines(text.data(), end));
    }
}
