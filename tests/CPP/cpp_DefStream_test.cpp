#include "CPP/cpp_DefStream.h"

#include "UT/UT_IStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/PlainText.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>

static std::string linesOf(CPP_Stream &stream)
{
    std::vector<std::string> lines;
    for (UT_ScratchBuffer line; stream.readLine(line);)
        lines.emplace_back(line.buffer());
    return joined(lines);
}

TEST(DefStream, FindsLinesWhereverABlockEnds)
{
    const ScratchDirectory folder;
    for (const size_t before : {65533U, 65534U, 65535U, 65536U, 131070U, 131071U}) {
        const std::string first(before, 'x');
        cpp_DefStream stream;
        ASSERT_TRUE(stream.open(folder.write("in", first + "\r\n\r\nb\rc\r\r\nd").c_str()));
        EXPECT_EQ(first + "||b\rc\r|d|", linesOf(stream)) << before;
    }
}

TEST(DefStream, TakesOnlyTheLinesItIsAskedForFromALentSource)
{
    const ScratchDirectory folder;
    FILE *fp = std::fopen(folder.write("in", "a\r\nb\nc\n").c_str(), "rb");
    UT_ScratchBuffer line;
    {
        cpp_DefStream stream;
        stream.setFile(fp);
        ASSERT_TRUE(stream.isOpen() && stream.readLine(line));
        EXPECT_STREQ("a", line.buffer());
        UT_IStream other("x\r\ny", 4, false);
        stream.setStream(&other);
        EXPECT_EQ("x|y|", linesOf(stream));
    }
    EXPECT_EQ('b', std::fgetc(fp));
    std::fclose(fp);
}

TEST(DefStream, OpensNoFolderAndThenHasNoSource)
{
    cpp_DefStream stream;
    EXPECT_TRUE(stream.isOpen()); // standard input
    for (const char *path : {"/", "/no/such/file"}) {
        EXPECT_FALSE(stream.open(path) || stream.isOpen());
        EXPECT_EQ("", linesOf(stream));
    }
}
