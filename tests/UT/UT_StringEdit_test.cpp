#include "UT/UT_String.h"
#include "UT/UT_WordList.h"
#include "tests/support/PlainText.h"

#include <gtest/gtest.h>

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

TEST(StringEdit, AppliesModifiers)
{
    const char *path = "/x/y/file.tar.gz";
    const struct {
        const char *text, *modifiers, *result;
    } cases[] = {
        {path, ":r", "/x/y/file.tar"},
        {path, ":ar", "/x/y/file"},
        {path, ":h", "/x/y"},
        {path, ":ah", ""},
        {path, ":t", "file.tar.gz"},
        {path, ":e", "gz"},
        {path, ":s/file/f/", "/x/y/f.tar.gz"},
        {path, ":t:r", "file.tar"},
        {path, ":tail:e", "gz"},
        {path, ":z:", path},
        {"a.b/c", ":ar", "a.b/c"},
        {"a.b/c", ":e", "a.b/c"},
        {"x/y/z", ":ah", "x"},
        {"name", ":h:t", "name"},
        {"ABcd", ":u", "ABCd"},
        {"abCD", ":l", "abcD"},
        {"Abc d", ":au", "ABC D"},
        {"Abc D", ":al", "abc d"},
        {"aXa", ":s/a/b/", "bXa"},
        {"aXa", ":as/a/b/", "bXb"},
        {"aXa", ":s/a/b", "bXa"},
        {"aXa", ":s/a", "aXa"},
        {"aXa", ":s/a:l", "axa"},
        {"aXa", ":s/a/b:l", "bxa"},
        {"a/b  c/d", ":gt", "b d"},
        {"a/b c/d\t", ":gt", "b d "},
        {"aa aa", ":gs/a/b/", "ba ba"},
        {"aa aa", ":gas/a/b/", "bb bb"},
        {"a.b.c d.e.f", ":agr", "a d"},
        {"", ":u", ""},
        {nullptr, ":u", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text) + c.modifiers);
        UT_String s(c.text);
        s.applyModifiers(c.modifiers);
        EXPECT_STREQ(c.result, s);
    }
}

TEST(StringEdit, MeasuresANameWithItsModifiers)
{
    const struct {
        const char *text;
        int length;
    } cases[] = {
        {"N_1/x", 3},
        {"N:t/x", 3},
        {"N: x", 1},
        {"N:", 1},
        {":t:r x", 4},
        {"s/x", 1},
        {":s/a/b/c/d", 8},
        {":s/a/b/:t/", 9},
        {"N:s.a", 3},
        {"", 0},
        {":s/a/b/:s/c/d//", 14},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.length, UT_String::modifierNameLength(c.text)) << c.text;
}

TEST(StringEdit, CollapsesAbsolutePaths)
{
    const struct {
        const char *before, *after;
    } cases[] = {
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
    const struct {
        const char *before, *after;
    } cases[] = {
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

TEST(StringMatch, MatchesTheWholeText)
{
    const struct {
        const char *text, *pattern;
        bool exact, anyCase;
    } cases[] = {
        {"file.c", "*.c", true, true},    {"file.c", "*.C", false, true},
        {"file.c", "file", false, false}, {"", "*", true, true},
        {"", "?", false, false},          {"", "", true, true},
        {"ab", "a**b", true, true},       {"ab", "[xa]?", true, true},
        {"a", "[A]", false, true},        {"a", "[]", false, false},
        {"a", "[a", false, false},        {"b", "[a-c]", false, false},
        {"*", "\\*", true, true},         {"a", "\\*", false, false},
        {"abab", "*a*b", true, true},     {nullptr, "*", false, false},
        {"a", nullptr, false, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.pattern));
        EXPECT_EQ(c.exact, UT_String(c.text).match(c.pattern));
        EXPECT_EQ(c.anyCase, UT_String(c.text).match(c.pattern, false));
    }
}

TEST(StringMatch, AgreesWithThePlainMatcher)
{
    std::vector<std::string> texts;
    forEachString("aB]\\", 3, [&texts](const std::string &text) { texts.push_back(text); });
    forEachString("abB*?[]\\", 4, [&texts](const std::string &pattern) {
        for (const std::string &text : texts)
            for (const bool exact : {true, false})
                ASSERT_EQ(plainMatch(text.c_str(), pattern.c_str(), exact),
                          UT_String(text.c_str()).match(pattern.c_str(), exact))
                    << text << " with " << pattern;
    });
}

TEST(StringMatch, TheRightmostMatchingPatternDecides)
{
    UT_WordList patterns;
    for (const char *pattern : {"*.c", "^x*", "xy.*"})
        patterns.setArg(patterns.getArgc(), pattern);
    for (const bool otherwise : {true, false}) {
        EXPECT_TRUE(UT_String("a.c").matchAny(patterns, otherwise));
        EXPECT_FALSE(UT_String("xz.c").matchAny(patterns, otherwise));
        EXPECT_TRUE(UT_String("xy.o").matchAny(patterns, otherwise));
        EXPECT_EQ(otherwise, UT_String("a.o").matchAny(patterns, otherwise));
    }
}
