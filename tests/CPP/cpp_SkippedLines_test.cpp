#include "CPP/lines/cpp_SkippedLines.h"

#include <gtest/gtest.h>
#include <string>

TEST(SkippedLines, TellWhatTheyDoToConditionals)
{
    constexpr char FOR_STAGES[] = "for the stages";
    const struct {
        const char *text, *word, *condition, *behind;
    } cases[] = {
        {"a 'b' \"c\nd", "", "a 'b' \"c", "d"},
        {"a # b / c\n", "", "a # b / c", ""},
        {"#define A 1\r\nb\n", "define", " A 1", "b\n"},
        {"\f#\vifdef A\n", "ifdef", " A", ""},
        {"#ifndef A // b \" c\n", "ifndef", " A ", ""},
        {"#if A == 1 /* b\n#else\n*/ \nc\n", "if", " A == 1 ", "c\n"},
        {"#elif A/2\n", "elif", " A/2", ""},
        {"#else\n#endif\n", "else", "", "#endif\n"},
        {"  #endif A\n", "endif", " A", ""},
        {"#elseif\n", FOR_STAGES, "", ""},
        {"#\n", FOR_STAGES, "", ""},
        {"#endif\\\n", FOR_STAGES, "", ""},
        {"a\rb\n", FOR_STAGES, "", ""},
        {"'a' // b\n", FOR_STAGES, "", ""},
        {"a /* b */ c\n", FOR_STAGES, "", ""},
        {"a /* b\n", FOR_STAGES, "", ""},
        {"a", FOR_STAGES, "", ""},
        {"#endif", FOR_STAGES, "", ""},
        {"", FOR_STAGES, "", ""},
    };
    for (const auto &c : cases) {
        const std::string text = c.text;
        const auto line = readSkippedLine(true, text.data(), text.data() + text.size());
        const auto word = line.directive != nullptr ? line.directive->text : std::string_view();
        EXPECT_EQ(c.word, line.end != nullptr ? word : FOR_STAGES) << c.text;
        if (line.end == nullptr)
            continue;
        EXPECT_EQ(c.condition, line.condition) << c.text;
        EXPECT_STREQ(c.behind, line.end) << c.text;
    }
    const std::string text = "#if A // b\n";
    const auto line = readSkippedLine(false, text.data(), text.data() + text.size());
    EXPECT_EQ(" A // b", line.condition) << "slashes start no comment";
}
