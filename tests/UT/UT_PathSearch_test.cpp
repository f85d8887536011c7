#include "UT/UT_PathSearch.h"

#include "tests/support/Cases.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/PlainText.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/ScratchDirectory.h"

#include <fcntl.h>
#include <filesystem>
#include <list>
#include <memory>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
UT_PathSearch &shared()
{
    return UT_PathSearch::getInstance(UT_VELDRIN_PATH);
}

UT_PathSearch mainPath()
{
    return {nullptr, ENV_VELDRIN_PATH, nullptr, -1};
}

// What is found first, then all there are.
template <class First, class All>
Show finding(First findFirst, All findAll)
{
    return [findFirst, findAll](const char *name) {
        const UT_PathSearch path = mainPath();
        UT_String result("old"), kept("old");
        const bool isFound = (path.*findFirst)(result, name, UT_PathSearch::CLEAR_RESULT);
        EXPECT_EQ(isFound, (path.*findFirst)(kept, name, UT_PathSearch::KEEP_NAME));
        EXPECT_STREQ(isFound ? result.text() : name, kept);
        UT_StringList list;
        const int count = (path.*findAll)(name, list);
        EXPECT_EQ(count, list.entries());
        return orNull(result) + ' ' + shown(list);
    };
}

// Works in a scratch folder with a home "h", its package folder and an installation "v";
// the main path leads to these two.
class PathSearch : public testing::Test
{
protected:
    PathSearch()
    {
        fs::current_path(myScratch.path());
        fs::create_directories("h/veldrin9.0");
        fs::create_directories("v/veldrin");
        myHome.set("h");
        myVdx.set("v");
        shared().rebuild();
    }
    ~PathSearch() override { fs::current_path(myBefore); }

    // The main path's folders while the words of the input are set: all, those that are
    // there, and all in their short form.
    static std::string mainFolders(const char *in)
    {
        std::list<ScopedVariable> variables;
        for (const std::string &word : plainSplitWords(in)) {
            const size_t equals = word.find('=');
            variables.emplace_back(word.substr(0, equals).c_str(), &word[equals + 1]);
        }
        const UT_PathSearch path = mainPath();
        return shown(path.getAllDirs()) + ' ' + shown(path.getDirs()) + ' ' +
               shown(path.getAbbreviatedDirs());
    }
    void setPath(const char *path)
    {
        myPath.set(path);
        shared().rebuild();
    }

    const fs::path myBefore = fs::current_path();
    ScratchDirectory myScratch;
    ScopedVariable myHome{"HOME", nullptr}, myVdx{"VDX", nullptr}, myPath{"VELDRIN_PATH", nullptr},
        myVip{"VIP", nullptr}, mySite{"VSITE", nullptr}, myJob{"JOB", "/proj"};
};
} // namespace

TEST_F(PathSearch, FoldersComeFromSettingsAndPatterns)
{
    myScratch.write("plain", "");
    const auto byClass = [this](const char *pattern) {
        setPath("h;v");
        const std::string dirs =
            shown(UT_PathSearch(pattern, -1, "C", UT_VELDRIN_PATH).getAllDirs());
        myPath.set(nullptr);
        return dirs;
    };
    expectTable(TEST_DATA "/data/paths", {{"main path", mainFolders}, {"pattern", byClass}});
    EXPECT_EQ("/x|@/x|@|", shown(UT_PathSearch("^/x;@/x;@", -1, nullptr, -1).getAllDirs()));
    setPath("h;v");
    const ScopedVariable zel("VELDRIN_ZEL_PATH", "/z/^;&"), dso("VELDRIN_DSO_PATH", nullptr);
    const UT_PathSearch set("@/d;&", ENV_VELDRIN_ZEL_PATH, "Fog", UT_VELDRIN_PATH);
    EXPECT_EQ("/z/Fog|h/d|v/d|&|", shown(set.getAllDirs()));
    const UT_PathSearch plugins("d_^", ENV_VELDRIN_DSO_PATH, "ignored", -1);
    EXPECT_EQ("d_linux_intel|", shown(plugins.getAllDirs()));
}

TEST_F(PathSearch, KnownPathsFollowTheirTable)
{
    const ScopedVariable dso("VELDRIN_DSO_PATH", nullptr), ui("VELDRIN_UI_PATH", nullptr);
    fs::create_directory("v/config");
    setPath("h;v");
    const auto known = [](UT_KnownPath path) {
        UT_PathSearch &one = UT_PathSearch::getInstance(path);
        one.rebuild(); // it may be older than this test's folders
        EXPECT_EQ(&one, &UT_PathSearch::getInstance(path));
        return shown(one.getAllDirs());
    };
    EXPECT_EQ("h/dso_linux_intel|v/dso_linux_intel|h/dso|v/dso|", known(UT_VELDRIN_DSO_PATH));
    EXPECT_EQ(".|h/zel/Surface|v/zel/Surface|", known(UT_VELDRIN_ZEL_PATH_SURFACE));
    known(UT_VELDRIN_UI_PATH); // the base of the next one
    EXPECT_EQ("./Icons|v/config/Icons|", known(UT_VELDRIN_UI_ICON_PATH));
}

TEST_F(PathSearch, ReconfiguringAppendsAndRebuildingStartsAnew)
{
    const std::unique_ptr<UT_PathSearch> path(UT_PathSearch::getNewInstance(UT_VELDRIN_PATH));
    path->reconfigure("^/veldrin", ENV_VELDRIN_ZEL_PATH, "v", -1);
    path->reconfigure(nullptr, -1, "home", -1);
    EXPECT_EQ(12, path->getMaxNameLength());
    EXPECT_EQ(20, path->addDirectory("h/longer than any of"));
    EXPECT_EQ(20, path->getMaxNameLength());
    EXPECT_EQ("h/veldrin9.0|v/veldrin|v/veldrin|home/veldrin|h/longer than any of|",
              shown(path->getAllDirs()));
    EXPECT_EQ("h/veldrin9.0|v/veldrin|v/veldrin|", shown(path->getDirs()));
    EXPECT_EQ("$HOME/veldrin9.0|$VDX/veldrin|$VDX/veldrin|home/veldrin|$HOME/longer than any of|",
              shown(path->getAbbreviatedDirs()));
    path->rebuild();
    EXPECT_EQ("home/veldrin|", shown(path->getAllDirs()));
    EXPECT_EQ(12, path->getMaxNameLength());
    myPath.set("/elsewhere");
    EXPECT_EQ("h/veldrin9.0|v/veldrin|", shown(shared().getAllDirs()));
    UT_PathSearch::rebuildAll();
    EXPECT_EQ("/elsewhere|", shown(shared().getAllDirs()));
}

TEST_F(PathSearch, TheFirstMatchWinsAndExplicitNamesAreNotSearched)
{
    for (const char *file : {"h/veldrin9.0/both", "v/veldrin/both", "v/veldrin/one", "here"})
        myScratch.write(file, "");
    fs::create_directory("v/veldrin/dir");
    expectTable(
        TEST_DATA "/data/found",
        {{"files", finding(&UT_PathSearch::findFile, &UT_PathSearch::findAllFiles)},
         {"folders", finding(&UT_PathSearch::findDirectory, &UT_PathSearch::findAllDirectories)}});
    const char *const names[] = {"none", "one", "both", "./here", nullptr};
    UT_String result;
    EXPECT_TRUE(mainPath().findFileFromList(result, UT_StringList(names)));
    EXPECT_STREQ("h/veldrin9.0/both", result);
    EXPECT_TRUE(mainPath().findFileFromList(result, UT_StringList(names + 3)));
    EXPECT_STREQ("./here", result);
    EXPECT_FALSE(mainPath().findDirectoryFromList(result, UT_StringList(names)));
    EXPECT_EQ(nullptr, result.text());
}

TEST_F(PathSearch, ExtensionsMatchInAnyCase)
{
    for (const std::string name : {"a.otl", "b.OTL", "c.otl.bak", "otl", "sub/d.x.otl"})
        myScratch.write("v/veldrin/" + name, "");
    UT_StringList list;
    EXPECT_EQ(2, mainPath().matchAllFiles(".otl", false, list));
    EXPECT_EQ(4, mainPath().matchAllFiles(".oTl", true, list));
    EXPECT_EQ(5, mainPath().matchAllFiles(".otl", true, list, "sub"));
    list.sort(true, false); // folders have an order of their own
    EXPECT_EQ("a.otl|b.OTL|v/veldrin/a.otl|v/veldrin/b.OTL|v/veldrin/sub/d.x.otl|", shown(list));
}

TEST_F(PathSearch, PrefixesAreStrippedFromTheEndOfThePath)
{
    fs::create_directories("p/q");
    setPath("p/q;p");
    expectEach({"p/q/r/s -> 1 q/r/s", "p -> 1 ", "pp/x -> 0 pp/x", "(null) -> 0 (null)"},
               editing([](UT_String &path) {
                   return UT_PathSearch::stripSearchPrefix(path, UT_VELDRIN_PATH);
               }));
    expectEach({"p/q/r/s -> 1 r/s", "p/q -> 1 ", "p/qq -> 1 qq", "x -> 0 x", "(null) -> 0 (null)"},
               editing([](UT_String &path) {
                   return UT_PathSearch::stripLongestPrefix(path, UT_VELDRIN_PATH);
               }));
}

TEST(FirstPathSearch, MakesTheUsersPackageFolderOnce)
{
    const ScratchDirectory scratch;
    if (!isFreshProcess({"HOME=" + scratch.path("new/home")}))
        return;
    const std::string made = std::string(UTgetenv("HOME")) + "/veldrin9.0";
    umask(027);
    const UT_PathSearch first("x", -1, nullptr, -1);
    EXPECT_EQ(0750, static_cast<int>(fs::status(made).permissions()));
    fs::remove(made);
    const UT_PathSearch second("x", -1, nullptr, -1);
    EXPECT_FALSE(fs::exists(made));
}

TEST(FirstPathSearch, MakesNoFolderInTheRootForAnEmptyHome)
{
    const ScratchDirectory scratch;
    if (!isFreshProcess({"HOME="}))
        return;
    const int root = open("/", O_PATH | O_DIRECTORY);
    // Who is not root may have another root among users of his own.
    if (geteuid() != 0)
        static_cast<void>(unshare(CLONE_NEWUSER));
    if (chroot(scratch.path().c_str()) != 0)
        GTEST_SKIP() << "this system lets nobody but root have another root";
    const UT_PathSearch first("x", -1, nullptr, -1);
    EXPECT_FALSE(fs::exists("/veldrin9.0"));
    ASSERT_TRUE(fchdir(root) == 0 && chroot(".") == 0);
    close(root);
}
