#include "UT/UT_IFStream.h"

#include "UT/UT_ScratchBuffer.h"
#include "tests/support/ScratchDirectory.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

TEST(IFStream, WithoutAFileItIsAtItsEnd)
{
    UT_IFStream is;
    UT_ScratchBuffer line;
    EXPECT_TRUE(is.isEof());
    EXPECT_FALSE(is.getLine(line, '\n'));
    EXPECT_EQ(-1, is.getChar());
    EXPECT_EQ(-1, is.tellg());
    EXPECT_TRUE(is.close());
    EXPECT_FALSE(is.hasError());
    EXPECT_FALSE(is.seekg(0, 0));
    EXPECT_TRUE(is.hasError());
}

TEST(IFStream, AMissingFileFailsEveryReadUntilTheNextOpen)
{
    ScratchDirectory scratch;
    const std::string file = scratch.write("file", "text\n");
    UT_IFStream is(scratch.path("none").c_str(), true);
    UT_ScratchBuffer line;
    EXPECT_TRUE(is.hasError());
    EXPECT_STREQ(std::strerror(ENOENT), is.getSource().getErrorText());
    EXPECT_FALSE(is.open(nullptr, false));
    EXPECT_FALSE(is.open(scratch.path("none").c_str(), false));
    EXPECT_FALSE(is.getLine(line, '\n'));
    EXPECT_TRUE(is.isEof());

    EXPECT_TRUE(is.open(file.c_str(), false));
    EXPECT_STREQ(file.c_str(), is.getLabel());
    EXPECT_FALSE(is.isBinary());
    EXPECT_TRUE(is.getLine(line, '\n'));
    EXPECT_STREQ("text", line.buffer());
    EXPECT_TRUE(is.open(is.getLabel(), false)) << "the stream's own name";
    EXPECT_STREQ(file.c_str(), is.getLabel());
}

TEST(IFStream, ADirectoryFailsAtTheFirstRead)
{
    ScratchDirectory scratch;
    UT_IFStream is(scratch.path().c_str(), false);
    UT_ScratchBuffer line;
    EXPECT_FALSE(is.hasError());
    EXPECT_FALSE(is.getLine(line, '\n'));
    EXPECT_TRUE(is.hasError());
    EXPECT_STREQ(std::strerror(EISDIR), is.getSource().getErrorText());
}

TEST(IFStream, LinesMayBeLongerThanABlock)
{
    ScratchDirectory scratch;
    const std::string text(10000, 'x');
    UT_IFStream is(scratch.write("file", text + "\nend").c_str(), false);
    UT_ScratchBuffer line;
    EXPECT_TRUE(is.getLine(line, '\n'));
    EXPECT_EQ(text, line.buffer());
    EXPECT_TRUE(is.getLine(line, '\n'));
    EXPECT_STREQ("end", line.buffer());
    EXPECT_FALSE(is.getLine(line, '\n'));
    EXPECT_FALSE(is.hasError()) << "the end of the input is no error";
}

TEST(IFStream, RawBytesBeyondTheEndAreAnErrorThatASeekClears)
{
    ScratchDirectory scratch;
    UT_IFStream is(scratch.write("file", "one two").c_str(), true);
    char bytes[8] = {};
    UT_ScratchBuffer word;
    EXPECT_TRUE(is.getWord(word));
    EXPECT_EQ(3, is.tellg());
    EXPECT_EQ(4, is.bread(bytes, 8));
    EXPECT_STREQ(" two", bytes);
    EXPECT_TRUE(is.hasError());
    EXPECT_EQ(0, is.bread(bytes, 1));
    is.clearError();
    EXPECT_FALSE(is.getWord(word)) << "the source has not forgotten";

    EXPECT_TRUE(is.seekg(4, 0));
    EXPECT_FALSE(is.isEof());
    EXPECT_TRUE(is.getWord(word));
    EXPECT_STREQ("two", word.buffer());
    EXPECT_FALSE(is.seekg(0, 3));
    EXPECT_TRUE(is.hasError());
    EXPECT_TRUE(is.seekg(-3, 2));
    EXPECT_EQ('t', is.getChar());
}

TEST(IFStream, AfterCloseOnlyWhatIsBufferedCanBeRead)
{
    ScratchDirectory scratch;
    UT_IFStream is(scratch.write("file", std::string(5000, 'x') + "\n").c_str(), false);
    UT_ScratchBuffer line;
    EXPECT_EQ('x', is.getChar());
    EXPECT_TRUE(is.close());
    EXPECT_TRUE(is.close());
    EXPECT_TRUE(is.getLine(line, '\n'));
    EXPECT_EQ(4095, line.length());
    EXPECT_TRUE(is.isEof());
    EXPECT_FALSE(is.seekg(0, 0));
}
