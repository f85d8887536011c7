#include "osl/lib/osl_Format.h"

#include <gtest/gtest.h>

namespace
{
constexpr int FIVE = 5, MANY[] = {1, -2, 30}, CHARACTER = 'A';
constexpr float HALF = 0.5f, COLOUR[] = {0.1f, 2, 1e-7f}, LANES[] = {1, 9, 2, 9, 3, 9};
constexpr std::string_view WORD = "word", WORDS[] = {"a", "", "ccc"};

std::string formatted(std::string_view format, const std::vector<osl_FormatArg> &args)
{
    std::string out = "<";
    osl_Format(format).apply(args, out);
    return out + ">";
}
} // namespace

TEST(Format, WritesArgumentsAsCDoes)
{
    const osl_FormatArg five(&FIVE, 1), half(&HALF, 1), word(&WORD, 1), character(&CHARACTER, 1);
    const struct {
        const char *format;
        std::vector<osl_FormatArg> args;
        const char *text;
    } cases[] = {
        {"plain", {}, "<plain>"},
        {"%d|%i|%x|%o|%u|%X", {five, five, five, five, five, five}, "<5|5|5|5|5|5>"},
        {"%3d|%-3d|%03d|%+d|% d|%.2d",
         {five, five, five, five, five, five},
         "<  5|5  |005|+5| 5|05>"},
        {"%f %g %e %.2f %7.3f",
         {half, half, half, half, half},
         "<0.500000 0.5 5.000000e-01 0.50   0.500>"},
        {"%s|%6s|%-6s|%.2s", {word, word, word, word}, "<word|  word|word  |wo>"},
        {"%c", {character}, "<A>"},
        {"100%% %d%%", {five}, "<100% 5%>"},
        {"100%", {}, "<100%>"},
        {"%y %", {}, "<%y %>"},
        {"%ld %hhd", {five, five}, "<5 5>"},
        {"%*d", {five}, "<5>"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.text, formatted(c.format, c.args)) << c.format;
}

TEST(Format, WritesAllComponentsAndElements)
{
    EXPECT_EQ("<(0.1 2 1e-07)>", formatted("(%g)", {osl_FormatArg(COLOUR, 3)}));
    EXPECT_EQ("<   1   -2   30>", formatted("%4d", {osl_FormatArg(MANY, 3)}));
    EXPECT_EQ("<a  ccc>", formatted("%s", {osl_FormatArg(WORDS, 3)}));
    EXPECT_EQ("<1 2 3>", formatted("%g", {osl_FormatArg(LANES, 3, 2)}));
    EXPECT_EQ("<>", formatted("%g", {osl_FormatArg(LANES, 0)}));
}

TEST(Format, ChangesConversionsThatDoNotSuit)
{
    const osl_FormatArg five(&FIVE, 1), half(&HALF, 1), word(&WORD, 1);
    EXPECT_EQ("<5 0.500000 word>", formatted("%f %d %g", {five, half, word}));
    EXPECT_EQ("<5 0.500000>", formatted("%s %s", {five, half}));
    EXPECT_EQ("<5 >", formatted("%d %d", {five}));
    EXPECT_EQ("<5>", formatted("%d", {five, half}));
}

TEST(Format, TellsWhatSuits)
{
    const struct {
        const char *format;
        bool suitsInt, suitsFloat, suitsText;
    } rows[] = {{"%d", true, false, false},    {"%X", true, false, false},
                {"%5.2f", false, true, false}, {"%g", false, true, false},
                {"%s", false, false, true},    {"%p", false, true, false},
                {"%m", false, true, false},    {"%c", true, true, false}};
    for (const auto &row : rows) {
        const osl_Format format(row.format);
        ASSERT_EQ(1, format.conversions()) << row.format;
        EXPECT_EQ(row.suitsInt, format.suits(0, osl_FormatArg::INT)) << row.format;
        EXPECT_EQ(row.suitsFloat, format.suits(0, osl_FormatArg::FLOAT)) << row.format;
        EXPECT_EQ(row.suitsText, format.suits(0, osl_FormatArg::STRING)) << row.format;
    }
    EXPECT_EQ(3, osl_Format("%d %% % x %s").conversions());
    EXPECT_EQ("<0.500000 0.500000 A>",
              formatted("%p %c %c", {osl_FormatArg(&HALF, 1), osl_FormatArg(&HALF, 1),
                                     osl_FormatArg(&CHARACTER, 1)}));
}

TEST(Format, BoundsWhatItWrites)
{
    const float largest = 3e38f;
    EXPECT_EQ(502u, formatted("%99999999999999999999d", {osl_FormatArg(&FIVE, 1)}).size());
    EXPECT_EQ(2u + 39 + 1 + 500, formatted("%.1000000f", {osl_FormatArg(&largest, 1)}).size());
    EXPECT_EQ(502u, formatted("%-600s", {osl_FormatArg(&WORD, 1)}).size());
    std::string out;
    osl_Format("%400d").apply({osl_FormatArg(MANY, 3)}, out, 500);
    EXPECT_EQ(500u, out.size());
}
