#include "UT/UT_IStream.h"

#include "UT/UT_ScratchBuffer.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainReader.h"
#include "tests/support/PlainText.h"
#include "tests/support/TrickleSource.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <sstream>

// Reads all of a text, whose chunks end as `cuts` says, by one reader, then more at its end.
static void readAll(const std::string &text, uint64_t cuts, size_t reader)
{
    if (testing::Test::HasFailure())
        return;
    UT_IStream is(new TrickleSource(text, cuts), false);
    PlainReader plain{text};
    for (size_t reads = 0; reads <= text.size() || !plain.isAtEnd(); ++reads) {
        const size_t next = plain.isAtEnd() ? reads % (PlainReader::READERS - 1) : reader;
        EXPECT_EQ(plain.read(next), readFrom(is, next)) << "reader " << next;
    }
    EXPECT_EQ(-1, is.getChar());
    EXPECT_TRUE(is.isEof());
    if (testing::Test::HasFailure())
        ADD_FAILURE() << "in " << testing::PrintToString(text) << " cut " << cuts;
}

TEST(IStream, TextReadersFindTheSameHoweverTheTextIsCut)
{
    for (const char *const alphabet : {"a\"\\ \n", "a;\r\n ", "1.-e x"})
        forEachString(alphabet, 4, [](const std::string &text) {
            for (uint64_t cuts = 0; cuts < (text.empty() ? 1 : uint64_t{1} << (text.size() - 1));
                 ++cuts)
                for (size_t reader = 0; reader < PlainReader::READERS; ++reader)
                    if (reader != 6) // to skip space alone does not get on
                        readAll(text, cuts, reader);
        });
}

TEST(IStream, ALockedBufferStaysAsItIsAndInlineCommentsAreCutWhenAskedFor)
{
    UT_IStream is = streamOver("one\r\ntwo # '#'\n");
    UT_ScratchBuffer line, next;
    line.append("kept\r");
    line.lock(0, 0);
    EXPECT_TRUE(is.getLine(line, '\n'));
    EXPECT_STREQ("kept\r", line.buffer());
    EXPECT_EQ(1, is.getNonCommentLine(next, '#', true));
    EXPECT_STREQ("two ", next.buffer());
}

// The number that a text holds, as each type reads it.
template <class... T>
std::string numbersFrom(const char *text)
{
    std::ostringstream all;
    const auto add = [&](auto value) {
        EXPECT_EQ(1, streamOver(text).read(&value, 2)) << "stops at the first missing one";
        all << (all.tellp() > 0 ? " " : "") << std::setprecision(12) << value;
    };
    (add(T()), ...);
    return all.str();
}

TEST(IStream, NumbersAreReadAlikeOnEveryPlatform)
{
    expectTable(
        TEST_DATA "/data/numbers",
        {{"int32_t uint32_t int16_t uint16_t", numbersFrom<int32_t, uint32_t, int16_t, uint16_t>},
         {"int64_t uint64_t float double", numbersFrom<int64_t, uint64_t, float, double>}});
}

// Reads values in the stream's form, and compares their bytes.
template <class... T>
void expectBigEndian(const std::string &bytes)
{
    const auto expectType = [&](auto zero) {
        decltype(zero) values[20];
        const int count = streamOver(bytes, true).read(values, 20);
        ASSERT_EQ(static_cast<int>(bytes.size() / sizeof zero), count)
            << "an incomplete value counts";
        std::string all(static_cast<size_t>(count) * sizeof zero, '\0');
        std::memcpy(&all[0], values, all.size());
        for (auto value = all.begin(); value != all.end(); value += sizeof zero)
            std::reverse(value, value + sizeof zero);
        EXPECT_EQ(bytes.substr(0, all.size()), all);
    };
    (expectType(T()), ...);
}

TEST(IStream, BinaryValuesAreBigEndian)
{
    expectBigEndian<int16_t, uint16_t, int32_t, uint32_t, int64_t, uint64_t, float, double>(
        "0123456789abcdef\xff");
}

TEST(IStream, StringsAreReadInTheFormAskedForAndFormsAreRestored)
{
    UT_IStream is = streamOver({"\0\2ab \"c d\" e", 12});
    UT_String text;
    EXPECT_TRUE(is.readString(text, true) && !is.isBinary());
    EXPECT_STREQ("ab", text);
    is.pushBinary(true);
    EXPECT_TRUE(is.readString(text, false) && is.isBinary());
    EXPECT_STREQ("c d", text);
    is.pushBinary(false);
    is.popBinary();
    EXPECT_TRUE(is.isBinary());
    is.popBinary();
    is.popBinary(); // nothing saved: no effect
    EXPECT_FALSE(is.isBinary());
    EXPECT_TRUE(text.load(is));
    EXPECT_STREQ("e", text);
    EXPECT_FALSE(text.load(is));
}
