#include "UT/UT_IStreamBuf.h"

#include "UT/UT_IStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/ScratchDirectory.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <unistd.h>

namespace
{

const std::string TEXT = "0123456789 abcdef";

std::string bytesOf(UT_IStream &is, int n)
{
    std::string bytes(static_cast<size_t>(n), '\0');
    bytes.resize(static_cast<size_t>(is.bread(bytes.data(), n)));
    return bytes;
}

// The same text behind every kind of source that has positions.
class Sources
{
public:
    Sources() : myInput(TEXT), myFile(std::fopen(myScratch.write("file", TEXT).c_str(), "rb"))
    {
        all.emplace_back("file", new UT_IStream(myFile, false));
        all.emplace_back("stream", new UT_IStream(myInput, false));
        all.emplace_back("memory", new UT_IStream(TEXT.data(), size(), false));
        const std::string around = "before" + TEXT + "after";
        UT_IStreamBuf *outer = UT_IStreamBuf::openFile(myScratch.write("outer", around).c_str());
        all.emplace_back("range",
                         new UT_IStream(UT_IStreamBuf::makeRange(*outer, 6, size()), false));
        outer->release();
    }
    ~Sources() { std::fclose(myFile); }

    static int size() { return static_cast<int>(TEXT.size()); }

    std::vector<std::pair<std::string, std::unique_ptr<UT_IStream>>> all;

private:
    ScratchDirectory myScratch;
    std::istringstream myInput;
    FILE *myFile;
};

} // namespace

TEST(IStreamBuf, EverySourceReadsTheSameBytes)
{
    Sources sources;
    for (auto &[kind, is] : sources.all) {
        SCOPED_TRACE(kind);
        UT_ScratchBuffer text;
        EXPECT_EQ('0', is->peekChar());
        EXPECT_EQ("01", bytesOf(*is, 2));
        EXPECT_TRUE(is->getWord(text));
        EXPECT_STREQ("23456789", text.buffer());
        EXPECT_EQ(10, is->tellg()) << "the buffered bytes do not count";
        EXPECT_EQ(" abcdef", bytesOf(*is, 7));
        EXPECT_FALSE(is->hasError());
        EXPECT_EQ(-1, is->peekChar());
        EXPECT_FALSE(is->getWord(text));
        EXPECT_TRUE(is->isEof());
    }
}

TEST(IStreamBuf, EverySourceMovesToTheSamePositions)
{
    const struct {
        const char *what;
        int64_t pos;
        int whence;
        bool good;
        int64_t position;
        const char *next;
    } cases[] = {
        {"start", 0, 0, true, 0, "012"},
        {"back from the end", -3, 2, true, 14, "def"},
        {"on from there", -10, 1, true, 7, "789"},
        {"the end itself", Sources::size(), 0, true, Sources::size(), ""},
        {"before the start", -1, 0, false, -1, ""},
        {"far before the start", INT64_MIN, 2, false, -1, ""},
        {"unknown whence", 0, 3, false, -1, ""},
    };
    Sources sources;
    for (auto &[kind, is] : sources.all) {
        for (const auto &c : cases) {
            SCOPED_TRACE(kind + ": " + c.what);
            EXPECT_EQ(c.good, is->seekg(c.pos, c.whence));
            EXPECT_EQ(!c.good, is->hasError());
            EXPECT_EQ(!c.good, is->getSource().hasError());
            if (c.good) {
                EXPECT_EQ(c.position, is->tellg());
            }
            EXPECT_EQ(c.next, bytesOf(*is, static_cast<int>(std::strlen(c.next))));
        }
    }
}

TEST(IStreamBuf, MemoryEndsAtItsSize)
{
    UT_IStream is("abc", 3, false);
    EXPECT_TRUE(is.seekg(3, 0));
    EXPECT_FALSE(is.seekg(4, 0));
    EXPECT_TRUE(is.hasError());
    EXPECT_TRUE(is.isEof());
    EXPECT_TRUE(is.seekg(-1, 2));
    EXPECT_EQ('c', is.getChar());
}

TEST(IStreamBuf, ARangeEndsWithItsLengthOrItsInnerSource)
{
    const struct {
        const char *what;
        int64_t start, length;
        const char *line;
    } cases[] = {
        {"inside", 2, 3, "234"}, {"to the end", 11, INT64_MAX, "abcdef"},
        {"empty", 3, 0, ""},     {"negative", 3, -1, ""},
        {"outside", 100, 3, ""}, {"in front", -1, 3, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const UT_IStream whole(TEXT.data(), Sources::size(), true);
        std::unique_ptr<UT_IStream> range(whole.newRangeStream(c.start, c.length));
        UT_ScratchBuffer line;
        EXPECT_TRUE(range->isBinary());
        EXPECT_EQ(*c.line != '\0', range->getLine(line, '\n'));
        EXPECT_STREQ(c.line, line.buffer());
        EXPECT_TRUE(range->isEof());
        EXPECT_EQ(-1, range->peekChar());
    }
}

TEST(IStreamBuf, BehindARangeLiesItsEndAndInFrontAnError)
{
    const UT_IStream whole(TEXT.data(), Sources::size(), false);
    std::unique_ptr<UT_IStream> range(whole.newRangeStream(4, 4));
    EXPECT_TRUE(range->seekg(6, 0));
    EXPECT_TRUE(range->isEof());
    EXPECT_FALSE(range->seekg(-2, 0));
    EXPECT_TRUE(range->hasError());
    EXPECT_TRUE(range->seekg(-1, 2));
    EXPECT_EQ('7', range->getChar());
    EXPECT_EQ(-1, range->getChar());
}

TEST(IStreamBuf, ARangeTellsItsInnerSourcesError)
{
    ScratchDirectory scratch;
    UT_IStreamBuf *directory = UT_IStreamBuf::openFile(scratch.path().c_str());
    UT_IStream range(UT_IStreamBuf::makeRange(*directory, 0, 10), false);
    directory->release();
    UT_ScratchBuffer line;
    EXPECT_FALSE(range.getLine(line, '\n'));
    EXPECT_TRUE(range.hasError());
}

TEST(IStreamBuf, OnlyTheFirstErrorCounts)
{
    UT_IStreamBuf *source = UT_IStreamBuf::makeEmpty();
    source->setError("first");
    source->setError("second");
    EXPECT_STREQ("first", source->getErrorText());
    EXPECT_FALSE(source->seekg(0, 0));
    EXPECT_FALSE(source->hasError()) << "the seek forgets it before it fails";
    source->release();
}

TEST(IStreamBuf, ANullFileHasAnErrorFromTheStart)
{
    UT_IStream is(static_cast<FILE *>(nullptr), false);
    UT_ScratchBuffer line;
    EXPECT_FALSE(is.getLine(line, '\n'));
    EXPECT_TRUE(is.hasError());
}

namespace
{

// In a process of its own, with `text` as standard input: two streams share it.
// Ends with status 0 when both saw what they should.
[[noreturn]] void readStdinTwice(const char *text, bool lineMode, const std::string &expected)
{
    int ends[2];
    if (pipe(ends) != 0 || write(ends[1], text, std::strlen(text)) < 0)
        std::abort();
    dup2(ends[0], 0);
    close(ends[1]);

    UT_IStream::setStdinLineMode(lineMode);
    UT_ScratchBuffer line;
    std::string seen;
    {
        UT_IStream first(stdin, false);
        if (first.getLine(line, '\n'))
            seen += std::string(line.buffer()) + "|";
    }
    UT_IStream second(std::cin, false);
    while (second.getLine(line, ';'))
        seen += std::string(line.buffer()) + "|";
    std::cerr << seen;
    std::_Exit(seen == expected ? 0 : 1);
}

} // namespace

TEST(StdinDeathTest, AllStreamsShareStandardInput)
{
    const testing::ExitedWithCode good(0);
    EXPECT_EXIT(readStdinTwice("a\nb;c\r\nd", false, "a|b|c\r\nd|"), good, "");
    EXPECT_EXIT(readStdinTwice("a\nb;c\r\nd", true, "a|b|c\nd\n|"), good, "");
}
