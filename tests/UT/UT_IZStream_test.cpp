#include "UT/UT_IZStream.h"

#include "UT/UT_IFStream.h"
#include "UT/UT_IGZStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <zlib.h>

namespace
{

// windowBits as deflateInit2 has them: 15 zlib, -15 raw.
std::string deflated(std::string text, int windowBits)
{
    z_stream z = {};
    deflateInit2(&z, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string out(text.size() + 1000, '\0');
    z.next_in = reinterpret_cast<Bytef *>(text.data());
    z.avail_in = static_cast<uInt>(text.size());
    z.next_out = reinterpret_cast<Bytef *>(out.data());
    z.avail_out = static_cast<uInt>(out.size());
    deflate(&z, Z_FINISH);
    out.resize(z.total_out);
    deflateEnd(&z);
    return out;
}

std::string gzipped(const std::string &text, char flags = 0, const std::string &fields = "")
{
    const std::string head = {31, static_cast<char>(139), 8, flags, 1, 2, 3, 4, 0, 3};
    return head + fields + deflated(text, -15) + "trailer.";
}

// Numbers, which compress to more than a block.
std::string longText()
{
    std::string text;
    for (unsigned i = 0, n = 1; i < 20000; ++i, n = n * 1664525 + 1013904223)
        text += std::to_string(n >> 8) + "\n";
    return text;
}

UT_IStream streamOver(const std::string &bytes)
{
    return UT_IStream(bytes.data(), static_cast<int>(bytes.size()), true);
}

std::string allOf(UT_IStream &is)
{
    std::string text;
    for (int c; (c = is.getChar()) != -1;)
        text += static_cast<char>(c);
    return text;
}

} // namespace

TEST(IZStream, ReadsWhatFollowsInAnotherStream)
{
    ScratchDirectory scratch;
    const std::string text = longText();
    UT_IFStream file(scratch.write("file", "head\n" + deflated(text, 15)).c_str(), true);
    UT_ScratchBuffer line;
    ASSERT_TRUE(file.getLine(line, '\n'));
    UT_IZStream is(file);
    EXPECT_TRUE(is.isBinary());
    EXPECT_EQ(text, allOf(is));
    EXPECT_TRUE(is.isEof());
    EXPECT_EQ(static_cast<int64_t>(text.size()), is.tellg());

    EXPECT_TRUE(is.seekg(0, 0));
    EXPECT_TRUE(is.getLine(line, '\n'));
    EXPECT_STREQ("0", line.buffer());
}

TEST(IZStream, PositionsCountDecompressedBytesAndBackMeansAgain)
{
    const std::string bytes = deflated("0123456789abcdef", 15);
    UT_IStream src = streamOver(bytes);
    UT_IZStream is(src);
    char ten[10];
    EXPECT_EQ(10, is.bread(ten, 10));
    EXPECT_EQ(10, is.tellg());

    const struct {
        const char *what;
        int64_t pos;
        int whence;
        bool good;
        int next;
    } cases[] = {
        {"back", 5, 0, true, '5'},           {"from the end", 0, 2, false, 0},
        {"unknown whence", 0, 3, false, 0},  {"forward", 12, 0, true, 'c'},
        {"behind the end", 17, 0, false, 0}, {"in front", -1, 0, false, 0},
        {"far on", INT64_MAX, 1, false, 0},  {"to the end", 16, 0, true, -1},
        {"relative", -1, 1, true, 'f'},      {"start", 0, 0, true, '0'},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.good, is.seekg(c.pos, c.whence));
        EXPECT_EQ(!c.good, is.hasError());
        if (c.good) {
            EXPECT_EQ(c.next, is.getChar());
        }
    }
}

TEST(IZStream, APeekedByteIsDeliveredByTheNextRead)
{
    const std::string bytes = deflated("\x80x", 15);
    UT_IStream src = streamOver(bytes);
    UT_IZStream is(src);
    unsigned char c[2];
    EXPECT_EQ(0x80, is.peekChar());
    EXPECT_EQ(0x80, is.peekChar());
    EXPECT_EQ(0, is.tellg());
    EXPECT_EQ(1, is.bread(c, 1));
    EXPECT_EQ(0x80, c[0]);
    EXPECT_FALSE(is.hasError());
    EXPECT_EQ('x', is.peekChar());
    EXPECT_FALSE(is.isEof());
    EXPECT_EQ(1, is.bread(c, 2));
    EXPECT_EQ(-1, is.peekChar());
}

TEST(IZStream, CorruptDataAreAnErrorAndTruncatedOnesTheEnd)
{
    const std::string good = deflated(longText(), 15);
    const struct {
        const char *what;
        std::string bytes;
        const char *error; // null: none
    } cases[] = {
        {"no header", "plain text", "data error"},
        {"broken checksum", good.substr(0, good.size() - 1) + "?", "data error"},
        {"truncated", good.substr(0, good.size() / 2), nullptr},
        {"nothing", "", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_IStream src = streamOver(c.bytes);
        UT_IZStream is(src);
        UT_ScratchBuffer text;
        while (is.getLine(text, '\n')) {
        }
        EXPECT_EQ(c.error != nullptr, is.hasError());
        EXPECT_EQ(c.error != nullptr, is.isEof()) << "isEof() needs the data's own end";
        if (c.error) {
            EXPECT_STREQ(c.error, is.getSource().getErrorText());
        }
        char byte;
        EXPECT_EQ(0, is.bread(&byte, 1));
    }
}

TEST(IGZStream, OptionalFieldsOfTheHeaderAreSkipped)
{
    const std::string extra = std::string("\x2c\x01", 2) + std::string(300, 'e');
    const std::string name("name\0", 5), comment("comment\0", 8);
    const struct {
        const char *what;
        std::string bytes;
    } cases[] = {
        {"no fields", gzipped("text")},
        {"text flag", gzipped("text", 1)},
        {"name and comment", gzipped("text", 24, name + comment)},
        {"all", gzipped("text", 31, extra + name + comment + "cc")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_IStream src = streamOver(c.bytes);
        UT_IGZStream is(src);
        EXPECT_EQ("text", allOf(is));
        EXPECT_TRUE(is.isEof());
        EXPECT_TRUE(is.seekg(2, 0));
        EXPECT_EQ("xt", allOf(is));
    }
}

TEST(IGZStream, AnotherHeaderFailsAtTheFirstRead)
{
    const std::string good = gzipped("text", 31, "\1");
    std::string method = gzipped("text");
    method[2] = 7;
    const struct {
        const char *what;
        std::string bytes;
    } cases[] = {
        {"magic", "plain text"},
        {"method", method},
        {"reserved flag", gzipped("text", 32)},
        {"cut in the head", good.substr(0, 9)},
        {"cut in the extra field", good.substr(0, 11)},
        {"no end of the name", gzipped("text", 8).substr(0, 10) + "name"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_IStream src = streamOver(c.bytes);
        UT_IGZStream is(src);
        UT_ScratchBuffer word;
        EXPECT_FALSE(is.hasError());
        EXPECT_FALSE(is.getWord(word));
        EXPECT_STREQ("stream error", is.getSource().getErrorText());
        EXPECT_TRUE(is.hasError());
    }
}

TEST(IGZStream, AStreamHandsOutDecompressedViewsOfItself)
{
    const std::string zlib = deflated("from zlib", 15), gzip = gzipped("from gzip");
    UT_IStream zlibSource = streamOver(zlib), gzipSource = streamOver(gzip);
    const std::unique_ptr<UT_IStream> first(zlibSource.newZLibStream());
    const std::unique_ptr<UT_IStream> second(gzipSource.newGZipStream());
    EXPECT_EQ("from zlib", allOf(*first));
    EXPECT_EQ("from gzip", allOf(*second));
}
