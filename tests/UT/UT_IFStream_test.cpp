#include "UT/UT_IFStream.h"

#include "UT/UT_FileUtil.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/ScratchDirectory.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>

TEST(IFStream, WithoutAFileItIsAtItsEndAndWithoutAnError)
{
    UT_IFStream is;
    UT_ScratchBuffer line;
    EXPECT_TRUE(is.isEof() && is.close() && is.tellg() == -1);
    EXPECT_FALSE(is.getLine(line, '\n') || is.hasError());
    EXPECT_FALSE(is.seekg(0, 0));
    EXPECT_TRUE(is.hasError());
}

TEST(IFStream, WhatIsNoFileFailsEveryReadUntilTheNextOpen)
{
    ScratchDirectory scratch;
    const std::string file = scratch.write("file", "text\n");
    UT_ScratchBuffer line;
    for (const char *const name :
         {static_cast<const char *>(nullptr), "no/file", scratch.path().c_str()}) {
        const bool isFolder = name && name == scratch.path();
        UT_IFStream is(name, true);
        EXPECT_EQ(isFolder, !is.hasError() && is.open(name, true)) << "a folder opens";
        EXPECT_FALSE(is.getLine(line, '\n'));
        EXPECT_TRUE(is.hasError() && is.isEof());
        EXPECT_STREQ(std::strerror(isFolder ? EISDIR : ENOENT), is.getSource().getErrorText());
        EXPECT_TRUE(is.open(file.c_str(), false));
        EXPECT_FALSE(is.isBinary());
        EXPECT_TRUE(is.getLine(line, '\n'));
        EXPECT_TRUE(is.open(is.getLabel(), false)) << "the stream's own name";
        EXPECT_EQ(file, is.getLabel());
    }
}

TEST(IFStream, RawBytesBeyondTheEndAreAnErrorThatASeekClears)
{
    ScratchDirectory scratch;
    UT_IFStream is(scratch.write("file", "one two").c_str(), true);
    char bytes[8] = {};
    UT_ScratchBuffer word;
    EXPECT_TRUE(is.getWord(word));
    EXPECT_EQ(4, is.bread(bytes, 8));
    EXPECT_STREQ(" two", bytes);
    EXPECT_TRUE(is.hasError());
    EXPECT_EQ(0, is.bread(bytes, 1));
    is.clearError();
    EXPECT_FALSE(is.getWord(word)) << "the source has not forgotten";
    EXPECT_TRUE(is.seekg(-3, 2));
    EXPECT_EQ('t', is.getChar());
}

TEST(IFStream, AfterCloseOnlyWhatIsBufferedCanBeRead)
{
    ScratchDirectory scratch;
    UT_IFStream is(scratch.write("file", std::string(5000, 'x') + "\n").c_str(), false);
    UT_ScratchBuffer line;
    EXPECT_EQ('x', is.getChar());
    EXPECT_TRUE(is.close() && is.close() && is.getLine(line, '\n'));
    EXPECT_EQ(4095, line.length());
    EXPECT_TRUE(is.isEof());
    EXPECT_FALSE(is.seekg(0, 0));
}

TEST(IFStream, FilesMayBeLargerThan4Gigabytes)
{
    ScratchDirectory scratch;
    const std::string file = scratch.write("file", "");
    const int64_t start = 5000000000;
    std::ofstream(file).seekp(start) << "far line\nend"; // the rest takes no space
    UT_IFStream named(file.c_str(), false);
    FILE *const open = std::fopen(file.c_str(), "rb");
    UT_IStream unnamed(open, false);
    for (UT_IStream *is : {static_cast<UT_IStream *>(&named), &unnamed}) {
        UT_ScratchBuffer line;
        EXPECT_TRUE(is->seekg(start + 4, 0) && is->getLine(line, '\n'));
        EXPECT_STREQ("line", line.buffer());
        EXPECT_TRUE(is->seekg(-3, 2));
        EXPECT_EQ(start + 9, is->tellg());
    }
    EXPECT_TRUE(UTisReadable(file.c_str()) && !UTisDirectory(file.c_str()));
    std::fclose(open);
}
