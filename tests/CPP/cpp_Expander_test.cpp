#include "CPP/macros/cpp_Expander.h"

#include "CPP/CPP_File.h"
#include "CPP/cpp_MacroTable.h"
#include "CPP/files/cpp_DefStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/PlainReader.h"

#include <gtest/gtest.h>

// Alone, without directives: a table of macros, a line and what follows it in its file.
TEST(Expander, ReplacesMacrosAndTellsWhatItTook)
{
    cpp_MacroTable macros;
    for (const char *definition : {"A B", "B 1", "F(x,y) y x", "G F", "L L"})
        macros.define(definition, false);
    const struct {
        const char *text, *next;
        int limit;
        std::string out; // or the message, and how many lines were taken
    } cases[] = {
        {"A 'A' \"A\" aA\n", "", 0, "1 'A' \"A\" aA\n 0"},
        {"F(A, F(2,3)) A\n", "", 0, "3 2 1 1\n 0"},
        {"A F(\n", "1,\n2)B\nC\n", 0, "1 2 11\n 2"},
        {"A\n", "", 2, "Macro recursion limit reached 0"},
        {"A\n", "", 3, "1\n 0"},
        {"L\n", "", 0, "Macro recursion limit reached 0"},
        {"B F(1,\n", "2\n", 0, "Invalid arguments for macro \"F\" 1"},
        {"G (1,2)\n", "", 0, "Invalid arguments for macro \"F\" 0"},
        {"B \"\n", "", 0, "Mismatched quotation marks 0"},
    };
    cpp_Expander expander(macros);
    for (const auto &c : cases) {
        const std::string next = c.next;
        UT_IStream in = streamOver(next);
        auto *file = new CPP_File(new cpp_DefStream);
        file->getStream()->setStream(&in);
        UT_ScratchBuffer out;
        const std::string text = c.text;
        const bool isGood =
            expander.expand(*file, text.c_str(), static_cast<int>(text.size()), c.limit, out);
        EXPECT_EQ(c.out, (isGood ? out.buffer() : expander.message()) + std::string(" ") +
                             std::to_string(expander.linesTaken()))
            << c.text;
        file->release();
    }
    EXPECT_TRUE(expander.isPlain("C 'A' 1", 7));
    EXPECT_FALSE(expander.isPlain("C A", 3));
}

// A line is bounded in what its macros may stand for, and a longer one later.
TEST(Expander, ALongLineMayStandForMore)
{
    std::string thousand = "M";
    for (int i = 0; i < 1000; ++i)
        thousand += " E";
    cpp_MacroTable macros;
    for (const std::string &definition : {std::string("E"), thousand})
        macros.define(definition.c_str(), false);
    std::string text;
    for (int i = 0; i < 2100; ++i)
        text += "M ";
    cpp_Expander expander(macros);
    auto *file = new CPP_File(new cpp_DefStream);
    for (const size_t further : {0u, 100000u}) {
        text.append(further, '1');
        UT_ScratchBuffer out;
        EXPECT_EQ(further > 0,
                  expander.expand(*file, text.c_str(), static_cast<int>(text.size()), 0, out));
    }
    EXPECT_STREQ("Macro recursion limit reached", expander.message());
    file->release();
}
