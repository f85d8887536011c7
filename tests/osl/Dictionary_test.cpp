// XML that shaders ask.
#include "Shading.h"

#include <gtest/gtest.h>

#ifdef OSL_HAS_DICTIONARIES

namespace
{
// Behind "int n" and a text x with three elements and values of many kinds.
std::string answer(const std::string &body)
{
    return printedBy("string x = \"<a><b name='one' v='3'>hello</b>"
                     "<b name='two' v='1.5 2,3' w='x'>7</b><c><d>deep</d></c></a>\"; int n; " +
                     body);
}
} // namespace

TEST(Dictionary, FindsNodes)
{
    const struct {
        const char *what, *body, *printed;
    } rows[] = {
        {"by path", R"(printf("%d", dict_find(x, "/a/b") > 0);)", "1"},
        {"none", R"(printf("%d", dict_find(x, "/a/e"));)", "0"},
        {"one after the other",
         R"(n = dict_find(x, "//b"); n = dict_next(n); string s; dict_value(n, "name", s);
            printf("%s %d", s, dict_next(n));)",
         "two 0"},
        {"by attribute",
         R"(string s; dict_value(dict_find(x, "//b[@name='two']"), "", s); printf("%s", s);)", "7"},
        {"from a node on",
         R"(string s; dict_value(dict_find(dict_find(x, "/a/c"), "d"), "", s); printf("%s", s);)",
         "deep"},
        {"the same question, the same answer",
         R"(printf("%d", dict_find(x, "//d") == dict_find(x, "//d"));)", "1"},
        {"no XML", R"(printf("%d", dict_find("<a>", "/a"));)", "-1"},
        {"no such file", R"(printf("%d", dict_find("none.xml", "/a"));)", "-1"},
        {"no XPath", R"(printf("%d", dict_find(x, "((("));)", "-1"},
        {"no node", R"(printf("%d %d", dict_next(99), dict_find(99, "a"));)", "0 0"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.printed, answer(row.body));
    }
}

TEST(Dictionary, ConvertsValues)
{
    const struct {
        const char *what, *body, *printed;
    } rows[] = {
        {"int", R"(int i; printf("%d", dict_value(dict_find(x, "//b"), "v", i)); printf("%d", i);)",
         "13"},
        {"float", R"(float f; dict_value(dict_find(x, "//b"), "v", f); printf("%g", f);)", "3"},
        {"three numbers",
         R"(color c; dict_value(dict_find(x, "//b[2]"), "v", c); printf("%g", c);)", "1.5 2 3"},
        {"array", R"(float f[3]; dict_value(dict_find(x, "//b[2]"), "v", f); printf("%g", f);)",
         "1.5 2 3"},
        {"too few numbers",
         R"(color c = 4; printf("%d ", dict_value(dict_find(x, "//b"), "v", c)); printf("%g", c);)",
         "0 4 4 4"},
        {"no number",
         R"(int i = 4; printf("%d", dict_value(dict_find(x, "//b[2]"), "w", i)); printf("%d", i);)",
         "04"},
        {"no whole number",
         R"(int i = 4; printf("%d", dict_value(dict_find(x, "//b[2]"), "v", i));)", "0"},
        {"no such attribute",
         R"(string s = "s"; printf("%d%s", dict_value(dict_find(x, "//b"), "z", s), s);)", "0s"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.printed, answer(row.body));
    }
}

TEST(Dictionary, QuestionsThatTakeLongHaveNoAnswer)
{
    const std::string many =
        "string x = \"<a>\"; for (int i = 0; i < 2000; ++i) x = concat(x, \"<b/>\");"
        "x = concat(x, \"</a>\"); printf(\"%d\", dict_find(x, \"//b[//b[//b[//b]]]\"));";
    EXPECT_EQ("0", printedBy(many));
}

#endif
