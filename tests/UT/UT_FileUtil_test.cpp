#include "UT/UT_FileUtil.h"

#include "UT/UT_TempDir.h"
#include "tests/support/Cases.h"
#include "tests/support/ScratchDirectory.h"

#include <filesystem>

namespace fs = std::filesystem;

TEST(FileNames, AreExplicitOrAbsoluteByTheirBeginning)
{
    UTaddAbsolutePrefix("vol:");
    expectTable(
        TEST_DATA "/data/names",
        {{"explicit", [](const char *in) { return std::to_string(UTisExplicitPath(in)); }},
         {"absolute", [](const char *in) { return std::to_string(UTisAbsolutePath(in)); }}});
}

TEST(Folders, AreToldFromFilesAndMade)
{
    const ScratchDirectory scratch;
    const std::string file = scratch.write("file", "");
    scratch.makeDirectory("c:");
    fs::create_directory_symlink(scratch.path(), scratch.path("link"));
    fs::create_symlink("nowhere", scratch.path("dangling"));
    expectEach({"link -> 11", "c: -> 11", "file -> 01", "dangling -> 00", "none -> 00"},
               [&scratch](const char *in) {
                   const std::string path = scratch.path(in);
                   const std::string isDirectory = UTisDirectory(path.c_str()) ? "1" : "0";
                   return isDirectory + (UTisReadable(path.c_str()) ? "1" : "0");
               });
    EXPECT_TRUE(UTisDirectory("")) << "as /";
    EXPECT_FALSE(UTisDirectory(nullptr) || UTisReadable(nullptr));
    const std::string deep = scratch.path("a//b/c/");
    EXPECT_FALSE(UTmakeDir(deep.c_str(), 0777));
    EXPECT_TRUE(UTmakeDirs(deep.c_str(), 0700) && UTmakeDirs(deep.c_str(), 0700));
    for (const char *made : {"a", "a/b", "a/b/c"})
        EXPECT_EQ(fs::perms::owner_all, fs::status(scratch.path(made)).permissions());
    EXPECT_FALSE(UTmakeDir(file.c_str(), 0777) || UTmakeDirs((file + "/x/y").c_str(), 0777));
    EXPECT_FALSE(UTmakeDirs(nullptr, 0777) || UTmakeDir("", 0777));
}

TEST(AbsolutePath, ResolvesTheFolderAndComesBack)
{
    const ScratchDirectory scratch;
    scratch.makeDirectory("d/e");
    fs::create_directory_symlink("d/e", scratch.path("link"));
    const fs::path before = fs::current_path();
    fs::current_path(scratch.path());
    expectEach({"x -> %/x", "d/x -> %/d/x", "link/../x -> %/d/x", "d/ -> %/d/", "./.. -> %/..",
                "/a/../b -> /a/../b", "op:/x -> op:/x", "none/x -> failed", "(null) -> failed"},
               [&scratch](const char *in) {
                   UT_String result("failed");
                   const bool isMade = UTmakeAbsolutePath(in, result);
                   EXPECT_EQ(isMade, std::string("failed") != result.text());
                   EXPECT_EQ(scratch.path(), fs::current_path());
                   result.replaceText(scratch.path().c_str(), "%", false);
                   return result.toStdString();
               });
    fs::current_path(before);
}

TEST(TemporaryFiles, HaveNamesThatNothingHasYet)
{
    UT_String first, second;
    ASSERT_TRUE(UTgetTempFileName(first, "utt") && UTgetTempFileName(second, nullptr));
    EXPECT_STRNE(first, second);
    EXPECT_TRUE(first.startsWith((std::string(UTgetTempDir()) + "/utt").c_str()));
    EXPECT_FALSE(fs::exists(first.text()));
    EXPECT_FALSE(UTgetTempFileName(first, std::string(5000, 'x').c_str()));
    EXPECT_EQ(nullptr, first.text());
}
