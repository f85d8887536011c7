#include "UT/UT_String.h"

#include <gtest/gtest.h>
#include <sstream>

namespace
{
struct Edit {
    const char *before, *after;
};
} // namespace

TEST(StringEdit, ChangesASuffix)
{
    const struct {
        const char *before, *after;
        bool changed;
    } cases[] = {
        {"x/y.palette", "x/y.jpg", true}, {".palette", ".jpg", true},
        {"y.pal", "y.pal", false},        {"x.palette/y", "x.palette/y", false},
        {nullptr, nullptr, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.before));
        UT_String s(c.before);
        EXPECT_EQ(c.changed, s.changeSuffix(".palette", ".jpg"));
        EXPECT_STREQ(c.after, s);
    }
}

TEST(StringEdit, ReplacesText)
{
    const struct {
        const char *text, *find, *by;
        bool all;
        const char *result;
        int count;
    } cases[] = {
        {"banana", "a", "aa", true, "baanaanaa", 3}, {"banana", "a", "aa", false, "baanana", 1},
        {"banana", "ana", "", true, "bna", 1},       {"aaaa", "aa", "b", true, "bb", 2},
        {"abc", "x", "y", true, "abc", 0},           {"abc", "", "y", true, "abc", 0},
        {"abc", nullptr, "y", true, "abc", 0},       {"abc", "a", nullptr, true, "abc", 0},
        {nullptr, "a", "b", true, nullptr, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.find));
        UT_String s(c.text);
        EXPECT_EQ(c.count, s.replaceText(c.find, c.by, c.all));
        EXPECT_STREQ(c.result, s);
    }
}

TEST(StringEdit, CollapsesAbsolutePaths)
{
    const Edit cases[] = {
        {"/a//./b/../c/", "/a/c"},
        {"/", "/"},
        {"//", "/"},
        {"/.", "/"},
        {"/a/..", "/"},
        {"/a/../b", "/b"},
        {"/.../..b/.c", "/.../..b/.c"},
        {"/..", nullptr},
        {"/a/../../b", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.before);
        UT_String s(c.before);
        EXPECT_EQ(c.after != nullptr, s.collapseAbsolutePath());
        if (c.after != nullptr) {
            EXPECT_STREQ(c.after, s);
        }
    }
    for (const char *other : {"relative/x", "./a//b", "", static_cast<const char *>(nullptr)}) {
        UT_String s(other);
        EXPECT_FALSE(s.collapseAbsolutePath());
        EXPECT_STREQ(other, s);
    }
}

TEST(StringEdit, QuotesWhatASplitterWouldTakeApart)
{
    const Edit cases[] = {
        {"a b", R"("a b")"},          {R"("a b")", R"("a b")"},
        {R"(a "b\)", R"("a \"b\\")"}, {R"(a"b)", R"(a"b)"},
        {"a\vb", "\"a\vb\""},         {"a\rb", "a\rb"},
        {R"("a b)", R"("\"a b")"},    {"", ""},
        {nullptr, nullptr},
    };
    for (const auto &c : cases) {
        UT_String s(c.before);
        s.quoteIfSpaced();
        EXPECT_STREQ(c.after, s);
    }
}

TEST(StringEdit, MakesQuotedTexts)
{
    const struct {
        const char *text;
        char quote;
        const char *result;
    } cases[] = {
        {"ab", '\'', "'ab'"},
        {"it's", '\'', R"("it's")"},
        {"it's", '"', R"("it's")"},
        {R"(a"b)", '"', R"('a"b')"},
        {R"(a"b)", '\'', R"('a"b')"},
        {R"(a'"b)", '"', R"("a'\"b")"},
        {R"(a'"b)", '\'', R"('a\'"b')"},
        {R"(a\b)", '"', R"("a\\b")"},
        {"", '"', R"("")"},
    };
    for (const auto &c : cases)
        EXPECT_STREQ(c.result, UT_String(c.text).makeQuoted(c.quote)) << c.text;
}

TEST(StringEdit, DecodesEscapes)
{
    UT_String s(R"(a\n\r\t\\\q\")");
    s.decodeEscapes();
    EXPECT_STREQ("a\n\r\t\\q\"", s);
    s = "a\\";
    s.decodeEscapes();
    EXPECT_STREQ("a\\", s) << "nothing to escape";
}

TEST(StringEdit, MakesIdentifiers)
{
    const struct {
        const char *text, *allowed, *result;
        int changes;
    } cases[] = {
        {"ok_1", "", "ok_1", 0}, {"a-b.c", "", "a_b_c", 2}, {"a-b.c", ".", "a_b.c", 1},
        {"9x", "", "_9x", 1},    {".x", ".", "_.x", 1},     {"-x", "", "_x", 1},
        {"\xe9", "", "_", 1},    {"9-", nullptr, "_9_", 2},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        UT_String s(c.text);
        EXPECT_EQ(c.changes, s.makeIdentifier(c.allowed));
        EXPECT_STREQ(c.result, s);
    }
}

TEST(StringEdit, ReplacesWholeWords)
{
    const struct {
        const char *text;
        bool all;
        const char *result;
        int count;
    } cases[] = {
        {"a an a.a", true, "the an the.the", 3},
        {"a an a.a", false, "the an a.a", 1},
        {"an _a a1", true, "an _a a1", 0},
        {"", true, "", 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        UT_String s(c.text);
        EXPECT_EQ(c.count, s.replaceWord("a", "the", c.all));
        EXPECT_STREQ(c.result, s);
    }
}

TEST(StringEdit, LeadsFromOneFolderToAnother)
{
    const struct {
        const char *from, *to, *path;
    } cases[] = {
        {"/a/b", "/a/c/d", "../c/d"},  {"/a", "/a/b/", "b"},   {"/a/b/", "/a", ".."},
        {"/a//x/../b", "/a/./b", "."}, {"/", "/a", "a"},       {"/a/b", "/", "../.."},
        {"/ab", "/a", "../a"},         {"/a", "/ab", "../ab"}, {"/", "/", "."},
        {"a", "/b", nullptr},          {"/a", "/..", nullptr}, {nullptr, "/", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.from));
        UT_String s("old");
        EXPECT_EQ(c.path != nullptr, s.makeRelativePath(c.from, c.to));
        EXPECT_STREQ(c.path != nullptr ? c.path : "old", s);
    }
}

TEST(StringEdit, HandlesTheNumberBehindAName)
{
    const struct {
        const char *name, *number, *stripped, *next;
    } cases[] = {
        {"shot099", "099", "shot", "shot100"},
        {"a9", "9", "a", "a10"},
        {"7", "7", "", "8"},
        {"a1b", nullptr, "a1b", "a1b1"},
        {"x07", "07", "x", "x08"},
        {"", nullptr, "", "1"},
        {"n99999999999999999999", "99999999999999999999", "n", "n100000000000000000000"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        UT_String s(c.name);
        EXPECT_STREQ(c.number, s.findNumber());
        EXPECT_EQ(c.number != nullptr, s.stripNumber());
        EXPECT_STREQ(c.stripped, s);
        s = c.name;
        s.incrementNumber();
        EXPECT_STREQ(c.next, s);
    }
    EXPECT_EQ(nullptr, UT_String().findNumber());
}

TEST(StringEdit, TidiesWhiteSpace)
{
    const struct {
        const char *text, *trimmed, *collapsed, *tabless;
    } cases[] = {
        {" a \t b\n", "a \t b", "a b", " a   b\n"},
        {"\ta\n\tb", "a\n\tb", "a b", "    a\n    b"},
        {"abcd\te", "abcd\te", "abcd e", "abcd    e"},
        {" \v\f", "", "", " \v\f"},
        {"a", "a", "a", "a"},
        {nullptr, nullptr, nullptr, nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        UT_String trimmed(c.text), collapsed(c.text), tabless(c.text);
        trimmed.trimSpace();
        collapsed.collapseSpace();
        tabless.expandTabs(4);
        tabless.expandTabs(0);
        EXPECT_STREQ(c.trimmed, trimmed);
        EXPECT_STREQ(c.collapsed, collapsed);
        EXPECT_STREQ(c.tabless, tabless);
    }
    UT_String s("a-b,c-");
    EXPECT_EQ(3, s.removeChars("-,"));
    EXPECT_STREQ("abc", s);
}

TEST(StringEdit, WritesItselfAsOneWord)
{
    const Edit cases[] = {
        {"hello world", R"("hello world")"},
        {R"(a"b)", R"(a\"b)"},
        {R"(a\ b)", R"("a\\ b")"},
        {"plain", "plain"},
        {"", R"("")"},
        {nullptr, R"("")"},
    };
    for (const auto &c : cases) {
        std::ostringstream out;
        UT_String(c.before).writeText(out);
        EXPECT_EQ(c.after, out.str());
    }
}
