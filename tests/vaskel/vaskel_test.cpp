// The program and its file, from outside.
#include "tests/support/Cases.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace
{
int entries(const std::string &folder)
{
    return static_cast<int>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// A folder with a scene `s`, what its picture is to replace and a folder that it cannot.
struct SceneFolder : ScratchDirectory {
    explicit SceneFolder(const std::string &more = "")
    {
        write("s", "picture p.jpg\ncamera\nsize 16 16\nsamples 4\n" + more + "sphere\nend\n");
        write("p.jpg", "before");
        makeDirectory("folder.jpg");
    }

    bool isUntouched() const
    {
        return fileContents(path("p.jpg")) == "before" && entries(path()) == 3;
    }

    // What a line of bash does there, as data/runs tells it.
    std::string told(const std::string &line) const
    {
        const ProgramRun run =
            runLine("set -o pipefail; " + line,
                    {"PATH=" BIN_DIR ":/usr/bin:/bin", "HOME=" + path()}, path());
        const std::string said = run.out + run.err;
        return std::to_string(run.status) + '|' + said.substr(0, said.find(" [options]")) +
               (isUntouched() ? "" : "|drawn");
    }
};
} // namespace

TEST(Vaskel, CommandLinesFollowTheirTable)
{
    expectTable(TEST_DATA "/data/runs",
                {{"command line", [](const char *in) { return SceneFolder().told(in); }}});
}

TEST(Vaskel, WritesThePictureByItsSuffix)
{
    const std::pair<std::string, std::string> cases[] = {
        {"a b.jpg", "\xff\xd8\xff"}, {"b.jpeg", "\xff\xd8\xff"}, {"-c.png", "\x89PNG"}};
    const SceneFolder folder;
    for (const auto &[name, magic] : cases) {
        EXPECT_EQ("0||drawn", folder.told("sed 's/p.jpg/\"" + name + "\"/' s | vaskel"));
        const std::string file = fileContents(folder.path(name));
        EXPECT_THAT(file, testing::StartsWith(magic));
        EXPECT_THAT(file, testing::AnyOf(HasSubstr("sRGB"), HasSubstr("Exif"))); // the colour space
    }
}

TEST(Vaskel, SignalsEndItWithoutLeavingAFile)
{
    for (const int number : {SIGINT, SIGTERM, SIGUSR1, SIGALRM}) {
        const SceneFolder folder("samples 65536\nsize 4096 4096\nlight v_area\n");
        const pid_t child = fork();
        if (child == 0) {
            signal(number, SIG_DFL);
            if (chdir(folder.path().c_str()) == 0)
                execl(BIN_DIR "/vaskel", "vaskel", "s", nullptr);
            _exit(127);
        }
        // More than one thread: the process is in the middle of its drawing.
        const std::string tasks = "/proc/" + std::to_string(child) + "/task";
        while (fs::exists(tasks) && entries(tasks) < 2 && waitpid(child, nullptr, WNOHANG) == 0)
            std::this_thread::yield();
        kill(child, number);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << number;
        EXPECT_TRUE(folder.isUntouched());
    }
}
