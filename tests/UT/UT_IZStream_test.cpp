#include "UT/UT_IZStream.h"

#include "UT/UT_IFStream.h"
#include "UT/UT_IGZStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/Deflated.h"
#include "tests/support/PlainReader.h"
#include "tests/support/ScratchDirectory.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

TEST(IZStream, WhatOtherProgramsWroteIsReadUpToTheEndOfItsFirstMember)
{
    const std::string folder = TEST_DATA "/data/compressed/";
    const std::string text = fileContents(folder + "text"); // any bytes
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        const std::string suffix = entry.path().extension();
        if (suffix.empty())
            continue;
        SCOPED_TRACE(entry.path().string());
        UT_IFStream src(entry.path().c_str(), true);
        const std::unique_ptr<UT_IStream> is(suffix == ".gz" ? src.newGZipStream()
                                                             : src.newZLibStream());
        for (size_t piece = 1; piece < 2 * text.size(); piece *= 7) {
            std::string found(text.size(), '\0');
            for (size_t at = 0; at < text.size(); at += piece) {
                const size_t wanted = std::min(piece, text.size() - at);
                ASSERT_EQ(static_cast<unsigned char>(text[at]), is->peekChar());
                EXPECT_EQ(static_cast<int>(wanted),
                          is->bread(&found[at], static_cast<int>(wanted)));
            }
            EXPECT_EQ(text, found);
            EXPECT_TRUE(is->peekChar() == -1 && is->isEof() && !is->hasError());
            EXPECT_TRUE(is->seekg(0, 0));
        }
    }
}

TEST(IZStream, CorruptDataAreAnErrorAndTruncatedOnesTheEnd)
{
    const std::string good = deflated("some text"), cut = good.substr(0, good.size() - 1);
    const std::pair<std::string, std::string> cases[] = {
        {"plain text", "data error"}, {cut + "?", "data error"}, {cut, ""}, {"", ""}};
    for (const auto &[bytes, error] : cases) {
        SCOPED_TRACE(bytes);
        UT_IStream src = streamOver(bytes, true);
        UT_IZStream is(src);
        UT_ScratchBuffer text;
        while (is.getLine(text, '\n')) {
        }
        EXPECT_EQ(error, is.hasError() ? is.getSource().getErrorText() : "");
        EXPECT_EQ(is.hasError(), is.isEof()) << "isEof() needs the data's own end";
        EXPECT_EQ(0, is.bread(&text, 1));
    }
}

TEST(IGZStream, FieldsOfTheHeaderAreSkippedAndOtherHeadersFailAtTheFirstRead)
{
    const std::string extra = std::string("\x2c\x01", 2) + std::string(300, 'e');
    const std::string texts("name\0comment\0", 13), all = gzipped("text", 31, extra + texts + "cc");
    std::string method = gzipped("text");
    method[2] = 7;
    std::vector<std::string> good = {gzipped("text"), gzipped("text", 1),
                                     gzipped("text", 24, texts), all};
    std::vector<std::string> bad = {"plain text", method, gzipped("text", 32)};
    for (size_t length = 0; length < 10 + 302 + 13 + 2; ++length)
        bad.push_back(all.substr(0, length));
    const auto read = [](const std::string &bytes) {
        UT_IStream src = streamOver(bytes, true);
        UT_IGZStream is(src);
        UT_ScratchBuffer word;
        const bool isEarly = is.hasError(), isThere = is.getWord(word);
        EXPECT_FALSE(isEarly || !is.isBinary() || is.getLabel());
        return isThere ? word.buffer() + std::string(1, static_cast<char>(is.getChar()))
                       : is.getSource().getErrorText();
    };
    for (const std::string &bytes : good)
        EXPECT_EQ("text\xff", read(bytes));
    for (const std::string &bytes : bad)
        EXPECT_EQ("stream error", read(bytes)) << bytes.size();
}
