#include "UT/UT_PathSearch.h"

#include "UT/UT_FileUtil.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/ScratchDirectory.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
// A scratch home with its package folder, and a scratch installation; the shared
// paths are rebuilt for them. In texts of the tests '%' is the scratch folder.
class PathSearch : public testing::Test
{
protected:
    PathSearch()
    {
        myScratch.makeDirectory("home/veldrin9.0");
        myScratch.makeDirectory("vdx/veldrin");
        myHome.set(real("%/home").c_str());
        myVdx.set(real("%/vdx").c_str());
        UT_PathSearch::getInstance(UT_VELDRIN_PATH).rebuild();
    }

    std::string real(std::string text) const
    {
        for (size_t at; (at = text.find('%')) != std::string::npos;)
            text.replace(at, 1, myScratch.path());
        return text;
    }

    // The texts with ',' between them.
    std::string shown(const UT_StringList &list) const
    {
        std::string all;
        for (std::string text : list.toVector()) {
            const size_t at = text.find(myScratch.path());
            if (at != std::string::npos)
                text.replace(at, myScratch.path().size(), "%");
            all += (all.empty() ? "" : ",") + text;
        }
        return all;
    }

    UT_PathSearch mainPath() const { return {nullptr, ENV_VELDRIN_PATH, nullptr, -1}; }

    // All folders of a pattern without a setting, based on the main path.
    std::string allDirs(const std::string &pattern, const char *caret = nullptr,
                        int base = UT_VELDRIN_PATH) const
    {
        return shown(UT_PathSearch(real(pattern).c_str(), -1, caret, base).getAllDirs());
    }

    ScratchDirectory myScratch;
    ScopedVariable myHome{"HOME", nullptr};
    ScopedVariable myVdx{"VDX", nullptr};
    ScopedVariable myPath{"VELDRIN_PATH", nullptr};
    ScopedVariable myVip{"VIP", nullptr};
    ScopedVariable mySite{"VSITE", nullptr};
    ScopedVariable myJob{"JOB", nullptr};
};

[[noreturn]] void buildFirstPaths(const std::string &home)
{
    UTsetenv("HOME", home.c_str());
    const UT_PathSearch first("x", -1, nullptr, -1);
    const std::string made = home + "/veldrin9.0";
    const mode_t mask = umask(0);
    umask(mask);
    const auto expected = static_cast<fs::perms>(0777 & ~mask);
    const bool isMade = UTisDirectory(made.c_str()) && fs::status(made).permissions() == expected;
    fs::remove(made);
    const UT_PathSearch second("x", -1, nullptr, -1);
    std::exit(isMade && !fs::exists(made) ? 0 : 1);
}
} // namespace

TEST_F(PathSearch, TheMainPathIsBuiltFromWhatIsSet)
{
    EXPECT_EQ("%/home/veldrin9.0,%/vdx/veldrin", shown(mainPath().getDirs()));
    myVip.set(real("%/vip").c_str());
    mySite.set(real("%/site").c_str());
    EXPECT_EQ("%/vip,%/home/veldrin9.0,%/site/veldrin9.0,%/vdx/veldrin",
              shown(mainPath().getAllDirs()));
    EXPECT_EQ("%/home/veldrin9.0,%/vdx/veldrin", shown(mainPath().getDirs()));
    EXPECT_EQ("$VIP,$HOME/veldrin9.0,$VSITE/veldrin9.0,$VDX/veldrin",
              shown(mainPath().getAbbreviatedDirs()));
    myPath.set("/site/x;&:@/y^z/=");
    EXPECT_EQ("/site/x,%/vip,%/home/veldrin9.0,%/site/veldrin9.0,%/vdx/veldrin,@/yz/%/vip",
              shown(mainPath().getAllDirs()));
}

TEST_F(PathSearch, PatternsListFolders)
{
    myJob.set("/proj");
    const struct {
        const char *pattern, *expected;
    } cases[] = {
        {"a::b;;c/", "a,b,c"},
        {";/;//:x/y///", "/,/,x/y"},
        {"a\\\\;\\", "a,\\"},
        {"$JOB/lib;${JOB}s;'$JOB'", "/proj/lib,/projs,$JOB"},
        {"~/x", "%/home/x"},
        {"@", "%/home/veldrin9.0,%/vdx/veldrin"},
        {"@/", "%/home/veldrin9.0,%/vdx/veldrin"},
        {"@/d;@/e", "%/home/veldrin9.0/d,%/vdx/veldrin/d,%/home/veldrin9.0/e,%/vdx/veldrin/e"},
        {"@x;a/@", "@x,a/@"},
        {"^/^;=x", "Caret/^,x"},
        {"a;&", "a,a,&"}, // the pattern is its own default
        {"", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.pattern);
        EXPECT_EQ(c.expected, allDirs(c.pattern, "Caret"));
    }
    EXPECT_EQ("/x", allDirs("^/x"));
    EXPECT_EQ("@/x,@", allDirs("@/x;@", nullptr, -1));
}

TEST_F(PathSearch, KnownPathsFollowTheirTable)
{
    const ScopedVariable none[] = {{"VELDRIN_DSO_PATH", nullptr}, {"VELDRIN_UI_PATH", nullptr}};
    const struct {
        UT_KnownPath path;
        const char *expected;
    } cases[] = {
        {UT_VELDRIN_DSO_PATH, "%/home/veldrin9.0/dso_linux_intel,%/vdx/veldrin/dso_linux_intel,"
                              "%/home/veldrin9.0/dso,%/vdx/veldrin/dso"},
        {UT_VELDRIN_OTLSCAN_PATH, "%/home/veldrin9.0/otls,%/vdx/veldrin/otls"},
        {UT_VELDRIN_ZEL_PATH_SURFACE, ".,%/home/veldrin9.0/zel/Surface,%/vdx/veldrin/zel/Surface"},
        {UT_VELDRIN_MACRO_PATH,
         "%/home/veldrin9.0/scripts/opmacros,%/vdx/veldrin/scripts/opmacros"},
        {UT_VELDRIN_OUTLINEFONT_PATH, "%/home/veldrin9.0/fonts,%/vdx/veldrin/fonts"},
    };
    UT_PathSearch::getInstance(UT_VELDRIN_OTLSCAN_PATH); // and with it its base
    UT_PathSearch::getInstance(UT_VELDRIN_OTL_PATH).rebuild();
    for (const auto &c : cases) {
        SCOPED_TRACE(UT_EnvControl::getVariableName(UTgetKnownPath(c.path).variable));
        UT_PathSearch &shared = UT_PathSearch::getInstance(c.path);
        shared.rebuild(); // it may be older than this test's folders
        EXPECT_EQ(c.expected, shown(shared.getAllDirs()));
        EXPECT_EQ(&shared, &UT_PathSearch::getInstance(c.path));
    }
}

TEST_F(PathSearch, ASettingReplacesTheDefaultOrAddsToIt)
{
    const ScopedVariable set("VELDRIN_ZEL_PATH", "/z/^;&");
    const UT_PathSearch path("@/d;&", ENV_VELDRIN_ZEL_PATH, "Fog", UT_VELDRIN_PATH);
    EXPECT_EQ("/z/Fog,%/home/veldrin9.0/d,%/vdx/veldrin/d,&", shown(path.getAllDirs()));
}

TEST_F(PathSearch, ThePluginPathHasThePlatformsTag)
{
    const UT_PathSearch path("d_^", ENV_VELDRIN_DSO_PATH, "ignored", -1);
    EXPECT_EQ("d_linux_intel", shown(path.getAllDirs()));
}

TEST_F(PathSearch, ReconfiguringAppendsAndRebuildingStartsAnew)
{
    const std::unique_ptr<UT_PathSearch> path(UT_PathSearch::getNewInstance(UT_VELDRIN_PATH));
    path->reconfigure(real("%/^/veldrin").c_str(), ENV_VELDRIN_ZEL_PATH, "vdx", -1);
    path->reconfigure(nullptr, -1, "home", -1);
    EXPECT_EQ("%/home/veldrin9.0,%/vdx/veldrin,%/vdx/veldrin,%/home/veldrin",
              shown(path->getAllDirs()));
    EXPECT_EQ("%/home/veldrin9.0,%/vdx/veldrin,%/vdx/veldrin", shown(path->getDirs()));
    EXPECT_EQ(4, path->getAbbreviatedDirs().entries());
    const int before = path->getMaxNameLength();
    EXPECT_EQ(before + 1,
              path->addDirectory(std::string(static_cast<size_t>(before) + 1, 'x').c_str()));
    EXPECT_EQ(before + 1, path->getMaxNameLength());
    EXPECT_EQ(5, path->getAbbreviatedDirs().entries());
    path->rebuild();
    EXPECT_EQ("%/home/veldrin", shown(path->getAllDirs()));
    EXPECT_EQ(static_cast<int>(real("%/home/veldrin").size()), path->getMaxNameLength());
    EXPECT_EQ(2, UT_PathSearch::getInstance(UT_VELDRIN_PATH).getAllDirs().entries());
}

TEST_F(PathSearch, RebuildingAllFollowsTheEnvironment)
{
    const UT_PathSearch &shared = UT_PathSearch::getInstance(UT_VELDRIN_PATH);
    myPath.set("/elsewhere");
    EXPECT_EQ("%/home/veldrin9.0,%/vdx/veldrin", shown(shared.getAllDirs()));
    UT_PathSearch::rebuildAll();
    EXPECT_EQ("/elsewhere", shown(shared.getAllDirs()));
}

TEST_F(PathSearch, TheLongestKnownFolderIsAbbreviated)
{
    myJob.set(real("%/home/job").c_str());
    mySite.set(real("%/home").c_str());
    myVip.set("");
    const ScopedVariable temp("VELDRIN_TEMP_DIR", "/elsewhere");
    const UT_PathSearch path(real("%/home;%/home/job/x;%/home/jobs;%/other").c_str(), -1, nullptr,
                             -1);
    EXPECT_EQ("$HOME,$JOB/x,$HOME/jobs,%/other", shown(path.getAbbreviatedDirs()));
}

TEST_F(PathSearch, TheFirstMatchWins)
{
    myScratch.write("home/veldrin9.0/both", "");
    myScratch.write("vdx/veldrin/both", "");
    myScratch.write("vdx/veldrin/one", "");
    myScratch.makeDirectory("vdx/veldrin/dir");
    const UT_PathSearch path = mainPath();
    UT_String result;
    EXPECT_TRUE(path.findFile(result, "both"));
    EXPECT_EQ(real("%/home/veldrin9.0/both"), result.toStdString());
    EXPECT_TRUE(path.findFile(result, "dir"));
    EXPECT_FALSE(path.findDirectory(result, "both"));
    EXPECT_EQ(nullptr, result.text());
    EXPECT_TRUE(path.findDirectory(result, "dir", UT_PathSearch::KEEP_NAME));
    EXPECT_EQ(real("%/vdx/veldrin/dir"), result.toStdString());
    EXPECT_FALSE(path.findFile(result, "none", UT_PathSearch::KEEP_NAME));
    EXPECT_STREQ("none", result);
    EXPECT_FALSE(path.findFile(result, nullptr));

    UT_StringList list;
    EXPECT_EQ(2, path.findAllFiles("both", list));
    EXPECT_EQ(0, path.findAllDirectories("one", list));
    EXPECT_EQ(1, path.findAllDirectories("dir", list));
    EXPECT_EQ("%/home/veldrin9.0/both,%/vdx/veldrin/both,%/vdx/veldrin/dir", shown(list));

    const char *const names[] = {"none", "one", "both", nullptr};
    EXPECT_TRUE(path.findFileFromList(result, UT_StringList(names)));
    EXPECT_EQ(real("%/home/veldrin9.0/both"), result.toStdString());
    EXPECT_FALSE(path.findDirectoryFromList(result, UT_StringList(names)));
    EXPECT_EQ(nullptr, result.text());
}

TEST_F(PathSearch, ExplicitNamesAreNotSearched)
{
    const std::string file = myScratch.write("vdx/veldrin/one", "");
    const UT_PathSearch path = mainPath();
    UT_String result;
    UT_StringList list;
    EXPECT_FALSE(path.findFile(result, "./one"));
    EXPECT_EQ(0, path.findAllFiles("/one", list));
    EXPECT_TRUE(UT_PathSearch("", -1, nullptr, -1).findFile(result, file.c_str()));
    EXPECT_EQ(file, result.toStdString());
    EXPECT_EQ(1, path.findAllFiles(file.c_str(), list));
}

TEST_F(PathSearch, FoldersThatCannotBeUsedAreOnlyListed)
{
    myScratch.write("plain", "");
    myScratch.makeDirectory("locked");
    myScratch.write("locked/x", "");
    fs::permissions(myScratch.path("locked"), fs::perms::none);
    const UT_PathSearch path(real("%/none;%/plain;%/locked").c_str(), -1, nullptr, -1);
    EXPECT_EQ(geteuid() == 0 ? "%/locked" : "", shown(path.getDirs())); // root may all
    EXPECT_EQ(3, path.getAllDirs().entries());
    fs::permissions(myScratch.path("locked"), fs::perms::owner_all);
}

TEST_F(PathSearch, ExtensionsMatchInAnyCase)
{
    for (const char *name : {"a.otl", "b.OTL", "c.otl.bak", "otl", "sub/d.otl"})
        myScratch.write(std::string("vdx/veldrin/") + name, "");
    const UT_PathSearch path = mainPath();
    const struct {
        bool fullPath;
        const char *subdir;
        std::vector<std::string> expected;
    } cases[] = {
        {false, nullptr, {"a.otl", "b.OTL"}},
        {true, nullptr, {real("%/vdx/veldrin/a.otl"), real("%/vdx/veldrin/b.OTL")}},
        {true, "sub", {real("%/vdx/veldrin/sub/d.otl")}},
        {true, "none", {}},
    };
    for (const auto &c : cases) {
        UT_StringList list;
        list.append("before");
        EXPECT_EQ(static_cast<int>(c.expected.size()) + 1,
                  path.matchAllFiles(".otl", c.fullPath, list, c.subdir));
        list.remove(0);
        list.sort(true, false); // folders have an order of their own
        EXPECT_EQ(c.expected, list.toVector());
    }
}

TEST_F(PathSearch, PrefixesAreStrippedFromTheEndOfThePath)
{
    const std::string outer = myScratch.makeDirectory("p");
    const std::string inner = myScratch.makeDirectory("p/q");
    myPath.set((inner + ";" + outer).c_str());
    UT_PathSearch::getInstance(UT_VELDRIN_PATH).rebuild();
    const struct {
        const char *path, *last, *longest; // null: no match
    } cases[] = {
        {"%/p/q/r/s", "q/r/s", "r/s"}, {"%/p/q", "q", ""},      {"%/p", "", ""},
        {"%/pp/x", nullptr, nullptr},  {"x", nullptr, nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path);
        const std::string full = real(c.path);
        UT_String last(full.c_str()), longest(full.c_str());
        EXPECT_EQ(c.last != nullptr, UT_PathSearch::stripSearchPrefix(last, UT_VELDRIN_PATH));
        EXPECT_EQ(c.longest != nullptr,
                  UT_PathSearch::stripLongestPrefix(longest, UT_VELDRIN_PATH));
        EXPECT_STREQ(c.last != nullptr ? c.last : full.c_str(), last);
        EXPECT_STREQ(c.longest != nullptr ? c.longest : full.c_str(), longest);
    }
}

TEST(FirstPathSearch, MakesTheUsersPackageFolderOnce)
{
    if (!isFreshProcess())
        GTEST_SKIP();
    const ScratchDirectory home;
    EXPECT_EXIT(buildFirstPaths(home.path()), testing::ExitedWithCode(0), "");
}
