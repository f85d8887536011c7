#include "UT/UT_ErrorManager.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_WordList.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <cerrno>
#include <cstring>
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
    S s(text);
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
    S s(text);
    const int count = split(s, argv, room);
    EXPECT_EQ(nullptr, argv[count]);
    return joined(std::vector<std::string>(argv, argv + count));
}

const auto byWords = [](S &s, auto &&...to) { return s.splitWords(to...); };
const auto intoWords = [](S &s, auto &&...to) { return s.splitWordsInto(to...); };
const auto byRuns = [](S &s, auto &&...to) { return s.splitAt(to..., ",;"); };
const auto bySingle = [](S &s, auto &&...to) { return s.splitAtChar(to..., ','); };

Show tokens(const S::TokenRules &rules)
{
    return [rules](const char *in) {
        return wordsOf(in, [&rules](S &s, UT_WordList &words) { return s.tokenize(words, rules); });
    };
}

std::string modified(const char *text, const char *modifiers)
{
    S s(text);
    const bool changed = s.applyModifiers(modifiers);
    EXPECT_EQ(orNull(text) != orNull(s), changed) << modifiers;
    return orNull(s);
}

Show saved(bool binary)
{
    return [binary](const char *in) {
        std::ostringstream os;
        errno = 0;
        EXPECT_TRUE(S(in).save(os, binary));
        return os.str();
    };
}

std::string relative(const char *in)
{
    const std::vector<std::string> folders = plainSplitWords(in);
    S s("unrelated");
    s.makeRelativePath(folders[0].c_str(), folders.size() > 1 ? folders[1].c_str() : nullptr);
    return s.toStdString();
}

Show replacing(const char *word)
{
    return [word](const char *in) {
        const S s(in);
        const char *found = s.findWord(word);
        EXPECT_EQ(found != nullptr, s.contains(word, true));
        S first(s), all(s);
        first.replaceWord(word, "+", false);
        all.replaceWord(word, "+", true);
        return std::to_string(found ? found - s.text() : -1) + ' ' + first.text() + '|' +
               all.text();
    };
}

std::string asNumbers(const char *in)
{
    S s;
    s.sprintf("%d %.1f", S(in).toInt(), S(in).toFloat());
    return s.toStdString();
}

std::string kindOfNumber(const char *in)
{
    std::string all;
    for (const bool space : {false, true})
        for (const bool is :
             {S(in).isInteger(space), S(in).isNumber(space, false), S(in).isNumber(space, true)})
            all += is ? '1' : '0';
    return all.insert(3, " ");
}

std::string startAndEnd(const char *in)
{
    const S s(in);
    EXPECT_FALSE(s.startsWith("") || s.startsWith(nullptr));
    EXPECT_FALSE(s.endsWith("") || s.endsWith(nullptr));
    return std::to_string(s.startsWith(".jpg")) + std::to_string(s.endsWith(".jpg"));
}

std::string colonModified(const char *in)
{
    const std::string text = in, name = text.substr(0, text.find(':'));
    return modified(name.c_str(), in + name.size());
}

std::string uncommented(const char *in)
{
    UT_ScratchBuffer text;
    text.append(in);
    text.stripComment('#');
    return std::string(text.buffer(), static_cast<size_t>(text.length()));
}

Show matchAny(bool otherwise)
{
    return [otherwise](const char *in) {
        S list("*.c ^x* xy.*");
        UT_WordList patterns;
        list.splitWords(patterns);
        return std::to_string(S(in).matchAny(patterns, otherwise));
    };
}
} // namespace

TEST(String, OperationsFollowTheirTable)
{
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
            {"climbs above the root",
             [](const char *in) { return std::to_string(S(in).collapseAbsolutePath()); }},
            {"makeRelativePath", relative},
            {"word a", replacing("a")},
            {"word a1", replacing("a1")},
            {"word a.a", replacing("a.a")},
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
            {"kind of number", kindOfNumber},
            {"isNumber", [](const char *in) { return std::to_string(S(in).isNumber(true, true)); }},
            {"match b", [](const char *in) { return std::to_string(S("b").match(in)); }},
            {"stripComment #", uncommented},
            {"matchAny or not", matchAny(false)},
            {"matchAny or so", matchAny(true)},
            {"save", saved(false)},
            {"save binary", saved(true)},
        });
    EXPECT_EQ("(null)", modified(nullptr, ":u"));
    EXPECT_EQ(2, S("abca").countChar('a') + S().countChar('a'));
}

TEST(String, BorrowsUntilAnEditAndNeverWritesWhatItBorrowed)
{
    const char *literal = "abc";
    S s(literal);
    const S copy(s);
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
            const S made(text, false, static_cast<int>(length));
            S assigned("old", true);
            assigned.assignCopy(text, static_cast<int>(length));
            for (const char *one : {made.text(), assigned.text()})
                EXPECT_EQ(expected + '\0', std::string(one, length + 1));
        }
}

TEST(String, UnsetBecomesEmptyOnlyWhenItIsOwned)
{
    const S deep(S::ALWAYS_DEEP, nullptr);
    S borrowed, assigned(nullptr, true), owned(nullptr, true), copy(deep);
    assigned = S(nullptr);
    for (S *each : {&borrowed, &assigned, &owned, &copy})
        each->makeOwned();
    EXPECT_STREQ("", borrowed);
    EXPECT_STREQ("", assigned);
    EXPECT_TRUE(owned.text() == nullptr && copy.text() == nullptr);
    borrowed.clear();
    EXPECT_EQ(nullptr, borrowed.text());
    borrowed.assignCopy(nullptr);
    EXPECT_STREQ("", borrowed);
    EXPECT_STREQ("", copy += nullptr);
    EXPECT_STREQ("x", S("x") += nullptr);
}

TEST(String, AlwaysDeepCopiesOnEveryWayIn)
{
    const char *literal = "abc";
    S deep(S::ALWAYS_DEEP, literal), assigned(deep), copy(deep), plain(literal);
    EXPECT_NE(deep.text(), copy.text());
    copy = literal;
    assigned = plain;
    const char *owned = deep.text();
    deep.swap(plain);
    EXPECT_EQ(owned, plain.text());
    for (const S *each : {&deep, &assigned, &copy})
        EXPECT_TRUE(literal != each->text() && std::string(literal) == each->text());
    EXPECT_EQ(literal, (plain = literal).text());
}

TEST(String, WritesTextsOfAnyLengthAndWholeNumbers)
{
    S s;
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

TEST(String, KnowsWhiteSpaceAndWildcards)
{
    for (int c = 1; c < 256; ++c) {
        const char text[] = {'a', static_cast<char>(c), '\0'};
        EXPECT_EQ(std::strchr(" \t\n\v\f", c) != nullptr, S(text).hasWhitespace()) << c;
        EXPECT_EQ(std::strchr(" ,?*[", c) != nullptr, S::hasWildcards(text)) << c;
    }
    EXPECT_FALSE(S().hasWhitespace() || S::hasWildcards(nullptr));
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
    for (S nothing : {S(), S("")})
        EXPECT_EQ(0, nothing.splitAt(words, ",") + nothing.splitAtChar(words, ','));
    EXPECT_STREQ("kept", words.getArg(0));
}

TEST(String, SplitsIntoNoMoreThanTheRoomThereIs)
{
    for (const auto &[room, words] : {std::pair(8, "a|b|c|"), {4, "a|b|c|"}, {3, "a|b|"}, {1, ""}})
        EXPECT_EQ(words, arrayOf("a b c", room, intoWords));
    EXPECT_EQ("", arrayOf(" ", 3, intoWords));
    EXPECT_EQ(0, S("a").splitWordsInto(nullptr, 0));
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
                          S(text.c_str()).match(pattern.c_str(), exact))
                    << text << " with " << pattern;
    });
    const S s("one two");
    EXPECT_TRUE(s.contains("e t") && s.contains("e?t", false, true) && s.contains(""));
    EXPECT_FALSE(s.contains("e?t") || s.contains("E?t", false, true) || S().contains(""));
    EXPECT_FALSE(S().match("*"));
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

TEST(String, AFullDeviceIsPosted)
{
    std::ofstream os;
    os.rdbuf()->pubsetbuf(nullptr, 0);
    os.open("/dev/full");
    UT_ErrorManager::pushManager();
    errno = 0;
    EXPECT_FALSE(S("text").save(os, false));
    EXPECT_EQ(0, UTfindError("Common", UT_COMMON_SAVE_FAILED));
    UT_ErrorManager::popManager();
}
