#include "thumbmake/tm_Page.h"

#include "tests/support/ScratchDirectory.h"
#include "thumbmake/tm_PageData.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>

#include <sys/resource.h>
#include <sys/time.h>

using testing::HasSubstr;
using testing::Not;

namespace
{

struct Row {
    std::string in, out;
};

const char *const GOLD = "ShaderType surface\nVVaskel v_metal\nShopData\n";

class Page : public ::testing::Test
{
protected:
    // An entry for a palette in the folder, with its picture when there is one.
    tm_PageEntry entry(const std::string &name, const std::string &message = "") const
    {
        return {scratch.path(name + ".palette"), scratch.path(name + ".jpg"), message};
    }

    tm_PageEntry write(const std::string &name, const std::string &text) const
    {
        scratch.write(name + ".palette", text);
        return entry(name);
    }

    // "" or the reason why no page could be written.
    std::string written(const std::vector<tm_PageEntry> &entries) const
    {
        std::string error;
        return tm_writePage(scratch.path(), entries, error) ? "" : error;
    }

    std::string page() const { return fileContents(scratch.path("index.html")); }

    std::vector<std::string> filesBeside() const
    {
        std::vector<std::string> names;
        for (const auto &each : std::filesystem::directory_iterator(scratch.path()))
            names.push_back(each.path().filename());
        return names;
    }

    ScratchDirectory scratch;
};

int countOf(const std::string &part, const std::string &text)
{
    int count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

void setDate(const std::string &path, time_t seconds)
{
    const timeval times[] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(0, utimes(path.c_str(), times));
}

// Lets files grow to so many bytes only, and writing further fails.
class FileLimit
{
public:
    explicit FileLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &mySaved);
        const rlimit limit = {bytes, mySaved.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileLimit()
    {
        setrlimit(RLIMIT_FSIZE, &mySaved);
        std::signal(SIGXFSZ, SIG_DFL);
    }
    FileLimit(const FileLimit &) = delete;
    FileLimit &operator=(const FileLimit &) = delete;

private:
    rlimit mySaved = {};
};

} // namespace

TEST(PageText, JsonCannotLeaveItsElementOrItsQuotes)
{
    const Row rows[] = {
        {"gold", R"("gold")"},
        {"", R"("")"},
        {R"(a"b\c)", R"("a\u0022b\u005Cc")"},
        {"</script><!--", R"("\u003C/script>\u003C!--")"},
        {{"\n\t\x7F\0", 4}, R"("\u000A\u0009\u007F\u0000")"},
        {"\u2028\u2029\u2030", "\"\\u2028\\u2029\u2030\""},
        {"zażółć 金 😀", "\"zażółć 金 😀\""},
        {"\xE9t\xE9", R"("\uFFFDt\uFFFD")"},                     // Latin-1
        {"\xE2\x82", R"("\uFFFD\uFFFD")"},                       // cut short
        {"\xC0\xAF", R"("\uFFFD\uFFFD")"},                       // a long form of '/'
        {"\xED\xA0\x80", R"("\uFFFD\uFFFD\uFFFD")"},             // a surrogate
        {"\xF4\x90\x80\x80x", R"("\uFFFD\uFFFD\uFFFD\uFFFDx")"}, // beyond the last character
    };
    for (const Row &row : rows)
        EXPECT_EQ(row.out, tm_jsonText(row.in)) << row.in;
}

TEST(PageText, LinksHaveNoSchemeQueryOrFragment)
{
    const Row rows[] = {
        {"metals/gold-1_b.~.jpg", "metals/gold-1_b.~.jpg"},
        {"a b#c?d%41.jpg", "a%20b%23c%3Fd%2541.jpg"},
        {"javascript:alert(1)", "javascript%3Aalert%281%29"},
        {"'\"<>&\\", "%27%22%3C%3E%26%5C"},
        {"\n\xC5\xBC\xE9", "%0A%C5%BC%E9"},
    };
    for (const Row &row : rows)
        EXPECT_EQ(row.out, tm_linkTo(row.in)) << row.in;
}

TEST_F(Page, EntriesTellWhatTheirPalettesHold)
{
    const Row rows[] = {
        {GOLD, R"("type": "surface", "message": "", .*"texts": \[\["VVaskel", "v_metal"\]\])"},
        {"ShaderType light\nRIB 'spot 1'\nMI mib\n",
         R"("type": "light".*"texts": \[\["RIB", "spot 1"\], \["MI", "mib"\]\])"},
        {"BeginIfdExtra\nfog x\nlight y\nEndIfdExtra\n",
         R"("type": "".*\[\["In front of the scene", "fog x.u000Alight y.u000A"\]\])"},
        {"", R"("type": "", "message": "", .*"texts": \[\])"},
    };
    for (const Row &row : rows)
        EXPECT_THAT(tm_pageData(scratch.path(), {write("x", row.in)}),
                    testing::ContainsRegex(row.out));
}

TEST_F(Page, AnUnreadablePaletteIsShownAsFailed)
{
    const auto told = [this](const tm_PageEntry &one) {
        return tm_pageData(scratch.path(), {one});
    };
    EXPECT_THAT(told(entry("absent")), HasSubstr(R"("message": "Unable to open palette file)"));
    EXPECT_THAT(told(entry("absent", "no <b>\n")), HasSubstr(R"("message": "no \u003Cb>\u000A")"));
}

TEST_F(Page, NamesFoldersAndLinksAreSeenFromThePage)
{
    const std::string top = scratch.makeDirectory("lib");
    const std::string cases[][3] = {
        // palette, picture, what the page says
        {"lib/gold.palette", "lib/gold.jpg",
         R"("gold", "folder": "", palette "gold.palette", picture "gold.jpg")"},
        {"lib/a b/./old/x", "lib/a b/old/x.jpg",
         R"("x", "folder": "a b/old", palette "a%20b/old/x", picture "a%20b/old/x.jpg")"},
        {"src/m/x.palette", "lib/m/x.png",
         R"("x", "folder": "m", palette "../src/m/x.palette", picture "m/x.png")"},
        {"lib/.palette", "lib/.jpg",
         R"(".palette", "folder": "", palette ".palette", picture ".jpg")"},
    };
    for (const std::string &folder : {top, top + "/", top + "/./x/.."}) {
        for (const auto &[palette, picture, said] : cases) {
            const std::string data =
                tm_pageData(folder, {{scratch.path(palette), scratch.path(picture), ""}});
            const auto part = [&data](const std::string &from, const std::string &to) {
                const auto begin = data.find(from) + from.size();
                return data.substr(begin, data.find(to, begin) - begin);
            };
            EXPECT_EQ(said, part("\"name\": ", ", \"type\"") + ", palette " +
                                part("\"palette\": ", ", \"changed\"") + ", picture " +
                                part("\"picture\": ", ", \"made\""));
            EXPECT_THAT(data, HasSubstr(R"({"title": "lib")"));
        }
    }
}

TEST_F(Page, EntriesKeepTheirOrderAndHaveTheirFilesDates)
{
    const std::vector<tm_PageEntry> entries = {write("b", GOLD), write("a", GOLD), entry("c")};
    setDate(entries[0].palette, 1000000000);
    setDate(scratch.write("b.jpg", "picture"), 1500000000);
    setDate(entries[1].palette, 2);
    const std::string data = tm_pageData(scratch.path(), entries);
    EXPECT_THAT(data, testing::ContainsRegex("\"b\\.palette\", \"changed\": 1000000000, "
                                             "\"picture\": \"b\\.jpg\", \"made\": 1500000000"));
    EXPECT_THAT(data, testing::ContainsRegex("\"changed\": 2, \"picture\": \"a\\.jpg\", "
                                             "\"made\": 0,"));
    EXPECT_LT(data.find("b.palette"), data.find("a.palette"));
    EXPECT_LT(data.find("a.palette"), data.find("c.palette"));
}

TEST_F(Page, OnlyThePagesOwnScriptsEnd)
{
    EXPECT_EQ("", written({}));
    const std::string empty = page();
    EXPECT_EQ("", written({write("<!--", "ShaderType '</script><script>x'\nVVaskel '</script>'\n"),
                           entry("</script", "</SCRIPT >")}));
    for (const char *part : {"</script", "<script", "<!--", "</SCRIPT"})
        EXPECT_EQ(countOf(part, empty), countOf(part, page())) << part;
}

TEST_F(Page, AnOlderPageGoesWhenTheNewOneIsWhole)
{
    EXPECT_EQ("", written({write("old", GOLD)}));
    {
        const FileLimit limit(20000);
        EXPECT_THAT(written({entry("new")}), HasSubstr("index.html: File too large"));
    }
    EXPECT_THAT(page(), HasSubstr("old.palette"));
    EXPECT_EQ("", written({entry("new")}));
    EXPECT_THAT(page(), Not(HasSubstr("old.palette")));
    EXPECT_THAT(filesBeside(), testing::UnorderedElementsAre("old.palette", "index.html"));
}

TEST_F(Page, WhatIsNoPageOfOursStays)
{
    for (const char *text : {"<!DOCTYPE html>\n<html lang=\"en\">\nmine", ""}) {
        scratch.write("index.html", text);
        EXPECT_THAT(written({}), HasSubstr("index.html: not replaced"));
        EXPECT_EQ(text, page());
    }
    std::filesystem::remove(scratch.path("index.html"));
    scratch.makeDirectory("index.html");
    EXPECT_THAT(written({}), HasSubstr("index.html: not replaced"));
}

TEST_F(Page, AFolderThatIsNotThereIsAnError)
{
    std::string error;
    EXPECT_FALSE(tm_writePage(scratch.path("absent"), {}, error));
    EXPECT_THAT(error, HasSubstr("absent/index.html: No such file"));
}
