// A file that is there whole or not at all: permissions, links, failures.
#include "UT/UT_SafeFile.h"
#include "tests/support/Cases.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{
// What becomes of p.jpg: its permissions, or what error() says, after `command` laid the
// old one out.
std::string written(const std::string &command,
                    UT_SafeFile::Links links = UT_SafeFile::REPLACE_LINKS)
{
    const ScratchDirectory folder;
    folder.write("other", "other");
    runLine("umask 022; " + command, {"PATH=/usr/bin:/bin"}, folder.path());
    UT_SafeFile file(folder.path("p.jpg"), links);
    std::FILE *const out = file.open();
    const bool good = out != nullptr && std::fputs("after", out) >= 0 && file.commit();
    EXPECT_EQ(links == UT_SafeFile::REPLACE_LINKS || command.find("other") == command.npos,
              fileContents(folder.path("other")) == "other");
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

TEST(SafeFile, FollowsLinksWhereThatIsWanted)
{
    const mode_t mask = umask(022);
    const auto behindLink = [](const char *command) {
        return written(command, UT_SafeFile::FOLLOW_LINKS);
    };
    EXPECT_EQ("120777", behindLink("ln -s other p.jpg"));
    EXPECT_EQ("100640", behindLink("echo >p.jpg; chmod 640 p.jpg"));
    EXPECT_EQ("120777", behindLink("ln -s none p.jpg"));
    EXPECT_EQ("cannot write: No such file or directory", behindLink("ln -s no/such p.jpg"));
    EXPECT_EQ("cannot write: Too many levels of symbolic links", behindLink("ln -s p.jpg p.jpg"));
    EXPECT_EQ("cannot write: Is a directory", behindLink("mkdir p.jpg"));
    EXPECT_EQ("120777", behindLink("ln -s none p.jpg")) << "made where the link leads";
    EXPECT_EQ("cannot write: Too many levels of symbolic links", behindLink("ln -s p.jpg p.jpg"));
    umask(mask);
}

// A file is one by what it is, not by where it lies; a name for an open stream is none.
TEST(SafeFile, ReplacesFilesButNotOpenStreams)
{
    const ScratchDirectory folder;
    folder.write("p", "before");
    const int stream = open(folder.path("p").c_str(), O_RDONLY);
    const std::string shared = "/dev/shm/veldrin-test-" + std::to_string(getpid());
    std::filesystem::copy(folder.path("p"), shared);
    struct stat before = {}, after = {};
    fstat(stream, &before);
    for (const std::string &name : {shared, "/dev/fd/" + std::to_string(stream)}) {
        UT_SafeFile file(name);
        ASSERT_NE(nullptr, file.open()) << file.error();
        EXPECT_EQ(name == shared ? "before" : "", fileContents(name)) << "not yet written";
        EXPECT_TRUE(file.commit());
    }
    stat(folder.path("p").c_str(), &after);
    EXPECT_EQ(before.st_ino, after.st_ino);
    close(stream);
    std::filesystem::remove(shared);
}

TEST(SafeFile, WithoutCommitLeavesTheOldFileAndNothingElse)
{
    const ScratchDirectory folder;
    folder.write("p", "before");
    for (const auto links : {UT_SafeFile::FOLLOW_LINKS, UT_SafeFile::REPLACE_LINKS}) {
        UT_SafeFile file(folder.path("p"), links);
        ASSERT_NE(nullptr, file.open());
    }
    EXPECT_EQ("before", fileContents(folder.path("p")));
    const auto files = std::filesystem::directory_iterator(folder.path());
    EXPECT_EQ(1, std::distance(begin(files), end(files)));
}

// The list's form is that of Linux: version 2, then tag, permissions and id of each entry.
TEST(SafeFile, GivesNobodyWhatAListGaveSomebody)
{
    const ScratchDirectory folder;
    folder.write("p", "before");
    const struct {
        std::uint32_t version;
        struct {
            std::uint16_t tag, bits;
            std::uint32_t id;
        } entries[5];
    } list = {2, {{1, 6, ~0U}, {2, 4, 65534}, {4, 0, ~0U}, {16, 4, ~0U}, {32, 0, ~0U}}};
    if (setxattr(folder.path("p").c_str(), "system.posix_acl_access", &list, sizeof list, 0) != 0)
        GTEST_SKIP() << "no lists of access in this folder: " << std::strerror(errno);
    UT_SafeFile file(folder.path("p"));
    ASSERT_NE(nullptr, file.open());
    ASSERT_TRUE(file.commit());
    struct stat info = {};
    stat(folder.path("p").c_str(), &info);
    EXPECT_EQ(0100600u, info.st_mode);
}

TEST(SafeFile, TellsEarlyOfWhatOthersOwnInASharedFolder)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "others' files are laid out by root only";
    const ScratchDirectory folder;
    folder.write("p", "of root");
    ASSERT_EQ(0, chmod(folder.path().c_str(), 01777));
    ASSERT_EQ(0, seteuid(65534));
    UT_SafeFile theirs(folder.path("p"), UT_SafeFile::REPLACE_LINKS);
    UT_SafeFile own(folder.path("q"), UT_SafeFile::REPLACE_LINKS);
    const bool mayReplace = theirs.isWritable(), mayMake = own.isWritable();
    ASSERT_EQ(0, seteuid(0));
    EXPECT_FALSE(mayReplace);
    EXPECT_EQ("cannot replace: Operation not permitted", theirs.error());
    EXPECT_TRUE(mayMake);
}
