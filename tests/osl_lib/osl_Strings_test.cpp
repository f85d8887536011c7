#include "osl/lib/osl_Strings.h"

#include "osl/lib/osl_Hash.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>

TEST(Strings, BeginAndEnd)
{
    EXPECT_TRUE(osl_startsWith("abc", "ab") && osl_startsWith("abc", "") && osl_startsWith("", ""));
    EXPECT_FALSE(osl_startsWith("abc", "bc") || osl_startsWith("a", "ab"));
    EXPECT_TRUE(osl_endsWith("abc", "bc") && osl_endsWith("abc", ""));
    EXPECT_FALSE(osl_endsWith("abc", "ab") || osl_endsWith("c", "bc"));
}

TEST(Strings, HavePartsAndCharacters)
{
    const struct {
        int start, length;
        const char *part;
    } cases[] = {{0, 2, "ab"},          {2, 99, "cdef"},
                 {-1, 99, "f"},         {-3, 2, "de"},
                 {-99, 2, "ab"},        {6, 1, ""},
                 {99, 1, ""},           {1, 0, ""},
                 {1, -5, ""},           {INT_MIN, INT_MAX, "abcdef"},
                 {INT_MAX, INT_MAX, ""}};
    for (const auto &c : cases)
        EXPECT_EQ(c.part, osl_substr("abcdef", c.start, c.length)) << c.start << " " << c.length;
    EXPECT_EQ("", osl_substr("", -1, 1));
    EXPECT_EQ('b', osl_getChar("abc", 1));
    EXPECT_EQ(0xe4, osl_getChar("\xe4", 0));
    EXPECT_EQ(0, osl_getChar("abc", 3) + osl_getChar("abc", -1) + osl_getChar("", 0));
}

TEST(Strings, AreReadAsNumbers)
{
    const struct {
        const char *text;
        int whole;
        float number;
    } cases[] = {
        {"12", 12, 12},
        {"  -3.5e2x", -3, -350},
        {"+7", 7, 7},
        {"", 0, 0},
        {"abc", 0, 0},
        {"+-7", 0, 0},
        {"1,5", 1, 1},
        {".25", 0, 0.25f},
        {"0x10", 0, 0},
        {"99999999999", INT_MAX, 99999999999.0f},
        {"-99999999999", INT_MIN, -99999999999.0f},
        {"\t\n 4", 4, 4},
        {"-", 0, 0},
        {"+", 0, 0},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.whole, osl_stoi(c.text)) << c.text;
        EXPECT_FLOAT_EQ(c.number, osl_stof(c.text)) << c.text;
    }
}

TEST(Strings, AreSplitIntoWords)
{
    const struct {
        const char *text, *separator;
        int limit;
        const char *words; // each in front of a "|"
    } cases[] = {
        {"a b  c", "", 9, "a|b|c|"},
        {"  a b ", "", 9, "a|b|"},
        {"", "", 9, ""},
        {" ", "", 9, ""},
        {"a b c", "", 2, "a|b c|"},
        {"a,b,,c", ",", 9, "a|b||c|"},
        {",a,", ",", 9, "|a||"},
        {"", ",", 9, "|"},
        {"a,b,c", ",", 2, "a|b,c|"},
        {"a,b,c", ",", 1, "a,b,c|"},
        {"a,b", ",", 0, ""},
        {"a,b", ",", -1, ""},
        {"a--b-c", "--", 9, "a|b-c|"},
        {"a\tb\nc", "", INT_MAX, "a|b|c|"},
    };
    for (const auto &c : cases) {
        std::string words;
        for (const std::string_view word : osl_split(c.text, c.separator, c.limit))
            words += std::string(word) + "|";
        EXPECT_EQ(c.words, words) << c.text << " at " << c.separator;
    }
}

// The first three are answers of other implementations of the fingerprint.
TEST(Hash, OfTextsIsTheFingerprint)
{
    const struct {
        std::string text;
        uint32_t hash;
    } cases[] = {
        {"1footrue", 0x57a4ccc9}, {"2applefalse", 0x028ba93b},
        {"3true", 0xe60ee4d0},    {"", 0},
        {"foo", 0x2f9383e3},      {"the quick brown fox jumps over the lazy dog", 0x74dc13d3},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.hash, static_cast<uint32_t>(osl_hashOf(c.text))) << c.text;
}

TEST(Hash, OfTextsOfEveryLengthDiffers)
{
    std::vector<int> hashes;
    for (size_t length = 0; length < 300; ++length) {
        std::string text(length, 'x');
        hashes.push_back(osl_hashOf(text));
        if (length == 0)
            continue;
        for (const size_t at : {size_t{0}, length / 2, length - 1}) {
            text[at] = 'y';
            EXPECT_NE(hashes.back(), osl_hashOf(text)) << length << " " << at;
            text[at] = 'x';
        }
    }
    std::sort(hashes.begin(), hashes.end());
    EXPECT_EQ(hashes.end(), std::adjacent_find(hashes.begin(), hashes.end()));
}

TEST(Hash, OfNumbersIsThatOfTheirBits)
{
    const float numbers[] = {1, 2, 3, 4};
    EXPECT_EQ(static_cast<int>(osl_hash(0x3f800000)), osl_hashOf(numbers, 1));
    EXPECT_EQ(static_cast<int>(osl_hash(0x3f800000, 0x40000000, 0x40400000, 0x40800000)),
              osl_hashOf(numbers, 4));
    EXPECT_NE(osl_hashOf(numbers, 2), osl_hashOf(numbers, 3));
}
