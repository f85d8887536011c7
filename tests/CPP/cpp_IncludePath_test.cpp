#include "CPP/cpp_IncludePath.h"

#include "tests/support/ScratchDirectory.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace
{
// The path that a name leads to; "nowhere" when it led there before.
std::string found(cpp_IncludePath &path, const std::string &name, const char *nearFolder)
{
    UT_String file;
    return path.find(name.c_str(), nearFolder, file) ? file.text() : "nowhere";
}
} // namespace

TEST(IncludePath, LooksBesideTheIncludingFileThenAlongItsFolders)
{
    const ScratchDirectory folder;
    for (const char *file : {"near/a", "first/a", "first/b", "second/a", "second/b", "second/c"})
        folder.write(file, "");
    const std::string nearby = folder.path("near");
    const std::string fromRoot = folder.path("near/a").substr(1);
    cpp_IncludePath path(-1);
    path.add(folder.path("first").c_str());
    path.addAll((folder.path("second") + ';' + folder.path("third")).c_str());
    const struct {
        const char *name, *nearFolder;
        std::string file;
    } cases[] = {
        {"a", nearby.c_str(), "near/a"},  {"a", nullptr, "first/a"},
        {"b", nearby.c_str(), "first/b"}, {"c", ".", "second/c"},
        {fromRoot.c_str(), "", "near/a"}, // beside a file in the root
    };
    for (const auto &c : cases)
        EXPECT_EQ(folder.path(c.file), found(path, c.name, c.nearFolder)) << c.name;
    const std::string explicitName = folder.path("second/c");
    EXPECT_EQ(explicitName, found(path, explicitName, nullptr));
    EXPECT_EQ("d", found(path, "d", nullptr)) << "to be tried as it stands";
}

TEST(IncludePath, RemembersWhereNamesLedUntilFoldersAreAdded)
{
    const ScratchDirectory folder;
    folder.write("one/a", "");
    cpp_IncludePath path(-1);
    path.add(folder.path("one").c_str());
    const std::string first = found(path, "a", nullptr), nearby = folder.path("near");
    EXPECT_EQ("b", found(path, "b", nullptr));
    path.noteMissing("b", nullptr);
    std::filesystem::remove(first);
    for (const char *file : {"one/b", "near/a", "near/b"})
        folder.write(file, "");
    EXPECT_EQ(first, found(path, "a", nullptr));
    EXPECT_EQ("nowhere", found(path, "b", nullptr));
    EXPECT_EQ(nearby + "/b", found(path, "b", nearby.c_str())) << "another question";
    path.add(folder.path("two").c_str());
    EXPECT_EQ(folder.path("one/b"), found(path, "b", nullptr));
    EXPECT_EQ("a", found(path, "a", nullptr));
}
