#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <filesystem>
#include <regex>
#include <sstream>

namespace
{
// "" for a path that climbs above the root.
std::string plainCollapse(const std::string &path)
{
    std::vector<std::string> kept;
    std::istringstream in(path);
    for (std::string part; std::getline(in, part, '/');) {
        if (part == ".." && kept.empty())
            return "";
        if (part == "..")
            kept.pop_back();
        else if (!part.empty() && part != ".")
            kept.push_back(part);
    }
    std::string result = kept.empty() ? "/" : "";
    for (const std::string &part : kept)
        result += '/' + part;
    return result;
}
} // namespace

TEST(StringEdit, ReplacesSuffixesAndTexts)
{
    expectEdits({"x/y.palette -> 1 x/y.jpg", ".palette -> 1 .jpg", "y.pal -> 0 y.pal",
                 "x.palette/y -> 0 x.palette/y", "(null) -> 0 (null)"},
                [](UT_String &s) { return s.changeSuffix(".palette", ".jpg"); });
    const auto replacing = [](const char *find, const char *by, bool all) {
        return [=](UT_String &s) { return s.replaceText(find, by, all); };
    };
    expectEdits({"banana -> 3 baanaanaa", "aa -> 2 aaaa", "x -> 0 x", "(null) -> 0 (null)"},
                replacing("a", "aa", true));
    expectEdits({"banana -> 1 baanana", "a -> 1 aa"}, replacing("a", "aa", false));
    expectEdits({"banana -> 1 bna", "anaana -> 2 "}, replacing("ana", "", true));
    expectEdits({"abc -> 0 abc", " -> 0 "}, replacing("", "y", true));
    expectEdits({"abc -> 0 abc"}, replacing(nullptr, "y", true));
    expectEdits({"abc -> 0 abc"}, replacing("a", nullptr, true));
}

TEST(StringEdit, WordsAreFoundAndReplacedAsRegularExpressionsBoundThem)
{
    const std::pair<std::string, const char *> words[] = {
        {"a", "\\ba\\b"}, {"a1", "\\ba1\\b"}, {"a.a", "\\ba[.]a\\b"}};
    for (const auto &each : words) {
        const std::string &word = each.first;
        const std::regex bounded(each.second);
        forEachString("a_ .1", 5, [&](const std::string &text) {
            std::smatch match;
            const bool isFound = std::regex_search(text, match, bounded);
            const UT_String s(text.c_str());
            const char *found = s.findWord(word.c_str());
            ASSERT_EQ(isFound ? s.text() + match.position() : nullptr, found) << text;
            ASSERT_EQ(isFound, s.contains(word.c_str(), true));
            UT_String first(s), all(s);
            first.replaceWord(word.c_str(), "+", false);
            all.replaceWord(word.c_str(), "+", true);
            const auto once = std::regex_constants::format_first_only;
            ASSERT_EQ(std::regex_replace(text, bounded, "+", once), first.text());
            ASSERT_EQ(std::regex_replace(text, bounded, "+"), all.text());
        });
    }
    expectEdits({"\001a\177a\351 -> 2 \001+\177+\351", "a-a2 -> 1 +-a2", "(null) -> 0 (null)"},
                [](UT_String &s) { return s.replaceWord("a", "+", true); });
}

TEST(StringEdit, CollapsesAndRelatesPaths)
{
    forEachString("/.a", 8, [](const std::string &rest) {
        const std::string expected = plainCollapse('/' + rest);
        UT_String s(('/' + rest).c_str(), true);
        ASSERT_EQ(!expected.empty(), s.collapseAbsolutePath()) << rest;
        if (!expected.empty()) {
            ASSERT_EQ(expected, s.text()) << rest;
        }
    });
    expectEdits({"relative/x -> 0 relative/x", "./a//b -> 0 ./a//b", "(null) -> 0 (null)"},
                [](UT_String &s) { return s.collapseAbsolutePath(); });
    const char *const folders[] = {"/", "/a", "/ab/", "/a/b", "/a/c/d", "/a//x/../b/.", "/c/a/b"};
    for (const char *from : folders)
        for (const char *to : folders) {
            UT_String s;
            EXPECT_TRUE(s.makeRelativePath(from, to));
            const std::filesystem::path goal = plainCollapse(to);
            EXPECT_EQ(goal.lexically_relative(plainCollapse(from)), s.text()) << from << ' ' << to;
        }
    expectEdits({"a -> 0 a", "/.. -> 0 /..", "(null) -> 0 (null)"}, [](UT_String &s) {
        return s.makeRelativePath(s, "/b") || s.makeRelativePath("/b", s);
    });
}

TEST(StringEdit, QuotesWhatASplitterWouldTakeApart)
{
    expectEdits({"a b -> \"a b\"", "\"a b\" -> \"a b\"", "\"a b -> \"\\\"a b\"", "a\"b -> a\"b",
                 "a \\ -> \"a \\\\\"", "a\vb -> \"a\vb\"", "a\rb -> a\rb", "(null) -> (null)"},
                [](UT_String &s) { s.quoteIfSpaced(); });
    // The other quote is used when only that saves backslashes.
    expectEdits(
        {"a\\b -> 'a\\\\b'", "it's -> \"it's\"", "a\"b -> 'a\"b'", "'\" -> '\\'\"'", " -> ''"},
        [](UT_String &s) { s.assignCopy(s.makeQuoted('\'')); });
    expectEdits({"a\\b -> \"a\\\\b\"", "it's -> \"it's\"", "a\"b -> 'a\"b'", "'\" -> \"'\\\"\""},
                [](UT_String &s) { s.assignCopy(s.makeQuoted('"')); });
    expectEdits({"a\\n\\r\\t\\\\\\q\\\" -> a\n\r\t\\q\"", "a\\ -> a\\", "(null) -> (null)"},
                [](UT_String &s) { s.decodeEscapes(); });
}

TEST(StringEdit, ChangesNames)
{
    expectEdits({"ok_1 -> 0 ok_1", "a-b.c -> 2 a_b_c", "9- -> 2 _9_", "\xe9 -> 1 _"},
                [](UT_String &s) { return s.makeIdentifier(nullptr); });
    expectEdits({"a-b.c -> 1 a_b.c", ".x -> 1 _.x", "-x -> 1 _x", " -> 0 "},
                [](UT_String &s) { return s.makeIdentifier("."); });
    expectEdits({"shot099 -> 1 shot", "7 -> 1 ", "a1b -> 0 a1b", "(null) -> 0 (null)"},
                [](UT_String &s) { return s.stripNumber(); });
    expectEdits({"shot099 -> shot100", "a9 -> a10", "a1b -> a1b1", "x07 -> x08", "(null) -> 1",
                 "99999999999999999999 -> 100000000000000000000"},
                [](UT_String &s) { s.incrementNumber(); });
}

TEST(StringEdit, TidiesWhiteSpace)
{
    expectEdits({" a \t b\n -> a \t b", "\v\f -> ", "a -> a", "(null) -> (null)"},
                [](UT_String &s) { s.trimSpace(); });
    expectEdits({" a \t b\n -> a b", "\v\f -> ", "a -> a", "(null) -> (null)"},
                [](UT_String &s) { s.collapseSpace(); });
    expectEdits({"\ta\n\tb -> 1     a\n    b", "abcd\te -> 1 abcd    e", "(null) -> 1 (null)"},
                [](UT_String &s) { return s.expandTabs(0), s.expandTabs(4), 1; });
    expectEdits({"a-b,c- -> 3 abc", "a -> 0 a", "(null) -> 0 (null)"},
                [](UT_String &s) { return s.removeChars("-,"); });
}
