#include "CPP/cpp_SkippedLines.h"

#include <gtest/gtest.h>
#include <string>

TEST(SkippedLines, TellWhatTheyDoToConditionals)
{
    using Line = cpp_SkippedLine;
    const struct {
        const char *text;
        Line::Kind kind;
        const char *condition, *behind;
    } cases[] = {
        {"a 'b' \"c\nd", Line::TEXT, "a 'b' \"c", "d"},
        {"a # b / c\n", Line::TEXT, "a # b / c", ""},
        {"#define A 1\r\nb\n", Line::TEXT, " A 1", "b\n"},
        {"\f#\vifdef A\n", Line::OPENS, " A", ""},
        {"#ifndef A // b \" c\n", Line::OPENS, " A ", ""},
        {"#if A == 1 /* b\n#else\n*/ \nc\n", Line::OPENS, " A == 1 ", "c\n"},
        {"#elif A/2\n", Line::ELIF, " A/2", ""},
        {"#else\n#endif\n", Line::ELSE, "", "#endif\n"},
        {"  #endif A\n", Line::CLOSES, " A", ""},
        {"#elseif\n", Line::UNKNOWN, "", ""},
        {"#\n", Line::UNKNOWN, "", ""},
        {"#endif\\\n", Line::UNKNOWN, "", ""},
        {"a\rb\n", Line::UNKNOWN, "", ""},
        {"'a' // b\n", Line::UNKNOWN, "", ""},
        {"a /* b */ c\n", Line::UNKNOWN, "", ""},
        {"a /* b\n", Line::UNKNOWN, "", ""},
        {"a", Line::UNKNOWN, "", ""},
        {"#endif", Line::UNKNOWN, "", ""},
        {"", Line::UNKNOWN, "", ""},
    };
    for (const auto &c : cases) {
        const std::string text = c.text;
        const Line line = readSkippedLine(true, text.data(), text.data() + text.size());
        EXPECT_EQ(c.kind, line.kind) << c.text;
        if (c.kind == Line::UNKNOWN || line.end == nullptr)
            continue;
        EXPECT_EQ(c.condition, line.condition) << c.text;
        EXPECT_STREQ(c.behind, line.end) << c.text;
    }
    const std::string text = "#if A // b\n";
    const Line line = readSkippedLine(false, text.data(), text.data() + text.size());
    EXPECT_EQ(" A // b", line.condition) << "slashes start no comment";
}
