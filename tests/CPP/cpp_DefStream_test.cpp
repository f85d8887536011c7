#include "CPP/files/cpp_DefStream.h"

#include "UT/UT_IStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/PlainText.h"
#include "tests/support/ScratchDirectory.h"

#include <atomic>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

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

// Puts a folder, which cannot be read, behind the descriptor opened last.
static void breakDescriptor(int descriptor)
{
    const int folder = open("/", O_RDONLY);
    ASSERT_EQ(descriptor, dup2(folder, descriptor));
    close(folder);
}

TEST(DefStream, GivesNoPartOfALineThatCannotBeReadToItsEnd)
{
    const ScratchDirectory folder;
    const std::string path = folder.write("in", "a\nb");
    for (const bool isLent : {false, true}) {
        FILE *fp = std::fopen(path.c_str(), "rb");
        const int next = dup(fileno(fp));
        close(next);
        cpp_DefStream stream;
        if (isLent)
            stream.setFile(fp);
        else
            ASSERT_TRUE(stream.open(path.c_str()));
        UT_ScratchBuffer line;
        ASSERT_TRUE(stream.readLine(line));
        EXPECT_STREQ("a", line.buffer());
        breakDescriptor(isLent ? fileno(fp) : next);
        EXPECT_EQ("", linesOf(stream));
        EXPECT_STREQ("Is a directory", stream.readError());
        std::fclose(fp);
    }
}

// Whether the process's first thread waits for something.
static bool isWaiting()
{
    const std::string id = std::to_string(getpid());
    std::ifstream file("/proc/self/task/" + id + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return text.compare(text.rfind(')') + 1, 3, " S ") == 0;
}

TEST(DefStream, ReadsOnAfterASignal)
{
    static std::atomic<bool> isHandled = false;
    struct sigaction noting = {}, before = {};
    noting.sa_handler = [](int) { isHandled = true; }; // no SA_RESTART: read() fails with EINTR
    sigaction(SIGUSR1, &noting, &before);
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    cpp_DefStream stream;
    ASSERT_TRUE(stream.open(("/proc/self/fd/" + std::to_string(ends[0])).c_str()));
    std::thread writer([reader = pthread_self(), &ends] {
        while (!isWaiting())
            std::this_thread::yield();
        pthread_kill(reader, SIGUSR1);
        while (!isHandled)
            std::this_thread::yield();
        EXPECT_EQ(2, write(ends[1], "a\n", 2));
        close(ends[1]);
    });
    EXPECT_EQ("a|", linesOf(stream));
    EXPECT_EQ(nullptr, stream.readError());
    writer.join();
    close(ends[0]);
    sigaction(SIGUSR1, &before, nullptr);
}
