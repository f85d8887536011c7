#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <cstring>
#include <regex>

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
    for (const char *text : {static_cast<const char *>(nullptr), "", "ab", "abc"}) {
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
}

TEST(String, UnsetBecomesEmptyOnlyWhenItIsOwned)
{
    const UT_String deep(UT_String::ALWAYS_DEEP, nullptr);
    UT_String borrowed, assigned(nullptr, true), owned(nullptr, true), copy(deep),
        cleared("x", true);
    assigned = UT_String(nullptr);
    cleared.clear();
    for (UT_String *each : {&borrowed, &assigned, &owned, &copy, &cleared})
        each->makeOwned();
    EXPECT_STREQ("", borrowed);
    EXPECT_STREQ("", assigned);
    EXPECT_TRUE(owned.text() == nullptr && copy.text() == nullptr && cleared.text() == nullptr);
    cleared.assignCopy(nullptr);
    EXPECT_STREQ("", cleared);
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

TEST(String, WritesAndReadsNumbers)
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
    expectEach({"0 -> 0", "-999 -> -999", "1000 -> 1,000", "-123456 -> -123,456",
                "-9223372036854775808 -> -9,223,372,036,854,775,808"},
               [&s](const char *in) {
                   s.setGroupedInteger(std::strtoll(in, nullptr, 10));
                   return s.toStdString();
               });
    expectEach({"12abc -> 12 12.0", " -7.5e1 -> -7 -75.0", "x -> 0 0.0", "010 -> 10 10.0",
                "(null) -> 0 0.0", "2147483648 -> 2147483647 2147483648.0",
                "-2147483649 -> -2147483648 -2147483649.0"},
               [&s](const char *in) {
                   s.sprintf("%d %.1f", UT_String(in).toInt(), UT_String(in).toFloat());
                   return s.toStdString();
               });
}

TEST(String, AnEqualTextStartsButDoesNotEndIt)
{
    expectEach({".jpg -> 10", "a.jpg -> 01", ".jpga -> 10", ".jpg.jpg -> 11", "jpg -> 00", " -> 00",
                "(null) -> 00"},
               [](const char *in) {
                   const UT_String s(in);
                   EXPECT_FALSE(s.startsWith("") || s.startsWith(nullptr));
                   EXPECT_FALSE(s.endsWith("") || s.endsWith(nullptr));
                   return std::string(s.startsWith(".jpg") ? "1" : "0") +
                          (s.endsWith(".jpg") ? "1" : "0");
               });
    EXPECT_EQ(2, UT_String("abca").countChar('a') + UT_String().countChar('a'));
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
    expectEach({"-1E-5 -> 1", "\t-1\r\n -> 1", "1, -> 0", "1e5e5 -> 0", "-1x -> 0", "(null) -> 0"},
               [](const char *in) { return UT_String(in).isNumber(true, true) ? "1" : "0"; });
}

TEST(String, KnowsWhiteSpaceAndWildcards)
{
    for (int c = 1; c < 256; ++c) {
        const char text[] = {'a', static_cast<char>(c), '\0'};
        EXPECT_EQ(std::strchr(" \t\n\v\f", text[1]) != nullptr, UT_String(text).hasWhitespace())
            << c;
        EXPECT_EQ(std::strchr(" ,?*[", text[1]) != nullptr, UT_String::hasWildcards(text)) << c;
    }
    EXPECT_FALSE(UT_String().hasWhitespace() || UT_String::hasWildcards(nullptr));
}
