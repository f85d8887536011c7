#include "tests/support/preprocessed.h"

#include <gtest/gtest.h>

namespace
{
const char ERROR_1[] = "# error cpp error: \"in\":1 ";

struct Case {
    const char *what, *in, *out;
};

template <size_t N>
void checkAll(const Case (&cases)[N], const char *options = "-P")
{
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.out, preprocessed(options, c.in));
    }
}
} // namespace

TEST(Conditionals, EveryInputLineGivesOneOutputLine)
{
    checkAll({
        {"directive", "#define N 2\nN\n", "\n2\n"},
        {"first true branch", "#if 1\nA\n#else\nB\n#endif\n", "\nA\n\n\n\n"},
        {"nothing true", "#if 0\nA\n#endif\nC\n", "\n\n\nC\n"},
        {"only the first of two", "#if 1\nA\n#elif 1\nB\n#else\nC\n#endif\n", "\nA\n\n\n\n\n\n"},
        {"only the second of three", "#if 0\nA\n#elif 1\nB\n#elif 1\nC\n#endif\n",
         "\n\n\nB\n\n\n\n"},
        {"inside skipped text", "#if 0\n#if 1\nX\n#else\nZ\n#endif\n#else\nY\n#endif\n",
         "\n\n\n\n\n\n\nY\n\n"},
        {"ifdef inside skipped text",
         "#if 0\n#ifndef A\nX\n#endif\n#ifdef A\n#else\nY\n#endif\n#endif\n", "\n\n\n\n\n\n\n\n\n"},
        {"two else", "#if 1\nA\n#else\nB\n#else\nC\n#endif\nD\n", "\nA\n\n\n\n\n\nD\n"},
        {"else behind done", "#if 1\n#elif 1\n#else\nA\n#elif 1\nB\n#endif\n", "\n\n\n\n\n\n\n"},
        {"false elif behind taken", "#if 1\nA\n#elif 0\nB\n#else\nC\n#endif\n", "\nA\n\n\n\n\n\n"},
        {"nothing open", "#else\n#elif 1\n#endif\nA\n", "\n\n\nA\n"},
        {"ifdef", "#define A\n#ifdef A junk\nx\n#endif\n#ifndef A\ny\n#endif\n", "\n\nx\n\n\n\n\n"},
        {"no name", "#ifdef\nx\n#endif\n#ifndef\ny\n#endif\n", "\n\n\n\ny\n\n"},
        {"not taken, not defined", "#if 0\n#define A 1\n#foo\n#include \"x\"\n#endif\nA\n",
         "\n\n\n\n\nA\n"},
    });
    const std::string name(4096, 'x');
    EXPECT_EQ("\n\nA\n\n",
              preprocessed("-P", "#define " + name + "\n#ifdef " + name + "y\nA\n#endif\n"));
}

TEST(Conditionals, BadExpressionsAreReportedAndOpenNothing)
{
    EXPECT_EQ(std::string(ERROR_1) + "#if syntax error\nA\n\n",
              preprocessed("-P", "#if (\nA\n#endif\n"));
    // In skipped text only #elif looks at its expression.
    EXPECT_EQ("\n\n\n# error cpp error: \"in\":4 #elif syntax error\n\nB\n",
              preprocessed("-P", "#if 0\n#if (\n#endif\n#elif )\n#endif\nB\n"));
}

TEST(Directives, AreFoundByTheirWord)
{
    const std::string unknown = std::string(ERROR_1) + "Undefined directive \"";
    const struct {
        const char *what;
        std::string in, out;
    } cases[] = {
        {"blanks around", "  #  define A 1\nA\n", "\n1\n"},
        {"unknown", "#foo bar\nA\n", unknown + "foo\"\n\nA\n"},
        {"no word", "#\nA\n", unknown + "\"\n\nA\n"},
        {"case counts", "#IF 1\nA\n", unknown + "IF\"\n\nA\n"},
        {"32 characters are one too many", "#" + std::string(32, 'x') + "\n",
         unknown + std::string(31, 'x') + "\"\n\n"},
        {"passed through", "#  pragma a  b\n#ident \"x\"\n", "#pragma a  b\n#ident \"x\"\n"},
        {"undef", "#define A 1\n#undef A junk\n#undef B\nA\n", "\n\n\nA\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.out, preprocessed("-P", c.in));
    }
}

TEST(Line, SetsNumberAndName)
{
    EXPECT_EQ("# 1 \"in\"\n# 20 \"other file\"\n21 \"other file\"\n",
              preprocessed("", "#line 20 \"other file\"\n__LINE__ __FILE__\n"));
    EXPECT_EQ("# 1 \"in\"\n# 20 \"open\"\nx\n", preprocessed("", "#line 20 \"open\nx\n"));
    EXPECT_EQ("# 1 \"in\"\n# 1 \"in\"\n2\n", preprocessed("", "#line\n__LINE__\n"));
    EXPECT_EQ("\n8 \"in\"\n", preprocessed("-P", "#line 7\n__LINE__ __FILE__\n"));
    EXPECT_EQ("\n-2147483648\n", preprocessed("-P", "#line 2147483647\n__LINE__\n"));
}
