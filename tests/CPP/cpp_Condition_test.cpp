#include "CPP/cpp_Condition.h"

#include "tests/support/ScratchDirectory.h"
#include "tests/support/preprocessed.h"

#include <gtest/gtest.h>

TEST(Condition, IsTrueFalseOrASyntaxError)
{
    enum { SYNTAX_ERROR = -1, NO, YES };
    CPP_Manager manager;
    parseOptions(manager,
                 "-DLEVEL=3 -DFLAG= -DNAME=x -DQUOTED=\\\"x\\\" -DWORD=abc -DNEG=-2 -DNUM=5");
    const struct {
        const char *text;
        int value;
    } cases[] = {
        {"", NO},
        {" \t\n", NO},
        {"1", YES},
        {"(1 | 2 & 4) == 0", YES},
        {"1 || 0 && 0", NO},
        {"3 - 5 < 0", YES},
        {"3-5", SYNTAX_ERROR},
        {"3 -5", SYNTAX_ERROR},
        {"3 - -5 == 8", YES},
        {"10 / 0 == 1000 && 10 % 0 == 0", YES},
        {"-7 / 2 == -3 && -7 % 2 == -1", YES},
        {"(-2147483647 - 1) / -1 == -2147483647 - 1", YES},
        {"2147483647 + 1 < 0 && 65536 * 65536 == 0", YES},
        {"99999999999 == 2147483647", YES},
        {"~0 == 65535 && !!5 == 1 && !0 + 1 == 2", YES},
        {"010 == 8 && 0x1F == 31 && -0x10 == -16", YES},
        {"0X1F", SYNTAX_ERROR},
        {"2 + 3 * 4 == 14 && (2 + 3) * 4 == 20 && 20 - 2 - 3 == 15", YES},
        {"1 < 2 == 1 && (6 ^ 3) == 5 && (6 ^ 3 == 5) == 6", YES},
        {"1 &2", NO},
        {"5 & 6 == 4", NO},
        {"-1 < 1 && 1 > -1 && 1 <= 1 && 1 >= 1 && 1 != 2", YES},
        {"(1", SYNTAX_ERROR},
        {"1)", SYNTAX_ERROR},
        {"()", SYNTAX_ERROR},
        {"1 2", SYNTAX_ERROR},
        {"1 +", SYNTAX_ERROR},
        {"* 1", SYNTAX_ERROR},
        {"!", SYNTAX_ERROR},
        {"1 ! 2", SYNTAX_ERROR},
        {"1 (2)", SYNTAX_ERROR},
        {"1 $", SYNTAX_ERROR},
        {"unknown", NO},
        {"LEVEL > 2 && LEVEL == 3 && WORD == 0 && NEG == -2", YES},
        {"FLAG", SYNTAX_ERROR},
        {"__LINE__", SYNTAX_ERROR},
        {"defined(LEVEL) && defined (FLAG ) && !defined(UNKNOWN)", YES},
        {"defined( LEVEL)", SYNTAX_ERROR},
        {"defined LEVEL", SYNTAX_ERROR},
        {"defined(LEVEL", SYNTAX_ERROR},
        {"defined(1)", SYNTAX_ERROR},
        {"environment(HOME) && !environment(NO_SUCH_VARIABLE)", YES},
        {"access(\"/\") && access(\"$HOME\") && !access(\"/no/such/file\")", YES},
        {"access(/)", SYNTAX_ERROR},
        {"strcmp(NAME, \"x\") == 0 && strcmp(QUOTED , \"x\" ) == 0", YES},
        {"strcmp(\"NAME\",x) == 0", YES},
        {"strcmp(abc,abd) < 0 && strcmp(WORD,\"abb\") > 0", YES},
        {"strcmp(NUM, 5)", SYNTAX_ERROR},
        {"strcmp(FLAG, \"\")", SYNTAX_ERROR},
        {"strcmp( a,b)", SYNTAX_ERROR},
        {"strcmp(\"a,b)", SYNTAX_ERROR},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.value, evaluateCondition(manager, c.text, false));
    }
}

TEST(Condition, TakesTextsOfUpTo1024Characters)
{
    CPP_Manager manager;
    const std::string longest(1024, 'n');
    for (const std::string quote : {"", "\""}) {
        const std::string head = "!strcmp(" + quote + longest;
        const std::string tail = quote + "," + longest + ")";
        EXPECT_EQ(1, evaluateCondition(manager, (head + tail).c_str(), false));
        EXPECT_EQ(-1, evaluateCondition(manager, (head + "n" + tail).c_str(), false));
    }
}

TEST(Condition, StaysFlatHoweverDeepTheParentheses)
{
    CPP_Manager manager;
    const std::string deep(1000000, '(');
    EXPECT_EQ(1,
              evaluateCondition(manager, (deep + "1" + std::string(1000000, ')')).c_str(), false));
    EXPECT_EQ(-1, evaluateCondition(manager, deep.c_str(), false));
}

TEST(Condition, IsNotLookedAtInSkippedText)
{
    CPP_Manager manager;
    UT_IStream in("#if 0\n)\n", 8, false);
    ASSERT_TRUE(manager.openStream(&in, "in"));
    UT_String line;
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(manager.getLine(line));
    EXPECT_EQ(2, evaluateCondition(manager, "(", true));
    EXPECT_EQ(-1, evaluateCondition(manager, "(", false));
}
