#include "UT/UT_ErrorManager.h"
#include "UT/UT_IStream.h"
#include "UT/UT_WordList.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace
{
using S = UT_String;

// What `split` puts into a list, the answer checked.
template <class Split>
std::string wordsOf(const char *text, Split split)
{
    UT_String s(text);
    UT_WordList words;
    words.setArg(4, "stale");
    const int count = split(s, words);
    EXPECT_EQ(words.getArgc(), count);
    return joined(std::vector<std::string>(words.getArgv(), words.getArgv() + count));
}

// The same by a form that fills an array.
template <class Split>
std::string arrayOf(const char *text, int room, Split split)
{
    char stale[] = "stale";
    char *argv[] = {stale, stale, stale, stale, stale, stale, stale, stale};
    UT_String s(text);
    const int count = split(s, argv, room);
    EXPECT_EQ(nullptr, argv[count]);
    return joined(std::vector<std::string>(argv, argv + count));
}

const auto byWords = [](UT_String &s, UT_WordList &words) { return s.splitWords(words); };
const auto intoWords = [](S &s, char **argv, int room) { return s.splitWordsInto(argv, room); };
const auto byRuns = [](UT_String &s, auto &&...to) { return s.splitAt(to..., ",;"); };
const auto bySingle = [](UT_String &s, auto &&...to) { return s.splitAtChar(to..., ','); };

Show tokens(const UT_String::TokenRules &rules)
{
    return [rules](const char *in) {
        return wordsOf(in, [&rules](S &s, UT_WordList &words) { return s.tokenize(words, rules); });
    };
}

std::string modified(const char *text, const char *modifiers)
{
    UT_String s(text);
    const bool changed = s.applyModifiers(modifiers);
    EXPECT_EQ(orNull(text) != orNull(s), changed) << modifiers;
    return orNull(s);
}

std::string saved(const UT_String &text, bool binary)
{
    std::ostringstream os;
    errno = 0;
    EXPECT_TRUE(text.save(os, binary));
    return os.str();
}

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

std::string asNumbers(const char *in)
{
    UT_String s;
    s.sprintf("%d %.1f", UT_String(in).toInt(), UT_String(in).toFloat());
    return s.toStdString();
}

std::string startAndEnd(const char *in)
{
    const UT_String s(in);
    EXPECT_FALSE(s.startsWith("") || s.startsWith(nullptr));
    EXPECT_FALSE(s.endsWith("") || s.endsWith(nullptr));
    return std::to_string(s.startsWith(".jpg")) + std::to_string(s.endsWith(".jpg"));
}

std::string colonModified(const char *in)
{
    const std::string all = in;
    const size_t colon = std::min(all.find(':'), all.size());
    return modified(all.substr(0, colon).c_str(), in + colon);
}
} // namespace

TEST(String, OperationsFollowTheirTable)
{
    const auto relate = [](S &s) {
        return s.makeRelativePath(s, "/b") || s.makeRelativePath("/b", s);
    };
    expectTable(
        TEST_DATA "/data/strings",
        {
            {"changeSuffix", editing([](S &s) { return s.changeSuffix(".palette", ".jpg"); })},
            {"replaceText a by aa", editing([](S &s) { return s.replaceText("a", "aa", true); })},
            {"replaceText a by aa once",
             editing([](S &s) { return s.replaceText("a", "aa", false); })},
            {"replaceText ana by nothing",
             editing([](S &s) { return s.replaceText("ana", "", true); })},
            {"replaceText without a text", editing([](S &s) {
                 return s.replaceText("", "y", true) + s.replaceText(nullptr, "y", true) +
                        s.replaceText("a", nullptr, true);
             })},
            {"replaceWord a by +", editing([](S &s) { return s.replaceWord("a", "+", true); })},
            {"collapseAbsolutePath", editing([](S &s) { return s.collapseAbsolutePath(); })},
            {"makeRelativePath", editing(relate)},
            {"quoteIfSpaced", editing([](S &s) { s.quoteIfSpaced(); })},
            {"makeQuoted '", editing([](S &s) { s.assignCopy(s.makeQuoted('\'')); })},
            {"makeQuoted \"", editing([](S &s) { s.assignCopy(s.makeQuoted('"')); })},
            {"decodeEscapes", editing([](S &s) { s.decodeEscapes(); })},
            {"makeIdentifier", editing([](S &s) { return s.makeIdentifier(nullptr); })},
            {"makeIdentifier with dots", editing([](S &s) { return s.makeIdentifier("."); })},
            {"stripNumber", editing([](S &s) { return s.stripNumber(); })},
            {"incrementNumber", editing([](S &s) { s.incrementNumber(); })},
            {"trimSpace", editing([](S &s) { s.trimSpace(); })},
            {"collapseSpace", editing([](S &s) { s.collapseSpace(); })},
            {"expandTabs", editing([](S &s) { return s.expandTabs(0), s.expandTabs(4), 1; })},
            {"removeChars", editing([](S &s) { return s.removeChars("-,"); })},
            {"applyModifiers", colonModified},
            {"modifierNameLength",
             [](const char *in) { return std::to_string(S::modifierNameLength(in)); }},
            {"splitWords", [](const char *in) { return wordsOf(in, byWords); }},
            {"tokenize", tokens({" \t", "\"'", '\\', false})},
            {"tokenize at each separator", tokens({",;", "'", '\0', true})},
            {"tokenize without separators and quotes", tokens({nullptr, nullptr, '\0', false})},
            {"setGroupedInteger", editing([](S &s) { s.setGroupedInteger(std::atoll(s)); })},
            {"toInt and toFloat", asNumbers},
            {"startsWith and endsWith .jpg", startAndEnd},
            {"isNumber", [](const char *in) { return std::to_string(S(in).isNumber(true, true)); }},
            {"match b", [](const char *in) { return std::to_string(S("b").match(in)); }},
            {"save", [](const char *in) { return saved(in, false); }},
        });
    EXPECT_EQ("(null)", modified(nullptr, ":u"));
    EXPECT_EQ(2, UT_String("abca").countChar('a') + UT_String().countChar('a'));
}

TEST(String, BorrowsUntilAnEditAndNeverWritesWhatItBorrowed)
{
    const char *literal = "abc";
    UT_String s(literal);
    const UT_String copy(s);
    s += "def";
    EXPECT_STREQ("abcdef", s);
    s = copy;
    EXPECT_EQ(literal, s.text());
    s.makeOwned();
    const char *owned = s.text();
    EXPECT_NE(literal, owned);
    s.makeOwned();
    s.assignCopy("abc");
    s = s.text();
    s = *&s;
    EXPECT_EQ(owned, s.text()) << "already owned and equal";
    s.assignCopy(s.text() + 1);
    s += s.text();
    EXPECT_STREQ("bcbc", s) << "parts of itself";
}

TEST(String, ALengthOwnsExactlySoManyCharacters)
{
    for (const char *text : {static_cast<const char *>(nullptr), "", "ab", "abc"})
        for (const size_t length : {0U, 2U, 4U}) {
            std::string expected(text != nullptr ? text : "");
            expected.resize(length); // the NUL behind it counts too
            const UT_String made(text, false, static_cast<int>(length));
            EXPECT_EQ(expected + '\0', std::string(made.text(), length + 1));
            UT_String assigned("old", true);
            assigned.assignCopy(text, static_cast<int>(length));
            EXPECT_EQ(expected + '\0', std::string(assigned.text(), length + 1));
        }
}

TEST(String, UnsetBecomesEmptyOnlyWhenItIsOwned)
{
    const UT_String deep(UT_String::ALWAYS_DEEP, nullptr);
    UT_String borrowed, assigned(nullptr, true), owned(nullptr, true), copy(deep);
    assigned = UT_String(nullptr);
    for (UT_String *each : {&borrowed, &assigned, &owned, &copy})
        each->makeOwned();
    EXPECT_STREQ("", borrowed);
    EXPECT_STREQ("", assigned);
    EXPECT_TRUE(owned.text() == nullptr && copy.text() == nullptr);
    borrowed.clear();
    EXPECT_EQ(nullptr, borrowed.text());
    borrowed.assignCopy(nullptr);
    EXPECT_STREQ("", borrowed);
    EXPECT_STREQ("", copy += nullptr);
    EXPECT_STREQ("x", UT_String("x") += nullptr);
}

TEST(String, AlwaysDeepCopiesOnEveryWayIn)
{
    const char *literal = "abc";
    UT_String deep(UT_String::ALWAYS_DEEP, literal), assigned(deep), copy(deep), plain(literal);
    EXPECT_NE(deep.text(), copy.text());
    copy = literal;
    assigned = plain;
    const char *owned = deep.text();
    deep.swap(plain);
    EXPECT_EQ(owned, plain.text());
    for (const UT_String *each : {&deep, &assigned, &copy}) {
        EXPECT_NE(literal, each->text());
        EXPECT_STREQ("abc", *each);
    }
    EXPECT_EQ(literal, (plain = literal).text());
}

TEST(String, WritesTextsOfAnyLengthAndWholeNumbers)
{
    UT_String s;
    for (const int length : {0, 255, 256, 5000}) {
        const std::string text(static_cast<size_t>(length), 'x');
        EXPECT_EQ(length, s.sprintf("%s", text.c_str()));
        EXPECT_EQ(text, s.toStdString());
    }
    EXPECT_GT(0, s.sprintf("%ls", L"\x3b1")) << "no such character in the C locale";
    EXPECT_EQ(nullptr, s.text());
    s.setInteger(INT32_MIN);
    EXPECT_STREQ("-2147483648", s);
    s.setInteger(UINT32_MAX);
    EXPECT_STREQ("4294967295", s);
}

TEST(String, RecognisesNumbersAsRegularExpressionsDo)
{
    for (const bool allowSpace : {false, true}) {
        const std::string space = allowSpace ? " *" : "";
        const std::regex integer(space + "[+-]?\\d+" + space), marks(space + "[+.]+" + space),
            number(space + "[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?" + space);
        forEachString("1+.e ", 5, [&](const std::string &text) {
            const UT_String s(text.c_str());
            const bool isNumber = std::regex_match(text, number);
            ASSERT_EQ(std::regex_match(text, integer), s.isInteger(allowSpace)) << text;
            ASSERT_EQ(isNumber, s.isNumber(allowSpace, false)) << text;
            ASSERT_EQ(isNumber || std::regex_match(text, marks), s.isNumber(allowSpace, true))
                << text;
        });
    }
}

TEST(String, KnowsWhiteSpaceAndWildcards)
{
    for (int c = 1; c < 256; ++c) {
        const char text[] = {'a', static_cast<char>(c), '\0'};
        EXPECT_EQ(std::strchr(" \t\n\v\f", c) != nullptr, S(text).hasWhitespace()) << c;
        EXPECT_EQ(std::strchr(" ,?*[", c) != nullptr, S::hasWildcards(text)) << c;
    }
    EXPECT_FALSE(UT_String().hasWhitespace() || UT_String::hasWildcards(nullptr));
}

TEST(String, WordsAreFoundAndReplacedAsRegularExpressionsBoundThem)
{
    for (const std::string word : {"a", "a1", "a.a"}) {
        const std::regex bounded("\\b" + std::regex_replace(word, std::regex("[.]"), "[.]") +
                                 "\\b");
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
}

TEST(String, CollapsesAndRelatesPaths)
{
    forEachString("/.a", 8, [](const std::string &rest) {
        const std::string expected = plainCollapse('/' + rest);
        UT_String s(('/' + rest).c_str(), true);
        const bool isDone = s.collapseAbsolutePath();
        ASSERT_EQ(expected, isDone ? s.text() : "") << rest;
    });
    const char *const folders[] = {"/", "/a", "/ab/", "/a/b", "/a/c/d", "/a//x/../b/.", "/c/a/b"};
    for (const char *from : folders)
        for (const char *to : folders) {
            UT_String s;
            EXPECT_TRUE(s.makeRelativePath(from, to));
            const std::filesystem::path goal = plainCollapse(to);
            EXPECT_EQ(goal.lexically_relative(plainCollapse(from)), s.text()) << from << ' ' << to;
        }
}

TEST(String, SplitsAsThePlainSplittersDo)
{
    forEachString("a \"'\\", 6, [](const std::string &text) {
        ASSERT_EQ(joined(plainSplitWords(text)), wordsOf(text.c_str(), byWords)) << text;
    });
    forEachString("ab,;", 5, [&](const std::string &text) {
        std::string runs, single;
        std::istringstream fields(text);
        for (std::string field, part; std::getline(fields, field, ',');) {
            single += field + '|';
            for (std::istringstream parts(field); std::getline(parts, part, ';');)
                runs += part.empty() ? "" : part + '|';
        }
        ASSERT_EQ(runs, arrayOf(text.c_str(), 8, byRuns)) << text;
        ASSERT_EQ(single, arrayOf(text.c_str(), 8, bySingle)) << text;
        if (!text.empty()) { // an empty one leaves the list
            ASSERT_EQ(runs, wordsOf(text.c_str(), byRuns)) << text;
            ASSERT_EQ(single, wordsOf(text.c_str(), bySingle)) << text;
        }
    });
    UT_WordList words;
    words.setArg(0, "kept");
    for (UT_String nothing : {UT_String(), UT_String("")})
        EXPECT_EQ(0, nothing.splitAt(words, ",") + nothing.splitAtChar(words, ','));
    EXPECT_STREQ("kept", words.getArg(0));
}

TEST(String, SplitsIntoNoMoreThanTheRoomThereIs)
{
    EXPECT_EQ("a|b|c|", arrayOf("a b c", 8, intoWords));
    EXPECT_EQ("a|b|c|", arrayOf("a b c", 4, intoWords));
    EXPECT_EQ("a|b|", arrayOf("a b c", 3, intoWords));
    EXPECT_EQ("", arrayOf("a b c", 1, intoWords) + arrayOf(" ", 3, intoWords));
    EXPECT_EQ(0, UT_String("a").splitWordsInto(nullptr, 0));
    EXPECT_EQ("a|", arrayOf("a,b", 2, byRuns));
}

TEST(String, MatchesAsThePlainMatcherDoes)
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
    const UT_String s("one two");
    EXPECT_TRUE(s.contains("e t") && s.contains("e?t", false, true) && s.contains(""));
    EXPECT_FALSE(s.contains("e?t") || s.contains("E?t", false, true) || UT_String().contains(""));
    EXPECT_FALSE(UT_String().match("*"));
}

TEST(String, TheRightmostMatchingPatternDecides)
{
    UT_WordList patterns;
    for (const char *pattern : {"*.c", "^x*", "xy.*"})
        patterns.setArg(patterns.getArgc(), pattern);
    for (const bool otherwise : {true, false})
        expectEach({"a.c -> 1", "xz.c -> 0", "xy.o -> 1", otherwise ? "a.o -> 1" : "a.o -> 0"},
                   [&](const char *in) {
                       return std::to_string(UT_String(in).matchAny(patterns, otherwise));
                   });
}

TEST(String, ModifiersTakeAwayWhatARegularExpressionFinds)
{
    const std::pair<const char *, std::regex> cases[] = {
        {":r", std::regex("\\.[^/.]*$")},  {":ar", std::regex("(\\.[^/.]*)+$")},
        {":h", std::regex("/[^/]*$")},     {":ah", std::regex("/.*$")},
        {":t", std::regex("^.*/")},        {":e", std::regex("^.*\\.(?=[^/.]*$)")},
        {":at:ae", std::regex("^.*[/.]")}, {":z:", std::regex("^$")}};
    for (const auto &each : cases)
        forEachString("a./", 6, [&each](const std::string &text) {
            ASSERT_EQ(std::regex_replace(text, each.second, ""), modified(text.c_str(), each.first))
                << text << each.first;
        });
}

TEST(String, IsSavedWithItsLengthInFrontAndLoadedAgain)
{
    const std::string longText(65535, 'x');
    EXPECT_EQ(std::string("\xff\xff\0\0\xff\xff", 6) + longText, saved(longText.c_str(), true));
    EXPECT_EQ(std::string("\0\4word", 6), saved("word", true));
    EXPECT_EQ(std::string(2, '\0'), saved(nullptr, true));
    UT_IStream is("\"a\\\"b c\" ", 9, false);
    UT_String text("old");
    EXPECT_TRUE(text.load(is));
    EXPECT_STREQ("a\"b c", text);
    EXPECT_FALSE(text.load(is));
    EXPECT_EQ(nullptr, text.text());
}

TEST(String, AFullDeviceIsPosted)
{
    std::ofstream os;
    os.rdbuf()->pubsetbuf(nullptr, 0);
    os.open("/dev/full");
    UT_ErrorManager::pushManager();
    errno = 0;
    EXPECT_FALSE(UT_String("text").save(os, false));
    EXPECT_EQ(0, UTfindError("Common", UT_COMMON_SAVE_FAILED));
    UT_ErrorManager::popManager();
}
