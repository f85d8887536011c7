// The program and its file, from outside.
#include "tests/support/ScratchDirectory.h"
#include "vaskel/vk_SafeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
struct Result {
    int status = 0; // of the exit, or the signal with a minus
    std::string out, err;
};

// Runs lines of bash in a folder; $vaskel is the program.
Result shell(const ScratchDirectory &folder, const std::string &lines)
{
    const ScratchDirectory aside;
    const std::string script = aside.write(
        "script", "cd '" + folder.path() + "'\nvaskel='" BIN_DIR "/vaskel'\n" + lines + "\n");
    const int status = std::system(
        ("bash '" + script + "' >'" + aside.path("out") + "' 2>'" + aside.path("err") + "'")
            .c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
            fileContents(aside.path("out")), fileContents(aside.path("err"))};
}

int entries(const std::string &folder)
{
    return static_cast<int>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

std::string sceneFor(const std::string &picture, const std::string &more = "")
{
    return "picture \"" + picture + "\"\ncamera\nsize 16 16\nsamples 4\n" + more + "sphere\n";
}
} // namespace

TEST(Vaskel, WritesThePictureByItsSuffix)
{
    const ScratchDirectory folder;
    const struct {
        const char *name, *magic;
    } cases[] = {{"a b.jpg", "\xff\xd8\xff"}, {"b.jpeg", "\xff\xd8\xff"}, {"-c.png", "\x89PNG"}};
    for (const auto &c : cases) {
        folder.write("s", sceneFor(c.name));
        EXPECT_EQ(0, shell(folder, "\"$vaskel\" s").status);
        const std::string file = fileContents(folder.path(c.name));
        EXPECT_THAT(file, testing::StartsWith(c.magic));
        EXPECT_THAT(file, testing::AnyOf(HasSubstr("sRGB"), HasSubstr("Exif"))); // the colour space
    }
    folder.write("s", sceneFor("d.png"));
    EXPECT_EQ(0, shell(folder, "\"$vaskel\" <s && mv d.png e.png && \"$vaskel\" - <s").status);
    EXPECT_EQ(fileContents(folder.path("d.png")), fileContents(folder.path("e.png")));
}

TEST(Vaskel, FailuresAreToldAndLeaveThePictureAsItWas)
{
    const struct {
        const char *what, *picture, *command, *message;
        int status;
    } cases[] = {
        {"bad statement", "p.jpg", "(cat s; echo sufrace) | \"$vaskel\"",
         "<stdin>:6: error: unknown statement 'sufrace'", 1},
        {"no such scene", "p.jpg", "\"$vaskel\" none", "cannot open 'none': No such file", 1},
        {"a folder as scene", "p.jpg", "\"$vaskel\" .", ".:0: error: cannot be read", 1},
        {"empty scene", "p.jpg", "\"$vaskel\" </dev/null", "expected a statement 'picture NAME'",
         1},
        {"missing folder", "none/p.jpg", "\"$vaskel\" s", "cannot write 'none/p.jpg': No such file",
         1},
        {"a folder as picture", "f.jpg", "mkdir f.jpg; \"$vaskel\" s; s=$?; rmdir f.jpg; exit $s",
         "not a regular file", 1},
        {"full device", "p.jpg",
         "(trap '' XFSZ; ulimit -f 0; \"$vaskel\" s 2>&1) | cat >&2; exit ${PIPESTATUS[0]}",
         "cannot write '", 1},
        {"file size limit", "p.jpg", "(ulimit -f 0; exec \"$vaskel\" s); s=$?; exit $s", "",
         128 + 25},
        {"unknown option", "p.jpg", "\"$vaskel\" --nonsense", "Usage: vaskel", 2},
        {"no samples", "p.jpg", "\"$vaskel\" --samples 0 s", "expected a number from 1 to 65536",
         2},
        {"half samples", "p.jpg", "\"$vaskel\" s --samples 1.5", "expected a whole number", 2},
        {"unknown quality", "p.jpg", "\"$vaskel\" --quality finel s", "nearest is 'final'", 2},
        {"value left out", "p.jpg", "\"$vaskel\" s --quality", "expected a value", 2},
        {"two scenes", "p.jpg", "\"$vaskel\" s s", "Usage: vaskel", 2},
        {"full standard output", "p.jpg", "\"$vaskel\" --help >/dev/full", "cannot write", 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const ScratchDirectory folder;
        folder.write("s", sceneFor(c.picture));
        folder.write("p.jpg", "before");
        const Result run = shell(folder, c.command);
        EXPECT_EQ(c.status, run.status) << run.err;
        EXPECT_THAT(run.err, HasSubstr(c.message));
        EXPECT_EQ("before", fileContents(folder.path("p.jpg")));
        EXPECT_EQ(2, entries(folder.path()));
    }
}

TEST(Vaskel, HelpVersionAndListSucceedWhereverTheyStand)
{
    const ScratchDirectory folder;
    EXPECT_THAT(shell(folder, "\"$vaskel\" x --help").out, HasSubstr("Usage: vaskel"));
    EXPECT_THAT(shell(folder, "\"$vaskel\" --version").out, HasSubstr("vaskel 1"));
    EXPECT_THAT(shell(folder, "\"$vaskel\" --list-shaders").out,
                HasSubstr("- `rough` number, 0 to 1 (0.2): roughness of the coat"));
}

TEST(Vaskel, OptionsFixTheSamplesAndTellWhatItTook)
{
    const ScratchDirectory folder;
    folder.write("s", sceneFor("p.png"));
    const std::string fixed = shell(folder, "\"$vaskel\" --stats s --samples 5").err;
    EXPECT_THAT(fixed, HasSubstr("1280 camera"));
    EXPECT_THAT(fixed, HasSubstr("samples   5.00 a pixel\nNaN       0 pixels\n"));
    EXPECT_THAT(shell(folder, "\"$vaskel\" --stats --quality draft -- s").err,
                HasSubstr("samples   1.00 a pixel"));
    EXPECT_EQ("", shell(folder, "\"$vaskel\" --quality final s").err);
}

TEST(Vaskel, SignalsEndItWithoutLeavingAFile)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        const ScratchDirectory folder;
        folder.write("s", sceneFor("p.jpg", "samples 65536\nsize 4096 4096\nlight v_area\n"));
        folder.write("p.jpg", "before");
        const std::string scene = folder.path("s");
        const pid_t child = fork();
        if (child == 0) {
            signal(number, SIG_DFL);
            if (chdir(folder.path().c_str()) == 0)
                execl(BIN_DIR "/vaskel", "vaskel", scene.c_str(), nullptr);
            _exit(127);
        }
        // The temporary file appears, and the process is then in the middle.
        while (entries(folder.path()) < 3 && waitpid(child, nullptr, WNOHANG) == 0)
            std::this_thread::yield();
        kill(child, number);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << number;
        EXPECT_EQ(2, entries(folder.path()));
        EXPECT_EQ("before", fileContents(folder.path("p.jpg")));
    }
}

TEST(SafeFile, ReplacesWhatALinkPointsToAndKeepsPermissions)
{
    const ScratchDirectory folder;
    const std::string target = folder.write("real/p.jpg", "before");
    chmod(target.c_str(), 0640);
    fs::create_symlink(target, folder.path("link.jpg"));
    vk_SafeFile file;
    ASSERT_TRUE(file.open(folder.path("link.jpg")));
    EXPECT_EQ("before", fileContents(target));
    ASSERT_TRUE(file.commit("after", 5));
    EXPECT_EQ("after", fileContents(target));
    EXPECT_TRUE(fs::is_symlink(folder.path("link.jpg")));
    EXPECT_EQ(0640u, static_cast<unsigned>(fs::status(target).permissions()));
    EXPECT_EQ(1, entries(folder.path("real")));
}
