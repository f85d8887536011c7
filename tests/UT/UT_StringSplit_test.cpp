#include "UT/UT_WordList.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <sstream>

namespace
{
// What `split` puts into a list, the answer checked.
template <class Split>
std::string wordsOf(const char *text, Split split)
{
    UT_String s(text);
    UT_WordList words;
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

std::string splitWords(const char *text)
{
    return wordsOf(text, [](UT_String &s, UT_WordList &words) {
        words.setArg(4, "stale");
        return s.splitWords(words);
    });
}
} // namespace

TEST(StringSplit, QuotesKeepWordsTogetherAsInThePlainSplitter)
{
    forEachString("a \"'\\", 6, [](const std::string &text) {
        ASSERT_EQ(joined(plainSplitWords(text)), splitWords(text.c_str())) << text;
    });
    expectEach({"VVaskel \"v_plastic diff 1 0 0\" -> VVaskel|v_plastic diff 1 0 0|",
                "a\\\"b \"a\\\"b\" '' a\\b \\ -> a\"b|a\\\"b||a\\b|\\|",
                "\"ab\"cd 'a\"b'\"c'd\" \\'\"x y\" 'a b -> abcd|a\"bc'd|'x y|a b|",
                "\t\r\n\v\fa\r -> a|", "   -> ", "(null) -> "},
               splitWords);
    const auto split = [](UT_String &s, char **argv, int room) {
        return s.splitWordsInto(argv, room);
    };
    EXPECT_EQ("a|b|c|", arrayOf("a b c", 8, split));
    EXPECT_EQ("a|b|c|", arrayOf("a b c", 4, split));
    EXPECT_EQ("a|b|", arrayOf("a b c", 3, split));
    EXPECT_EQ("", arrayOf("a b c", 1, split) + arrayOf(" ", 3, split));
    EXPECT_EQ(0, UT_String("a").splitWordsInto(nullptr, 0));
}

TEST(StringSplit, FieldsBetweenRunsOrSingleSeparators)
{
    const auto byRuns = [](UT_String &s, auto &&...to) { return s.splitAt(to..., ",;"); };
    const auto bySingle = [](UT_String &s, auto &&...to) { return s.splitAtChar(to..., ','); };
    forEachString("ab,;", 5, [&](const std::string &text) {
        std::string runs, single;
        std::istringstream fields(text);
        for (std::string field, part; std::getline(fields, field, ',');) {
            single += field + '|';
            for (std::istringstream parts(field); std::getline(parts, part, ';');)
                runs += part.empty() ? "" : part + '|';
        }
        ASSERT_EQ(runs, wordsOf(text.c_str(), byRuns)) << text;
        ASSERT_EQ(runs, arrayOf(text.c_str(), 8, byRuns)) << text;
        ASSERT_EQ(single, wordsOf(text.c_str(), bySingle)) << text;
        ASSERT_EQ(single, arrayOf(text.c_str(), 8, bySingle)) << text;
    });
    EXPECT_EQ("a|", arrayOf("a,b", 2, byRuns));
    UT_WordList words;
    words.setArg(0, "kept");
    for (UT_String nothing : {UT_String(), UT_String("")})
        EXPECT_EQ(0, nothing.splitAt(words, ",") + nothing.splitAtChar(words, ','));
    EXPECT_STREQ("kept", words.getArg(0));
}

TEST(StringSplit, TokensFollowTheCallersRules)
{
    const auto tokens = [](const UT_String::TokenRules &rules) {
        return [rules](const char *in) {
            return wordsOf(in, [&](UT_String &s, UT_WordList &words) {
                words.setArg(2, "stale");
                return s.tokenize(words, rules);
            });
        };
    };
    expectEach({" a 'b \"c'd\t\"\"  -> a|b \"cd||", "a\\ b \\' c\\ -> a b|'|c\\|",
                "'open end -> open end|", "(null) -> "},
               tokens({" \t", "\"'", '\\', false}));
    expectEach({"a,,b;'c,d', -> a||b|c,d|", ", -> |", " -> "}, tokens({",;", "'", '\0', true}));
    expectEach({"a 'b' -> a 'b'|"}, tokens({nullptr, nullptr, '\0', false}));
}
