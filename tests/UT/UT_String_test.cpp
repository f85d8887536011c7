#include "UT/UT_String.h"

#include <cstring>
#include <gtest/gtest.h>

TEST(String, BorrowsUntilAnEditAndNeverWritesWhatItBorrowed)
{
    const char *literal = "abc";
    UT_String s(literal);
    const UT_String copy(s);
    EXPECT_EQ(literal, copy.text());
    s += "def";
    EXPECT_STREQ("abcdef", s);
    EXPECT_STREQ("abc", literal);
    s = copy;
    EXPECT_EQ(literal, s.text());
    s.makeOwned();
    EXPECT_NE(literal, s.text());
    const char *owned = s.text();
    s.makeOwned();
    s.assignCopy("abc");
    s = s.text();
    s = *&s;
    EXPECT_EQ(owned, s.text()) << "already owned and equal";
}

TEST(String, ALengthOwnsExactlySoManyCharacters)
{
    const struct {
        const char *text;
        int length;
        const char *bytes;
    } cases[] = {
        {"abc", 2, "ab\0"},
        {"ab", 4, "ab\0\0\0"},
        {"abc", 0, "\0"},
        {nullptr, 3, "\0"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.bytes);
        const size_t bytes = c.text == nullptr ? 1 : static_cast<size_t>(c.length) + 1;
        const UT_String made(c.text, false, c.length);
        EXPECT_EQ(0, std::memcmp(c.bytes, made.text(), bytes));
        UT_String assigned("old", true);
        assigned.assignCopy(c.text, c.length);
        EXPECT_EQ(0, std::memcmp(c.bytes, assigned.text(), bytes));
    }
}

TEST(String, UnsetBecomesEmptyOnlyWhenItIsOwned)
{
    UT_String s;
    EXPECT_EQ(nullptr, UT_String(nullptr, true).text());
    EXPECT_EQ(nullptr, UT_String(UT_String::ALWAYS_DEEP, nullptr).text());
    s.makeOwned();
    EXPECT_STREQ("", s);
    s.clear();
    EXPECT_EQ(nullptr, s.text());
    s.assignCopy(nullptr);
    EXPECT_STREQ("", s);
    s.clear();
    s.makeOwned();
    EXPECT_EQ(nullptr, s.text()) << "an owned unset text stays";
    s = UT_String(nullptr);
    s.makeOwned();
    EXPECT_STREQ("", s) << "a borrowed one does not";
    const UT_String deep(UT_String::ALWAYS_DEEP, nullptr);
    UT_String copy(deep);
    copy.makeOwned();
    EXPECT_EQ(nullptr, copy.text());
    s += nullptr;
    EXPECT_STREQ("", s);
    s.assignCopy("x");
    s += nullptr;
    EXPECT_STREQ("x", s);
}

TEST(String, AlwaysDeepCopiesOnEveryWayIn)
{
    const char *literal = "abc";
    UT_String deep(UT_String::ALWAYS_DEEP, literal);
    const UT_String borrowed(literal);
    const UT_String copy(deep);
    EXPECT_NE(literal, deep.text());
    EXPECT_NE(deep.text(), copy.text());
    EXPECT_STREQ("abc", copy);
    deep = borrowed;
    EXPECT_NE(literal, deep.text());
    deep = literal;
    EXPECT_NE(literal, deep.text());

    UT_String plain(literal);
    const char *owned = deep.text();
    deep.swap(plain);
    EXPECT_EQ(owned, plain.text());
    EXPECT_NE(literal, deep.text());
    EXPECT_STREQ("abc", deep);
}

TEST(String, CopiesAndAppendsPartsOfItself)
{
    UT_String s("abc", true);
    s.assignCopy(s.text() + 1);
    EXPECT_STREQ("bc", s);
    s += s.text();
    EXPECT_STREQ("bcbc", s);
}

TEST(String, SprintfGrowsToTheTextAndGivesItsLength)
{
    for (const int length : {0, 1, 254, 255, 256, 257, 511, 512, 5000}) {
        SCOPED_TRACE(length);
        const std::string text(static_cast<size_t>(length), 'x');
        UT_String s("old", true);
        EXPECT_EQ(length, s.sprintf("%s", text.c_str()));
        EXPECT_EQ(text, s.toStdString());
    }
    UT_String s("old");
    EXPECT_GT(0, s.sprintf("%ls", L"\x3b1")) << "no such character in the C locale";
    EXPECT_EQ(nullptr, s.text());
}

TEST(String, WritesNumbers)
{
    UT_String s;
    s.setInteger(INT32_MIN);
    EXPECT_STREQ("-2147483648", s);
    s.setInteger(UINT32_MAX);
    EXPECT_STREQ("4294967295", s);
    for (const auto &[value, text] : std::initializer_list<std::pair<int64_t, const char *>>{
             {0, "0"},
             {-999, "-999"},
             {1000, "1,000"},
             {-123456, "-123,456"},
             {1234567, "1,234,567"},
             {INT64_MIN, "-9,223,372,036,854,775,808"}}) {
        s.setGroupedInteger(value);
        EXPECT_STREQ(text, s);
    }
}

TEST(String, ComparesItsEnds)
{
    const struct {
        const char *text, *part;
        bool starts, ends;
    } cases[] = {
        {"a.jpg", ".jpg", false, true}, {".jpg", ".jpg", true, false}, {"abc", "ab", true, false},
        {"ab", "abc", false, false},    {"abc", "", false, false},     {"", "", false, false},
        {nullptr, "a", false, false},   {"a", nullptr, false, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text) + " " + testing::PrintToString(c.part));
        EXPECT_EQ(c.starts, UT_String(c.text).startsWith(c.part));
        EXPECT_EQ(c.ends, UT_String(c.text).endsWith(c.part));
    }
}

TEST(String, FindsWordsBetweenDelimiters)
{
    const struct {
        const char *text, *word;
        long at;
    } cases[] = {
        {"a foo b", "foo", 2},  {"foobar foo", "foo", 7}, {"(foo)", "foo", 1},
        {"foo", "foo", 0},      {"foo_1", "foo", -1},     {"_foo", "foo", -1},
        {"2foo", "foo", -1},    {"foo2", "foo", -1},      {"\001foo\177", "foo", 1},
        {"\351foo", "foo", 1},  {"ba.a.a", "a.a", 3},     {"aa a", "a", 3},
        {"a\tfoo\n", "foo", 2}, {"", "foo", -1},          {nullptr, "foo", -1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        const UT_String s(c.text);
        const char *found = s.findWord(c.word);
        EXPECT_EQ(c.at, found == nullptr ? -1 : found - s.text());
        EXPECT_EQ(c.at >= 0, s.contains(c.word, true));
    }
}

TEST(String, ContainsATextOrAPattern)
{
    const UT_String s("one two");
    EXPECT_TRUE(s.contains("e t"));
    EXPECT_FALSE(s.contains("e?t"));
    EXPECT_TRUE(s.contains("e?t", false, true));
    EXPECT_FALSE(s.contains("E?t", false, true));
    EXPECT_EQ(2, s.countChar('o'));
    EXPECT_EQ(0, UT_String().countChar('o'));
}

TEST(String, RecognisesNumbers)
{
    // Each flag: 'i' an integer, 'n' a number; capitals when space is allowed.
    const struct {
        const char *text, *kinds;
    } cases[] = {
        {"12", "inIN"}, {"-12", "inIN"}, {"+12", "inIN"}, {" 12\t", "IN"}, {"1 2", ""},
        {"1.5", "nN"},  {"-1.5", "nN"},  {".5", "nN"},    {"5.", "nN"},    {"1.2.3", ""},
        {"1e5", "nN"},  {"1E-5", "nN"},  {"1e+5", "nN"},  {"1e5e5", ""},   {"abc", ""},
        {"12a", ""},    {"1e", ""},      {"1e+", ""},     {"e5", ""},      {"+-1", ""},
        {"1 -2", ""},   {"", ""},        {nullptr, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        const UT_String s(c.text);
        std::string kinds;
        kinds += s.isInteger(false) ? "i" : "";
        kinds += s.isNumber(false, true) ? "n" : "";
        kinds += s.isInteger(true) ? "I" : "";
        kinds += s.isNumber(true, false) ? "N" : "";
        EXPECT_EQ(c.kinds, kinds);
    }
    for (const char *noDigits : {"-", "+", ".", "-.", "+-.", ".."}) {
        SCOPED_TRACE(noDigits);
        EXPECT_TRUE(UT_String(noDigits).isNumber(false, true));
        EXPECT_FALSE(UT_String(noDigits).isNumber(false, false));
    }
}

TEST(String, KnowsWhiteSpaceAndWildcards)
{
    for (const char c : {' ', '\t', '\n', '\v', '\f'})
        EXPECT_TRUE(UT_String((std::string("a") + c).c_str(), true).hasWhitespace()) << int{c};
    EXPECT_FALSE(UT_String("a\rb").hasWhitespace());
    EXPECT_FALSE(UT_String().hasWhitespace());
    for (const char *wild : {"a b", "a,", "?", "*a", "[a]"})
        EXPECT_TRUE(UT_String::hasWildcards(wild)) << wild;
    EXPECT_FALSE(UT_String::hasWildcards("a]b\tc"));
    EXPECT_FALSE(UT_String::hasWildcards(nullptr));
}

TEST(String, ReadsNumbers)
{
    const struct {
        const char *text;
        int whole;
        double real;
    } cases[] = {
        {"12abc", 12, 12},
        {" -7.5e1", -7, -75},
        {"x", 0, 0},
        {"010", 10, 10},
        {"", 0, 0},
        {nullptr, 0, 0},
        {"2147483648", INT32_MAX, 2147483648.0},
        {"-2147483649", INT32_MIN, -2147483649.0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        EXPECT_EQ(c.whole, UT_String(c.text).toInt());
        EXPECT_DOUBLE_EQ(c.real, UT_String(c.text).toFloat());
    }
}
