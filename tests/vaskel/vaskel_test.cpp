// The program and its file, from outside.
#include "tests/support/Cases.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"
#include "vaskel/file/vk_SafeFile.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <thread>

#include <sys/stat.h>
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

namespace
{
// What becomes of p.jpg: its permissions, or what error() says, after `command` laid the
// old one out.
std::string written(const std::string &command)
{
    const ScratchDirectory folder;
    folder.write("other", "other");
    runLine("umask 022; " + command, {"PATH=/usr/bin:/bin"}, folder.path());
    vk_SafeFile file(folder.path("p.jpg"));
    const bool good = file.isWritable() && file.write("after", 5);
    EXPECT_EQ("other", fileContents(folder.path("other")));
    if (!good)
        return file.error();
    EXPECT_EQ("after", fileContents(folder.path("p.jpg")));
    struct stat info = {};
    lstat(folder.path("p.jpg").c_str(), &info);
    char octal[16];
    std::snprintf(octal, sizeof octal, "%o", info.st_mode);
    return octal;
}
} // namespace

TEST(SafeFile, ReplacesFilesAndLinksByTheirRules)
{
    const mode_t mask = umask(022);
    const struct {
        const char *what, *before, *after;
    } cases[] = {
        {"nothing there", "true", "100644"},
        {"permissions stay", "echo >p.jpg; chmod 640 p.jpg", "100640"},
        {"but no more than those", "echo >p.jpg; chmod 6777 p.jpg", "100777"},
        {"a link goes, its target stays", "ln -s other p.jpg", "100644"},
        {"a dangling link too", "ln -s none p.jpg", "100644"},
        {"a link to itself too", "ln -s p.jpg p.jpg", "100644"},
        {"a folder stays", "mkdir p.jpg", "cannot replace what is there: not a regular file"},
        {"a pipe stays", "mkfifo p.jpg", "cannot replace what is there: not a regular file"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.after, written(c.before));
    }
    if (geteuid() == 0) { // others' files are laid out by root only
        EXPECT_EQ("100644", written("echo >p.jpg; chmod 6777 p.jpg; chown 65534 p.jpg"));
        EXPECT_EQ("100644", written("echo >p.jpg; chgrp 65534 p.jpg; chmod 664 p.jpg"));
    }
    umask(mask);
}
