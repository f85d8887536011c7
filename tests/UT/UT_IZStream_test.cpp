#include "UT/UT_IZStream.h"

#include "UT/UT_IGZStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/Deflated.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{
UT_IStream streamOver(const std::string &bytes)
{
    return UT_IStream(bytes.data(), static_cast<int>(bytes.size()), true);
}
} // namespace

TEST(IZStream, APeekedByteIsDeliveredByTheNextRead)
{
    const std::string bytes = deflated("\x80x");
    UT_IStream src = streamOver(bytes);
    UT_IZStream is(src);
    unsigned char c[2];
    EXPECT_EQ(0x80, is.peekChar());
    EXPECT_EQ(0x80, is.peekChar());
    EXPECT_EQ(0, is.tellg());
    EXPECT_EQ(1, is.bread(c, 1));
    EXPECT_EQ(0x80, c[0]);
    EXPECT_EQ('x', is.peekChar());
    EXPECT_FALSE(is.isEof());
    EXPECT_EQ(1, is.bread(c, 2));
    EXPECT_EQ(-1, is.peekChar());
}

TEST(IZStream, CorruptDataAreAnErrorAndTruncatedOnesTheEnd)
{
    const std::string good = deflated("some text"), cut = good.substr(0, good.size() - 1);
    const struct {
        std::string bytes;
        const char *error; // null: none
    } cases[] = {
        {"plain text", "data error"}, {cut + "?", "data error"}, {cut, nullptr}, {"", nullptr}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.bytes);
        UT_IStream src = streamOver(c.bytes);
        UT_IZStream is(src);
        UT_ScratchBuffer text;
        while (is.getLine(text, '\n')) {
        }
        EXPECT_EQ(c.error != nullptr, is.hasError());
        EXPECT_EQ(c.error != nullptr, is.isEof()) << "isEof() needs the data's own end";
        EXPECT_STREQ(c.error, c.error ? is.getSource().getErrorText() : nullptr);
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
        UT_IStream src = streamOver(bytes);
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
