#include "UT/UT_FileUtil.h"

#include "UT/UT_String.h"
#include "UT/UT_StringList.h"
#include "UT/UT_TempDir.h"
#include "tests/support/ScratchDirectory.h"

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace fs = std::filesystem;

TEST(FileNames, AreExplicitOrAbsoluteByTheirBeginning)
{
    const struct {
        const char *name;
        bool isExplicit, isAbsolute;
    } cases[] = {
        {nullptr, false, false},  {"", false, false},
        {"/a", true, true},       {"./a", true, false},
        {"../a", true, false},    {".", false, false},
        {"..", false, false},     {".a/b", false, false},
        {"a/./b", false, false},  {"op:x", false, true},
        {"file:/a", false, true}, {"file:a", false, false},
        {"file:", false, false},  {"file:file:op:", false, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name != nullptr ? c.name : "null");
        EXPECT_EQ(c.isExplicit, UTisExplicitPath(c.name));
        EXPECT_EQ(c.isAbsolute, UTisAbsolutePath(c.name));
    }
}

TEST(Folders, AreToldFromFilesThroughLinks)
{
    const ScratchDirectory scratch;
    const std::string file = scratch.write("file", "");
    fs::create_directory_symlink(scratch.path(), scratch.path("link"));
    fs::create_symlink("nowhere", scratch.path("dangling"));
    EXPECT_TRUE(UTisDirectory(scratch.path("link").c_str()));
    EXPECT_TRUE(UTisDirectory("")); // as "/"
    EXPECT_FALSE(UTisDirectory(nullptr));
    EXPECT_FALSE(UTisDirectory(file.c_str()));
    EXPECT_FALSE(UTisDirectory(scratch.path("dangling").c_str()));
    EXPECT_TRUE(UTisReadable(file.c_str()));
    EXPECT_FALSE(UTisReadable(scratch.path("dangling").c_str()));
    scratch.makeDirectory("c:");
    EXPECT_TRUE(UTisDirectory(scratch.path("c:").c_str()));
}

TEST(Folders, AreMadeWithThoseAboveThem)
{
    const ScratchDirectory scratch;
    const std::string deep = scratch.path("a//b/c/");
    EXPECT_FALSE(UTmakeDir(deep.c_str(), 0777));
    EXPECT_TRUE(UTmakeDirs(deep.c_str(), 0700));
    EXPECT_TRUE(UTmakeDirs(deep.c_str(), 0700));
    EXPECT_TRUE(UTisDirectory(scratch.path("a/b/c").c_str()));
    EXPECT_EQ(fs::perms::owner_all, fs::status(scratch.path("a/b")).permissions());
    scratch.write("file", "");
    EXPECT_FALSE(UTmakeDir(scratch.path("file").c_str(), 0777));
    EXPECT_FALSE(UTmakeDirs(scratch.path("file/x/y").c_str(), 0777));
    EXPECT_FALSE(UTmakeDirs(nullptr, 0777));
    EXPECT_FALSE(UTmakeDir("", 0777));
}

TEST(AbsolutePath, ResolvesTheFolderAndComesBack)
{
    const ScratchDirectory scratch;
    scratch.makeDirectory("d/e");
    fs::create_directory_symlink("d/e", scratch.path("link"));
    const fs::path before = fs::current_path();
    fs::current_path(scratch.path());
    const struct {
        const char *path;
        std::string expected; // "" for a failure
    } cases[] = {
        {"x", scratch.path("x")},
        {"d/x", scratch.path("d/x")},
        {"link/../x", scratch.path("d/x")},
        {"d/", scratch.path("d/")},
        {"./..", scratch.path("..")},
        {"/a/../b", "/a/../b"},
        {"op:/x", "op:/x"},
        {"none/x", ""},
        {nullptr, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path != nullptr ? c.path : "null");
        UT_String result("untouched");
        EXPECT_EQ(!c.expected.empty(), UTmakeAbsolutePath(c.path, result));
        EXPECT_EQ(c.expected.empty() ? "untouched" : c.expected, result.toStdString());
        EXPECT_EQ(scratch.path(), fs::current_path());
    }
    fs::current_path(before);
}

TEST(TemporaryFiles, HaveNamesThatNothingHasYet)
{
    UT_String first, second;
    ASSERT_TRUE(UTgetTempFileName(first, "utt"));
    ASSERT_TRUE(UTgetTempFileName(second, nullptr));
    EXPECT_STRNE(first, second);
    EXPECT_TRUE(first.startsWith((std::string(UTgetTempDir()) + "/utt").c_str()));
    EXPECT_FALSE(fs::exists(first.text()));
    EXPECT_FALSE(UTgetTempFileName(first, std::string(5000, 'x').c_str()));
    EXPECT_EQ(nullptr, first.text());
}
