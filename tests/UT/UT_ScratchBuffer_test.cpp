#include "UT/UT_ScratchBuffer.h"

#include "tests/support/Cases.h"

TEST(ScratchBuffer, LeavesItsInlineBytesWithThe2000thCharacter)
{
    UT_ScratchBuffer text;
    const char *inlineBytes = text.buffer();
    text.reserve(2000);
    std::string expected;
    for (int i = 0; i < 9000; ++i) {
        expected += static_cast<char>('a' + i % 26);
        text.append(expected.back());
        ASSERT_EQ(i < 1999, text.buffer() == inlineBytes) << i;
    }
    text.append(static_cast<const char *>(nullptr));
    text.append("\0fgh", 2);
    EXPECT_EQ(expected + '\0' + 'f', std::string(text.buffer(), 9002));
    UT_String copy;
    text.truncate(4);
    text.copyToString(copy);
    text.clear();
    EXPECT_STREQ("", text.buffer());
    EXPECT_EQ(4, text.length() + copy.length());
}

TEST(ScratchBuffer, BelongsToItsWriterWhileALockIsOpen)
{
    UT_ScratchBuffer text;
    text.append("abc");
    EXPECT_EQ(text.buffer(), text.lock(0, 10));
    char *place = text.lock(3, 5000);
    text.append("no");
    text.append('n');
    text.clear();
    EXPECT_STREQ("abc", text.buffer());
    std::string(4999, 'y').copy(place, 4999);
    place[4999] = '\0';
    text.release(true);
    EXPECT_EQ(3, text.length()) << "one lock is still open";
    text.release(true);
    EXPECT_EQ(5002, text.length());
    text.lock(0, 1);
    text.sprintf("%s", "new");
    EXPECT_STREQ("new", text.buffer()) << "replacing is not appending";
    text.buffer()[1] = '\0';
    text.release(false);
    EXPECT_EQ(3, text.length()) << "not recomputed";
}

TEST(ScratchBuffer, FormatsTextsOfAnyLength)
{
    for (const size_t length : {0U, 1998U, 1999U, 2000U, 4000U, 9000U}) {
        const std::string part(length, 'x'), all = part + "7-" + part;
        UT_ScratchBuffer text;
        text.sprintf("old");
        text.sprintf("%s%d", part.c_str(), 7);
        text.appendSprintf("-%s", part.c_str());
        EXPECT_EQ(all, std::string(text.buffer(), static_cast<size_t>(text.length())));
    }
}

TEST(ScratchBuffer, ReadsLines)
{
    std::string file = "abc\r\n\nx\r\r\n\r\n";
    std::vector<std::string> lines = {"abc", "", "x\r", ""};
    for (const size_t length : {1998U, 1999U, 2000U, 2001U, 6095U, 20000U}) {
        lines.push_back(std::string(length, 'x'));
        file += lines.back() + (length % 2 == 0 ? "\n" : "\r\n");
    }
    lines.push_back("last");
    file += "last";
    UT_ScratchBuffer text;
    FILE *const fp = fmemopen(file.data(), file.size(), "rb"), *const folder = fopen("/", "rb");
    for (const std::string &line : lines) {
        ASSERT_TRUE(text.getLine(fp));
        ASSERT_EQ(line, std::string(text.buffer(), static_cast<size_t>(text.length())));
    }
    for (FILE *const each : {fp, folder}) { // at its end, and one that cannot be read
        EXPECT_FALSE(text.getLine(each));
        fclose(each);
    }
}

TEST(ScratchBuffer, SwapsTextsWhereverTheyLie)
{
    const std::string texts[] = {"short", "brief", std::string(5000, 'a'), std::string(9000, 'b')};
    for (const std::string &one : texts)
        for (const std::string &two : texts) {
            UT_ScratchBuffer first, second;
            first.append(one.c_str());
            second.append(two.c_str());
            first.swap(second);
            second.append("!");
            EXPECT_EQ(two, first.buffer());
            EXPECT_EQ(one + "!", second.buffer());
        }
}
