#include "UT/UT_IStream.h"

#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"
#include "tests/support/TrickleSource.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

std::string textOf(const UT_ScratchBuffer &buffer)
{
    return std::string(buffer.buffer(), static_cast<size_t>(buffer.length()));
}

// The text must outlive the stream.
std::unique_ptr<UT_IStream> memoryStream(std::string_view text, bool binary = false)
{
    return std::make_unique<UT_IStream>(text.data(), static_cast<int>(text.size()), binary);
}

// Runs a reading twice: with all of the text in one chunk, and byte by byte.
void overBothChunkings(const std::string &text, const std::function<void(UT_IStream &)> &reading)
{
    {
        SCOPED_TRACE("one chunk");
        reading(*memoryStream(text));
    }
    SCOPED_TRACE("byte by byte");
    UT_IStream trickle(new TrickleSource(text), false);
    reading(trickle);
}

std::string rest(UT_IStream &is)
{
    std::string bytes;
    while (!is.isEof())
        bytes += static_cast<char>(is.getChar());
    return bytes;
}

} // namespace

TEST(IStream, LinesEndAtTheDelimiterOrWithTheInput)
{
    const struct {
        const char *what, *in;
        char delimiter;
        Texts lines;
    } cases[] = {
        {"nothing", "", '\n', {}},
        {"last line without newline", "a\nb", '\n', {"a", "b"}},
        {"empty lines", "\n\na\n", '\n', {"", "", "a"}},
        {"carriage return goes with the newline", "a\r\n\r\n", '\n', {"a", ""}},
        {"others stay", "a\rb\r\r\nc\r", '\n', {"a\rb\r", "c\r"}},
        {"another delimiter", "a\r;b\n;", ';', {"a\r", "b\n"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        overBothChunkings(c.in, [&](UT_IStream &is) {
            Texts lines;
            UT_ScratchBuffer line;
            while (is.getLine(line, c.delimiter))
                lines.push_back(textOf(line));
            EXPECT_EQ(c.lines, lines);
            EXPECT_FALSE(is.hasError());
        });
    }
}

TEST(IStream, ALockedBufferStaysAsItIsWhileTheLineIsConsumed)
{
    auto is = memoryStream("one\r\ntwo\n");
    UT_ScratchBuffer line;
    line.append("kept\r");
    line.lock(0, 0);
    EXPECT_TRUE(is->getLine(line, '\n'));
    EXPECT_EQ("kept\r", textOf(line));
    EXPECT_EQ("two\n", rest(*is));
}

TEST(IStream, CommentAndBlankLinesAreSkippedAndCounted)
{
    const struct {
        const char *what, *in;
        bool stripInline;
        int count;
        const char *line, *rest;
    } cases[] = {
        {"leading space goes", "  a # b\nc", false, 1, "a # b", "c"},
        {"comments count, blank lines do not", "#1\n\n \t#2\n\na\nb", false, 3, "a", "b"},
        {"inline comment", "a '#' b# c\n", true, 1, "a '#' b", ""},
        {"comments only", "#1\n#2", false, 2, "", ""},
        {"nothing", " \n ", false, 0, "", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        overBothChunkings(c.in, [&](UT_IStream &is) {
            UT_ScratchBuffer line;
            EXPECT_EQ(c.count, is.getNonCommentLine(line, '#', c.stripInline));
            EXPECT_EQ(c.line, textOf(line));
            EXPECT_EQ(c.rest, rest(is));
        });
    }
}

TEST(IStream, SkippingTellsWhetherAnythingFollowsOrWasThere)
{
    const struct {
        const char *what, *in;
        bool isSpace; // skip white space, or else past ';'
        bool result;
        const char *rest;
    } cases[] = {
        {"space before a word", " \t\r\n\v\fa b", true, true, "a b"},
        {"only space", "  \n", true, false, ""},
        {"past the delimiter", "ab;;c", false, true, ";c"},
        {"no delimiter", "abc", false, true, ""},
        {"nothing", "", false, false, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        overBothChunkings(c.in, [&](UT_IStream &is) {
            EXPECT_EQ(c.result, c.isSpace ? is.skipWhitespace() : is.skipPast(';'));
            EXPECT_EQ(c.rest, rest(is));
        });
    }
}

TEST(IStream, StringsAreWordsOrQuotedTextsWithEscapes)
{
    const struct {
        const char *what, *in, *text, *rest;
    } cases[] = {
        {"quoted", R"( "a \"b\" \\c" d)", R"(a "b" \c)", " d"},
        {"quoted with other escapes", R"("a\nb\")", R"(a\nb")", ""},
        {"empty quotes", R"(""x)", "", "x"},
        {"bare", R"(ab\xy z)", R"(ab\xy)", " z"},
        {"bare with escapes", R"(a\\b\"c"d e)", R"(a\b"c"d)", " e"},
        {"bare that begins with a quote", R"(\"a b)", R"("a)", " b"},
        {"a first backslash is plain", R"(\\a)", R"(\\a)", ""},
        {"backslash before a space", "a\\ b", "a\\", " b"},
        {"backslash at the end", "a\\", "a\\", ""},
        {"unclosed quote", "\"a b\n", "a b\n", ""},
        {"bytes beyond ASCII", "\xe9\xff z", "\xe9\xff", " z"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        overBothChunkings(c.in, [&](UT_IStream &is) {
            UT_ScratchBuffer text;
            EXPECT_TRUE(is.getString(text));
            EXPECT_EQ(c.text, textOf(text));
            EXPECT_EQ(c.rest, rest(is));
            EXPECT_FALSE(is.getString(text));
        });
    }
}

TEST(IStream, NumberTokensEndWhereTheNumberDoes)
{
    const struct {
        const char *in, *token;
        bool isFloating;
        const char *rest;
    } cases[] = {
        {" 12 ", "12", false, " "},        {"-1.5e+3x", "-1.5e+3", true, "x"},
        {"+7-2", "+7", false, "-2"},       {"1.2.3", "1.2", true, ".3"},
        {"1e5.0", "1e5", true, ".0"},      {"1e5e6", "1e5", true, "e6"},
        {"2e+-1", "2e+", true, "-1"},      {".5", ".5", true, ""},
        {"abc.5 1", "abc.5", false, " 1"}, {"-x", "-", false, "x"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.in);
        overBothChunkings(c.in, [&](UT_IStream &is) {
            UT_ScratchBuffer token;
            bool isFloating = !c.isFloating;
            EXPECT_TRUE(is.getSource().getNumberToken(token, isFloating));
            EXPECT_EQ(c.token, textOf(token));
            EXPECT_EQ(c.isFloating, isFloating);
            EXPECT_EQ(c.rest, rest(is));
        });
    }
}

template <class T>
T numberFrom(const std::string &text)
{
    T value = 77;
    EXPECT_EQ(1, memoryStream(text)->read(&value, 1));
    return value;
}

TEST(IStream, IntegersAreReadAlikeOnEveryPlatform)
{
    const struct {
        const char *in;
        int32_t i32;
        uint32_t u32;
        int16_t i16;
        int64_t i64;
    } cases[] = {
        {"2.5", 3, 3, 3, 2},
        {"-2.5", -2, 4294967294u, -2, -2},
        {"-7", -7, 4294967289u, -7, -7},
        {"1e3", 1000, 1000, 1000, 1},
        {"70000", 70000, 70000, 4464, 70000},
        {"5000000000", INT32_MAX, UINT32_MAX, -1, 5000000000},
        {"-5000000000", INT32_MIN, UINT32_MAX, 0, -5000000000},
        {"1e30", INT32_MAX, UINT32_MAX, -1, 1},
        {"8388609.0", 8388609, 8388609, 1, 8388609}, // no half is lost in single precision
        {"99999999999999999999", INT32_MAX, UINT32_MAX, -1, INT64_MAX},
        {"word", 0, 0, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(c.i32, numberFrom<int32_t>(c.in));
        EXPECT_EQ(c.u32, numberFrom<uint32_t>(c.in));
        EXPECT_EQ(c.i16, numberFrom<int16_t>(c.in));
        EXPECT_EQ(static_cast<uint16_t>(c.u32), numberFrom<uint16_t>(c.in));
        EXPECT_EQ(c.i64, numberFrom<int64_t>(c.in));
    }
    EXPECT_EQ(18446744073709551615u, numberFrom<uint64_t>("18446744073709551615"));
}

TEST(IStream, TextNumbersStopAtTheFirstMissingOne)
{
    double values[4] = {};
    auto is = memoryStream("1.5 -2e1 word");
    EXPECT_EQ(3, is->read(values, 4));
    EXPECT_EQ(1.5, values[0]);
    EXPECT_EQ(-20, values[1]);
    EXPECT_EQ(0, values[2]);
}

TEST(IStream, BinaryValuesAreBigEndian)
{
    const std::string bytes("\x01\x02\xff\xfe\x3f\x80\x00\x00\x12\x34\x56\x78\x9a\xbc\xde\xf0\x01",
                            17);
    auto is = memoryStream(bytes, true);
    uint16_t first;
    int16_t second;
    float third;
    uint64_t last[2];
    EXPECT_EQ(1, is->bread(&first, 1));
    EXPECT_EQ(1, is->read(&second, 1)); // the stream's form
    EXPECT_EQ(1, is->bread(&third, 1));
    EXPECT_EQ(1, is->bread(last, 2)) << "an incomplete value counts";
    EXPECT_EQ(0x0102, first);
    EXPECT_EQ(-2, second);
    EXPECT_EQ(1.0f, third);
    EXPECT_EQ(0x123456789abcdef0u, last[0]);
    EXPECT_EQ(0, is->bread(last, -1));
}

TEST(IStream, BinaryStringsTakeTheShortestLengthFormAllowed)
{
    const std::string longText(70000, 'x');
    const std::string eight("\0\0\0\0\0\0\0\2", 8);
    const struct {
        const char *what;
        int minBits;
        std::string in, text;
        bool good;
    } cases[] = {
        {"8 bits", 8, "\2abc", "ab", true},
        {"8 to 16", 8, std::string("\xff\0\2abc", 6), "ab", true},
        {"16 bits", 16, std::string("\0\3abc", 5), "abc", true},
        {"16 to 32", 16, std::string("\xff\xff\0\1\x11\x70", 6) + longText, longText, true},
        {"8 to 64", 8, "\xff\xff\xff\xff\xff\xff\xff" + eight + "ab", "ab", true},
        {"64 bits", 64, eight + "ab", "ab", true},
        {"empty", 8, std::string(1, '\0'), "", true},
        {"no length", 16, std::string(1, '\0'), "old", false},
        {"short text", 8, "\5abc", "old", false},
        {"huge length", 32, std::string("\x7f\xff\xff\xf0") + "abc", "old", false},
        {"beyond a string", 32, std::string("\xff\xff\xff\xf0") + "abc", "old", false},
        {"negative", 64, std::string(8, '\xfe'), "old", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_String text("old");
        EXPECT_EQ(c.good, memoryStream(c.in, true)->readBinaryString(text, c.minBits));
        EXPECT_EQ(c.text, text.toStdString());
    }
}

TEST(IStream, AStringReadsItselfInTheFormAskedFor)
{
    const std::string in("\0\2ab \"c d\" e", 12);
    auto is = memoryStream(in);
    UT_String text;
    EXPECT_TRUE(is->readString(text, true));
    EXPECT_STREQ("ab", text);
    EXPECT_FALSE(is->isBinary());
    EXPECT_TRUE(is->readString(text, false));
    EXPECT_STREQ("c d", text);
    EXPECT_TRUE(text.load(*is));
    EXPECT_STREQ("e", text);
    EXPECT_FALSE(text.load(*is));
    EXPECT_EQ(nullptr, text.text());
}

TEST(IStream, FormsAreRestoredInReverseOrder)
{
    auto is = memoryStream("", false);
    is->pushBinary(true);
    is->pushBinary(false);
    is->popBinary();
    EXPECT_TRUE(is->isBinary());
    is->popBinary();
    is->popBinary(); // nothing saved: no effect
    EXPECT_FALSE(is->isBinary());
}

TEST(IStream, CharactersAreSignedAndCanBeTakenBackWithinTheChunk)
{
    auto is = memoryStream("\xe9xyz");
    EXPECT_EQ(0xe9, is->peekChar()) << "from the medium";
    EXPECT_EQ(-23, is->getChar());
    EXPECT_EQ('x', is->peekChar());
    EXPECT_EQ('x', is->getChar());
    EXPECT_EQ(0, is->unread(-1));
    EXPECT_EQ(2, is->unread(5));
    EXPECT_EQ(-23, is->peekChar()) << "from the chunk";
    EXPECT_EQ(0, is->tellg());
    EXPECT_EQ("\xe9xyz", rest(*is));
    EXPECT_EQ(-1, is->getChar());
    EXPECT_EQ(-1, is->peekChar());
}

TEST(IStream, TextBuffersAndMemoryCanBeReadWithoutBeingCopied)
{
    UT_ScratchBuffer buffer, word;
    buffer.append("from a buffer");
    UT_IStream is(buffer, false);
    EXPECT_TRUE(is.getWord(word));
    EXPECT_EQ("from", textOf(word));
    UT_IStream nothing(nullptr, 5, false);
    EXPECT_FALSE(nothing.getWord(word));
    EXPECT_EQ("", textOf(word));
    EXPECT_TRUE(nothing.isEof());
}
