#include "UT/UT_String.h"

#include <gtest/gtest.h>

TEST(StringModifiers, AppliesModifiers)
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

TEST(StringModifiers, MeasuresANameWithItsModifiers)
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
