#include "UT/UT_IStreamBuf.h"

#include "UT/UT_Environment.h"
#include "UT/UT_IFStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/Cases.h"
#include "tests/support/Deflated.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/PlainReader.h"
#include "tests/support/Random.h"
#include "tests/support/ScratchDirectory.h"

#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <unistd.h>

namespace
{
// The same text behind every kind of source that has positions.
class Sources
{
public:
    explicit Sources(const std::string &text)
        : size(static_cast<int>(text.size())), myText(text), myInput(text),
          myFile(std::fopen(myScratch.write("file", text).c_str(), "rb"))
    {
        all["file"].reset(new UT_IStream(myFile, false));
        all["named file"].reset(new UT_IFStream(myScratch.path("file").c_str(), false));
        all["stream"].reset(new UT_IStream(myInput, false));
        all["memory"].reset(new UT_IStream(myText.data(), size, false));
        addView("range", text, [this](UT_IStream &is) { return is.newRangeStream(6, size); });
        addView("zlib", deflated(text), [](UT_IStream &is) { return is.newZLibStream(); });
        addView("zipped", gzipped(text), [](UT_IStream &is) { return is.newGZipStream(); });
    }
    ~Sources() { std::fclose(myFile); }

    const int size;
    std::map<std::string, std::unique_ptr<UT_IStream>> all;

private:
    // A view of a file with some bytes around those wanted.
    template <class View>
    void addView(const char *kind, const std::string &bytes, View view)
    {
        UT_IFStream whole(myScratch.write(kind, "before" + bytes + "after").c_str(), false);
        whole.seekg(6, 0);
        all[kind].reset(view(whole));
    }

    const std::string myText;
    ScratchDirectory myScratch;
    std::istringstream myInput;
    FILE *myFile;
};
} // namespace

TEST(IStreamBuf, EverySourceReadsAndMovesInItsText)
{
    Random random;
    std::string text;
    while (text.size() < 20000)
        text += random.text({"one", "two", " ", "\n", "3", ";", "\""}, 50);
    Sources sources(text);
    for (auto &[kind, is] : sources.all) {
        PlainReader plain{text};
        for (int step = 0; step < 1000; ++step) {
            SCOPED_TRACE(kind + ", seed " + std::to_string(random.seed()));
            const size_t left = text.size() - plain.at;
            const size_t operation = random.below(PlainReader::READERS + 2);
            if (operation == PlainReader::READERS) {
                const auto target = static_cast<int64_t>(random.below(text.size() + 1));
                const int whence = static_cast<int>(random.below(kind.find("z") == 0 ? 2 : 3));
                const int64_t origins[] = {0, is->getSource().tell(), sources.size};
                ASSERT_TRUE(is->seekg(target - origins[whence], whence));
                plain.at = static_cast<size_t>(target);
            } else if (operation > PlainReader::READERS) {
                std::string bytes(random.below(std::min<size_t>(left, 9000) + 1), '\0');
                const int count = static_cast<int>(bytes.size());
                ASSERT_EQ(count, is->bread(&bytes[0], count));
                ASSERT_EQ(text.substr(plain.at, bytes.size()), bytes);
                plain.at += bytes.size();
            } else {
                ASSERT_EQ(plain.read(operation), readFrom(*is, operation));
            }
            ASSERT_EQ(static_cast<int64_t>(plain.at), is->tellg());
            ASSERT_FALSE(is->hasError());
        }
    }
}

TEST(IStreamBuf, NoSourceMovesOutOfItsText)
{
    Sources sources("text");
    const std::pair<int64_t, int> moves[] = {{-1, 0}, {INT64_MIN, 2}, {0, 3}, {INT64_MAX, 1}};
    for (auto &[kind, is] : sources.all)
        for (const auto &[pos, whence] : moves) {
            SCOPED_TRACE(kind + ": " + std::to_string(pos));
            EXPECT_FALSE(is->seekg(pos, whence));
            EXPECT_TRUE(is->hasError());
            EXPECT_TRUE(is->seekg(0, 0));
            EXPECT_EQ('t', is->getChar());
        }
    EXPECT_TRUE(sources.all["memory"]->seekg(4, 0) && sources.all["memory"]->isEof());
    EXPECT_FALSE(sources.all["memory"]->seekg(5, 0));
    EXPECT_FALSE(UT_IStream(nullptr, 5, false).seekg(1, 0)) << "no block is an empty one";
}

TEST(IStreamBuf, ARangeEndsWithItsLengthOrItsInnerSource)
{
    expectEach({"2 3 -> 234", "7 9223372036854775807 -> 789", "3 0 -> ", "3 -1 -> ", "100 3 -> ",
                "-1 3 -> "},
               [](const char *in) {
                   char *behind = nullptr;
                   const int64_t start = std::strtoll(in, &behind, 10);
                   const int64_t length = std::strtoll(behind, nullptr, 10);
                   const UT_IStream whole("0123456789", 10, true);
                   const std::unique_ptr<UT_IStream> range(whole.newRangeStream(start, length));
                   UT_ScratchBuffer line;
                   const bool isThere = range->getLine(line, '\n');
                   EXPECT_EQ(isThere, line.length() > 0);
                   EXPECT_TRUE(range->isBinary() && range->isEof() && range->peekChar() == -1);
                   // Behind it lies its end, in front of it an error.
                   range->seekg(length, 0);
                   EXPECT_EQ(-1, range->getChar());
                   EXPECT_FALSE(range->seekg(-1, 0));
                   EXPECT_TRUE(range->hasError());
                   return std::string(line.buffer());
               });
}

TEST(IStreamBuf, TheFirstErrorCountsAndARangeTellsThatOfItsInnerSource)
{
    UT_IStreamBuf *const source = UT_IStreamBuf::makeEmpty();
    source->setError("first");
    source->setError("second");
    UT_IStream range(UT_IStreamBuf::makeRange(*source, 0, 0), false);
    EXPECT_FALSE(source->hasError()) << "the seek forgets it before it fails";
    source->setError("third");
    UT_ScratchBuffer line;
    EXPECT_FALSE(range.getLine(line, '\n'));
    EXPECT_STREQ("third", range.getSource().getErrorText());
    source->release();

    std::ifstream folder("/");
    UT_IStream none(static_cast<FILE *>(nullptr), false), unreadable(folder, false);
    for (UT_IStream *is : {&none, &unreadable}) {
        EXPECT_EQ(-1, is->peekChar());
        EXPECT_FALSE(is->getLine(line, '\n'));
        EXPECT_TRUE(is->hasError());
    }
}

TEST(Stdin, IsSharedByAllStreams)
{
    for (const std::string mode : {"LINES=", "LINES=1"}) {
        if (!isFreshProcess({mode}))
            continue;
        const bool lineMode = *UTgetenv("LINES") != '\0';
        const std::string text = "a\nb;c\r\nd";
        int ends[2];
        ASSERT_TRUE(pipe(ends) == 0 && write(ends[1], text.data(), text.size()) > 0);
        dup2(ends[0], 0);
        close(ends[1]);
        UT_IStream::setStdinLineMode(lineMode);
        UT_ScratchBuffer line;
        EXPECT_TRUE(UT_IStream(stdin, false).getLine(line, '\n'));
        EXPECT_STREQ("a", line.buffer());
        UT_IStream second(std::cin, false);
        EXPECT_TRUE(second.getLine(line, ';'));
        EXPECT_STREQ("b", line.buffer());
        EXPECT_TRUE(second.getLine(line, ';'));
        EXPECT_STREQ(lineMode ? "c\nd\n" : "c\r\nd", line.buffer());
        EXPECT_FALSE(second.getLine(line, ';'));
        return;
    }
}
