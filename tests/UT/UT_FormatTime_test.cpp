#include "UT/UT_FormatTime.h"

#include "tests/support/Random.h"

#include <cstring>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <locale>
#include <map>
#include <sstream>

namespace
{
// The text, and how many conversions it took.
std::string formatted(const std::string &format, time_t when)
{
    char buffer[512];
    const int count = UTformatTime(buffer, format.c_str(), when);
    return buffer + (' ' + std::to_string(count));
}

// A conversion in the standard library's words, which are the same in all but %j.
std::string standard(char letter, const tm &t)
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    if (letter == 'j')
        out << std::setfill('0') << std::setw(2) << t.tm_yday + 1;
    else if (std::strchr("aAbBcCdDehHImMnprRStTuwxXyYZ%", letter))
        out << std::put_time(&t, std::string{'%', letter}.c_str());
    else
        out << '%' << letter;
    return out.str();
}
} // namespace

TEST(FormatTime, ConversionsAreTheStandardOnesInEnglish)
{
    const std::map<char, int> composites = {{'c', 9}, {'D', 4}, {'x', 4}, {'r', 5},
                                            {'R', 3}, {'T', 4}, {'X', 4}};
    Random random;
    for (const char *const zone : {"UTC0", "WIN0SUM,M3.5.0,M10.5.0", "EAST-5:30"}) {
        setenv("TZ", zone, 1);
        for (int round = 0; round < 100; ++round) {
            const auto when = static_cast<time_t>(random.below(4102444800u)); // before 2100
            const tm t = *std::localtime(&when);
            SCOPED_TRACE(testing::Message() << random.seed() << ": " << zone << ' ' << when);
            for (int c = 1; c < 256; ++c) {
                const char letter = static_cast<char>(c);
                const std::string expected = standard(letter, t);
                const auto composite = composites.find(letter);
                const int single = letter == '%' || expected[0] != '%';
                const int count = composite != composites.end() ? composite->second : single;
                ASSERT_EQ("(" + expected + ") " + std::to_string(count),
                          formatted({'(', '%', letter, ')'}, when));
            }
        }
    }
    unsetenv("TZ");
}

TEST(FormatTime, ABufferIsCutAt512CharactersAndAStreamIsNot)
{
    const std::string xs(509, 'x');
    EXPECT_EQ(xs + "19 2", formatted(xs + "%Y%m%", 40000000));
    std::ostringstream stream;
    UTformatTime(stream, (xs + "%Y%m%").c_str(), 40000000) << "|";
    EXPECT_EQ(xs + "197104%|", stream.str());
}

TEST(FormatTime, TimesGoBeyond32BitsAndEndWithTheCalendar)
{
    EXPECT_EQ("2106 1", formatted("%Y", static_cast<time_t>(4300000000)));
    EXPECT_EQ(" 0", formatted("x%Y", std::numeric_limits<time_t>::max()));
}
