#include "UT/UT_String.h"
#include "UT/UT_WordList.h"
#include "tests/support/PlainText.h"

#include <gtest/gtest.h>

namespace
{
std::string wordsOf(const UT_WordList &words)
{
    return joined(std::vector<std::string>(words.getArgv(), words.getArgv() + words.getArgc()));
}
} // namespace

TEST(StringSplit, QuotesKeepWordsTogether)
{
    const struct {
        const char *text, *words;
    } cases[] = {
        {"VVaskel \"v_plastic diff 1 0 0\"", "VVaskel|v_plastic diff 1 0 0|"},
        {"a\\\"b", "a\"b|"},
        {"\"a\\\"b\"", "a\\\"b|"},
        {"''", "|"},
        {"  ", ""},
        {"\"ab\"cd", "abcd|"},
        {"'a b", "a b|"},
        {"a\\b \\", "a\\b|\\|"},
        {"\\'\"x y\"", "'x y|"},
        {"\t\r\n\v\fa\r", "a|"},
        {"'a\"b'\"c'd\"", "a\"bc'd|"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        UT_String s(c.text);
        UT_WordList words;
        words.setArg(4, "stale");
        const int count = s.splitWords(words);
        EXPECT_EQ(c.words, wordsOf(words));
        EXPECT_EQ(words.getArgc(), count);
    }
    UT_WordList words;
    words.setArg(0, "stale");
    EXPECT_EQ(0, UT_String().splitWords(words));
    EXPECT_EQ(0, words.getArgc());
}

TEST(StringSplit, AgreesWithThePlainSplitter)
{
    forEachString("a \"'\\", 6, [](const std::string &text) {
        UT_String s(text.c_str());
        UT_WordList words;
        s.splitWords(words);
        ASSERT_EQ(joined(plainSplitWords(text)), wordsOf(words)) << text;
    });
}

TEST(StringSplit, AFixedArrayTakesOneWordLessAndANull)
{
    char stale[] = "stale";
    const struct {
        const char *text;
        int room, count;
    } cases[] = {
        {"a b c", 8, 3}, {"a b c", 4, 3}, {"a b c", 3, 2}, {"a b c", 1, 0}, {" ", 3, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.room);
        char *argv[8] = {stale, stale, stale, stale, stale, stale, stale, stale};
        UT_String s(c.text);
        EXPECT_EQ(c.count, s.splitWordsInto(argv, c.room));
        EXPECT_EQ(nullptr, argv[c.count]);
    }
    char *untouched[1] = {stale};
    EXPECT_EQ(0, UT_String("a").splitWordsInto(untouched, 0));
    EXPECT_EQ(stale, untouched[0]);
}

TEST(StringSplit, FieldsBetweenRunsOrSingleSeparators)
{
    const struct {
        const char *text, *byRuns, *bySingle;
    } cases[] = {
        {"a,b", "a|b|", "a|b|"}, {",a,,b,", "a|b|", "|a||b|"},  {",", "", "|"},
        {",,", "", "||"},        {"a;b,c", "a|b|c|", "a;b|c|"}, {"a b", "a b|", "a b|"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        UT_String runs(c.text), single(c.text);
        UT_WordList byRuns, bySingle;
        const int runCount = runs.splitAt(byRuns, ",;");
        const int singleCount = single.splitAtChar(bySingle, ',');
        EXPECT_EQ(c.byRuns, wordsOf(byRuns));
        EXPECT_EQ(c.bySingle, wordsOf(bySingle));
        EXPECT_EQ(byRuns.getArgc(), runCount);
        EXPECT_EQ(bySingle.getArgc(), singleCount);

        char *argv[8];
        UT_String again(c.text);
        ASSERT_EQ(runCount, again.splitAt(argv, 8, ",;"));
        EXPECT_EQ(c.byRuns, joined(std::vector<std::string>(argv, argv + runCount)));
        again = c.text;
        ASSERT_EQ(singleCount, again.splitAtChar(argv, 8, ','));
        EXPECT_EQ(c.bySingle, joined(std::vector<std::string>(argv, argv + singleCount)));
    }
    for (const char *nothing : {static_cast<const char *>(nullptr), ""}) {
        UT_WordList words;
        words.setArg(0, "kept");
        EXPECT_EQ(0, UT_String(nothing).splitAt(words, ","));
        EXPECT_EQ(0, UT_String(nothing).splitAtChar(words, ','));
        EXPECT_STREQ("kept", words.getArg(0));
    }
}

TEST(StringSplit, TokensFollowTheCallersRules)
{
    const UT_String::TokenRules shell = {" \t", "\"'", '\\', false};
    const UT_String::TokenRules fields = {",;", "'", '\0', true};
    const UT_String::TokenRules nothing = {nullptr, nullptr, '\0', false};
    const struct {
        const char *text;
        const UT_String::TokenRules *rules;
        const char *tokens;
    } cases[] = {
        {" a 'b \"c'd\t\"\" ", &shell, "a|b \"cd||"},
        {"a\\ b \\' c\\", &shell, "a b|'|c\\|"},
        {"'open end", &shell, "open end|"},
        {"a,,b;'c,d',", &fields, "a||b|c,d|"},
        {",", &fields, "|"},
        {"a 'b'", &nothing, "a 'b'|"},
        {"", &fields, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        UT_String s(c.text);
        UT_WordList words;
        words.setArg(2, "stale");
        const int count = s.tokenize(words, *c.rules);
        EXPECT_EQ(c.tokens, wordsOf(words));
        EXPECT_EQ(words.getArgc(), count);
    }
}
