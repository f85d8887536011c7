#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(ScratchBuffer, LeavesItsInlineBytesWithThe2000thCharacter)
{
    UT_ScratchBuffer text;
    const char *inlineBytes = text.buffer();
    EXPECT_STREQ("", inlineBytes);
    std::string expected;
    for (int i = 0; i < 9000; ++i) {
        const char c = static_cast<char>('a' + i % 26);
        text.append(c);
        expected += c;
        ASSERT_EQ(i < 1999, text.buffer() == inlineBytes) << i;
    }
    EXPECT_EQ(expected, text.buffer());
    EXPECT_EQ(9000, text.length());
}

TEST(ScratchBuffer, AppendsTextsOfAnyLength)
{
    UT_ScratchBuffer text;
    const std::string big(10000, 'x');
    text.append("ab");
    text.append(static_cast<const char *>(nullptr));
    text.append("cde\0fgh", 5);
    text.append(big.c_str());
    EXPECT_EQ(std::string("abcde\0f", 7) + big, std::string(text.buffer(), 10007));
    EXPECT_EQ(10007, text.length());
    text.clear();
    EXPECT_STREQ("", text.buffer());
    EXPECT_EQ(0, text.length());
}

TEST(ScratchBuffer, ReserveMovesOnceAndKeepsTheText)
{
    UT_ScratchBuffer text;
    text.append("abc");
    const char *inlineBytes = text.buffer();
    text.reserve(2000);
    EXPECT_EQ(inlineBytes, text.buffer());
    text.reserve(2001);
    EXPECT_NE(inlineBytes, text.buffer());
    text.reserve(50000);
    const char *roomy = text.buffer();
    text.append(std::string(49996, 'x').c_str());
    EXPECT_EQ(roomy, text.buffer());
    EXPECT_EQ("abc" + std::string(49996, 'x'), text.buffer());
}

TEST(ScratchBuffer, BelongsToItsWriterWhileALockIsOpen)
{
    UT_ScratchBuffer text;
    text.append("abc");
    char *outer = text.lock(0, 10);
    EXPECT_EQ(text.buffer(), outer);
    char *place = text.lock(3, 5000);
    text.append("no");
    text.append("no", 2);
    text.append('n');
    text.clear();
    EXPECT_STREQ("abc", text.buffer());
    std::string(4999, 'y').copy(place, 4999);
    place[4999] = '\0';
    text.release(true);
    EXPECT_EQ(3, text.length()) << "one lock is still open";
    EXPECT_TRUE(text.isLocked());
    text.release(true);
    EXPECT_FALSE(text.isLocked());
    EXPECT_EQ(5002, text.length());
    text.lock(0, 1)[0] = '\0';
    text.sprintf("%s", "new");
    EXPECT_STREQ("new", text.buffer()) << "replacing is not appending";
    text.lock(0, 1)[0] = '\0';
    text.release(true);
    text.release(false);
    EXPECT_EQ(3, text.length()) << "not recomputed";
}

TEST(ScratchBuffer, FormatsTextsOfAnyLength)
{
    for (const size_t length : {0U, 1U, 1998U, 1999U, 2000U, 4000U, 9000U}) {
        SCOPED_TRACE(length);
        const std::string part(length, 'x');
        UT_ScratchBuffer text;
        text.append("old");
        text.sprintf("%s%d", part.c_str(), 7);
        EXPECT_EQ(part + "7", text.buffer());
        text.appendSprintf("-%s", part.c_str());
        EXPECT_EQ(part + "7-" + part, text.buffer());
        EXPECT_EQ(static_cast<int>(2 * length + 2), text.length());
    }
}

TEST(ScratchBuffer, ReadsLines)
{
    std::string file = "abc\r\n\nx\r\r\n\r\n";
    std::vector<std::string> lines = {"abc", "", "x\r", ""};
    for (const size_t length : {1998U, 1999U, 2000U, 2001U, 6094U, 6095U, 6096U, 20000U}) {
        lines.push_back(std::string(length, 'x'));
        file += lines.back() + (length % 2 == 0 ? "\n" : "\r\n");
    }
    lines.push_back("last");
    file += "last";
    FILE *fp = fmemopen(file.data(), file.size(), "rb");
    ASSERT_NE(nullptr, fp);
    UT_ScratchBuffer text;
    for (const std::string &line : lines) {
        ASSERT_TRUE(text.getLine(fp));
        ASSERT_EQ(line, text.buffer());
        ASSERT_EQ(static_cast<int>(line.size()), text.length());
    }
    EXPECT_FALSE(text.getLine(fp));
    fclose(fp);
    fp = fopen("/", "rb");
    ASSERT_NE(nullptr, fp);
    EXPECT_FALSE(text.getLine(fp)) << "a folder cannot be read";
    fclose(fp);
}

TEST(ScratchBuffer, StripsComments)
{
    const struct {
        const char *before, *after;
    } cases[] = {
        {"a # b", "a "},
        {"'#' \"#\" # b", "'#' \"#\" "},
        {"a \\# b # c", "a \\# b "},
        {"\"it's\" # b", "\"it's\" "},
        {"'open # b", "'open # b"},
        {"none", "none"},
        {"a\\\\# b", "a\\\\# b"},
        {"#", ""},
        {"", ""},
    };
    for (const auto &c : cases) {
        UT_ScratchBuffer text;
        text.append(c.before);
        text.stripComment('#');
        EXPECT_STREQ(c.after, text.buffer());
        EXPECT_EQ(static_cast<int>(std::string(c.after).size()), text.length());
    }
}

TEST(ScratchBuffer, HandsItsTextOver)
{
    UT_ScratchBuffer text;
    text.append("abcdef");
    text.truncate(3);
    UT_String copy;
    text.copyToString(copy);
    text.append("x");
    EXPECT_STREQ("abc", copy);
    EXPECT_STREQ("abcx", text.buffer());
}
