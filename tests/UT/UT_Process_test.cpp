#include "UT/UT_Process.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
std::string printable(std::string text)
{
    UTmakePrintable(text.data(), text.size());
    return text;
}

TEST(Process, WhatSteersATerminalIsMaskedByteForByte)
{
    EXPECT_EQ(printable("a\x1b[31m\tb\r\n"), "a?[31m\tb??");
    EXPECT_EQ(printable("\x7f\x9b\xc2\x9b\xe2\x80\xae\xd8\x9c."), "????"
                                                                  "???"
                                                                  "??"
                                                                  ".");
    EXPECT_EQ(printable("\xe0\x9b\x80 \xed\xa0\x9b \xf4\x9f\x80\x80"), "\xe0?? \xed\xa0? \xf4???")
        << "no characters";
    EXPECT_EQ(printable("\xe2\x9b"
                        "31m"),
              "\xe2?31m")
        << "a sequence broken off";
}
TEST(Process, NamesOfAllLanguagesStay)
{
    for (const char *name : {"Grün", "Ж\u0301", "日本語", "\U0001f600", "Gr\xfcn"})
        EXPECT_EQ(printable(name), name);
}
} // namespace
