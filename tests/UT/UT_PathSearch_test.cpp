#include "UT/UT_PathSearch.h"

#include "tests/support/Cases.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/PlainText.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/ScratchDirectory.h"

#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
std::string shown(const UT_StringList &list)
{
    return joined(list.toVector());
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
        UT_PathSearch::getInstance(UT_VELDRIN_PATH).rebuild();
    }
    ~PathSearch() override { fs::current_path(myBefore); }

    UT_PathSearch mainPath() const { return {nullptr, ENV_VELDRIN_PATH, nullptr, -1}; }

    const fs::path myBefore = fs::current_path();
    ScratchDirectory myScratch;
    ScopedVariable myHome{"HOME", nullptr}, myVdx{"VDX", nullptr}, myPath{"VELDRIN_PATH", nullptr},
        myVip{"VIP", nullptr}, mySite{"VSITE", nullptr}, myJob{"JOB", nullptr};
};
} // namespace

TEST_F(PathSearch, TheMainPathIsBuiltFromWhatIsSet)
{
    EXPECT_EQ("h/veldrin9.0|v/veldrin|", shown(mainPath().getAllDirs()));
    myVip.set("vip");
    mySite.set("site");
    EXPECT_EQ("vip|h/veldrin9.0|site/veldrin9.0|v/veldrin|", shown(mainPath().getAllDirs()));
    EXPECT_EQ("h/veldrin9.0|v/veldrin|", shown(mainPath().getDirs()));
    EXPECT_EQ("$VIP|$HOME/veldrin9.0|$VSITE/veldrin9.0|$VDX/veldrin|",
              shown(mainPath().getAbbreviatedDirs()));
    myPath.set("s/x;&:@/y^z/=");
    EXPECT_EQ("s/x|vip|h/veldrin9.0|site/veldrin9.0|v/veldrin|@/yz/vip|",
              shown(mainPath().getAllDirs()));
    myHome.set("");
    EXPECT_EQ("s/x|vip|site/veldrin9.0|v/veldrin|@/yz/vip|", shown(mainPath().getAllDirs()));
}

TEST_F(PathSearch, PatternsListFolders)
{
    myJob.set("/proj");
    myPath.set("h;v");
    UT_PathSearch::getInstance(UT_VELDRIN_PATH).rebuild();
    expectEach({"a::b;;c/ -> a|b|c|", ";/;//:x/y/// -> /|/|x/y|", "a\\\\;\\ -> a|\\|",
                "$JOB/lib;'$JOB' -> /proj/lib|$JOB|", "~/x -> h/x|", "@;@/ -> h|v|h|v|",
                "@/d;@/e -> h/d|v/d|h/e|v/e|", "@x;a/@ -> @x|a/@|", "@/^/^;=x= -> h/C/^|v/C/^|x=|",
                "a;&;&/ -> a|a|&|&|&|", " -> "},
               [](const char *pattern) { // its own default, too
                   return shown(UT_PathSearch(pattern, -1, "C", UT_VELDRIN_PATH).getAllDirs());
               });
    EXPECT_EQ("/x|@/x|@|", shown(UT_PathSearch("^/x;@/x;@", -1, nullptr, -1).getAllDirs()));
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
    myPath.set("h;v");
    UT_PathSearch::getInstance(UT_VELDRIN_PATH).rebuild();
    const auto known = [](UT_KnownPath path) {
        UT_PathSearch &shared = UT_PathSearch::getInstance(path);
        shared.rebuild(); // it may be older than this test's folders
        EXPECT_EQ(&shared, &UT_PathSearch::getInstance(path));
        return shown(shared.getAllDirs());
    };
    EXPECT_EQ("h/dso_linux_intel|v/dso_linux_intel|h/dso|v/dso|", known(UT_VELDRIN_DSO_PATH));
    EXPECT_EQ("h|v|h/otls|v/otls|", known(UT_VELDRIN_OTL_PATH) + known(UT_VELDRIN_OTLSCAN_PATH));
    EXPECT_EQ(".|h/clips|v/clips|h/clip|v/clip|", known(UT_VELDRIN_CLIP_PATH));
    EXPECT_EQ(".|h/zel/Surface|v/zel/Surface|", known(UT_VELDRIN_ZEL_PATH_SURFACE));
    EXPECT_EQ(".|h/config|v/config|", known(UT_VELDRIN_UI_PATH));
    EXPECT_EQ("./Icons|v/config/Icons|", known(UT_VELDRIN_UI_ICON_PATH));
    EXPECT_EQ("h/fonts|v/fonts|", known(UT_VELDRIN_OUTLINEFONT_PATH));
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
    const UT_PathSearch &shared = UT_PathSearch::getInstance(UT_VELDRIN_PATH);
    myPath.set("/elsewhere");
    EXPECT_EQ("h/veldrin9.0|v/veldrin|", shown(shared.getAllDirs()));
    UT_PathSearch::rebuildAll();
    EXPECT_EQ("/elsewhere|", shown(shared.getAllDirs()));
}

TEST_F(PathSearch, TheLongestKnownFolderIsAbbreviated)
{
    myJob.set("h/job");
    mySite.set("h");
    myVip.set("");
    const ScopedVariable temp("VELDRIN_TEMP_DIR", "/t");
    const UT_PathSearch path("h;h/job/x;h/jobs;/other;/t/x", -1, nullptr, -1);
    EXPECT_EQ("$HOME|$JOB/x|$HOME/jobs|/other|$VELDRIN_TEMP_DIR/x|",
              shown(path.getAbbreviatedDirs()));
}

TEST_F(PathSearch, TheFirstMatchWinsAndExplicitNamesAreNotSearched)
{
    for (const char *file : {"h/veldrin9.0/both", "v/veldrin/both", "v/veldrin/one", "here"})
        myScratch.write(file, "");
    fs::create_directory("v/veldrin/dir");
    const UT_PathSearch path = mainPath();
    // What is found first, then all there is.
    const auto finding = [&path](auto findFirst, auto findAll) {
        return [&path, findFirst, findAll](const char *name) {
            UT_String result("old"), kept("old");
            const bool isFound = (path.*findFirst)(result, name, UT_PathSearch::CLEAR_RESULT);
            EXPECT_EQ(isFound, (path.*findFirst)(kept, name, UT_PathSearch::KEEP_NAME));
            EXPECT_STREQ(isFound ? result.text() : name, kept);
            UT_StringList list;
            const int count = (path.*findAll)(name, list);
            EXPECT_EQ(count, list.entries());
            return orNull(result) + ' ' + shown(list);
        };
    };
    expectEach({"both -> h/veldrin9.0/both h/veldrin9.0/both|v/veldrin/both|",
                "one -> v/veldrin/one v/veldrin/one|", "dir -> v/veldrin/dir v/veldrin/dir|",
                "none -> (null) ", "./one -> (null) ", "./here -> ./here ./here|",
                "here -> (null) ", "(null) -> (null) "},
               finding(&UT_PathSearch::findFile, &UT_PathSearch::findAllFiles));
    expectEach({"both -> (null) ", "dir -> v/veldrin/dir v/veldrin/dir|", "./v -> ./v ./v|"},
               finding(&UT_PathSearch::findDirectory, &UT_PathSearch::findAllDirectories));

    const char *const names[] = {"none", "one", "both", "./here", nullptr};
    UT_String result;
    EXPECT_TRUE(path.findFileFromList(result, UT_StringList(names)));
    EXPECT_STREQ("h/veldrin9.0/both", result);
    EXPECT_TRUE(path.findFileFromList(result, UT_StringList(names + 3)));
    EXPECT_STREQ("./here", result);
    EXPECT_FALSE(path.findDirectoryFromList(result, UT_StringList(names)));
    EXPECT_EQ(nullptr, result.text());
}

TEST_F(PathSearch, FoldersThatCannotBeUsedAreOnlyListed)
{
    myScratch.write("plain", "");
    fs::create_directory("locked");
    fs::permissions("locked", fs::perms::none);
    const UT_PathSearch path("none;plain;locked", -1, nullptr, -1);
    EXPECT_EQ(geteuid() == 0 ? "locked|" : "", shown(path.getDirs())); // root may all
    EXPECT_EQ("none|plain|locked|", shown(path.getAllDirs()));
    fs::permissions("locked", fs::perms::owner_all);
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
    myPath.set("p/q;p");
    UT_PathSearch::getInstance(UT_VELDRIN_PATH).rebuild();
    const auto stripping = [](auto strip) {
        return [strip](UT_String &path) { return strip(path, UT_VELDRIN_PATH); };
    };
    expectEdits({"p/q/r/s -> 1 q/r/s", "p -> 1 ", "pp/x -> 0 pp/x", "(null) -> 0 (null)"},
                stripping(UT_PathSearch::stripSearchPrefix));
    expectEdits({"p/q/r/s -> 1 r/s", "p/q -> 1 ", "p/qq -> 1 qq", "x -> 0 x", "(null) -> 0 (null)"},
                stripping(UT_PathSearch::stripLongestPrefix));
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
