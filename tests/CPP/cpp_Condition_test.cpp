#include "CPP/cpp_Condition.h"

#include "tests/support/Cases.h"
#include "tests/support/preprocessed.h"

namespace
{
int evaluated(const std::string &text, const std::string &options = "")
{
    CPP_Manager manager;
    parseOptions(manager, options);
    return evaluateCondition(manager, text.c_str(), false);
}
} // namespace

TEST(Condition, IsTrueFalseOrASyntaxError)
{
    expectTable(TEST_DATA "/data/conditions", [](const std::string &options, const char *text) {
        return std::to_string(evaluated(text, options));
    });
}

TEST(Condition, TakesTextsOfUpTo1024CharactersAndParenthesesOfAnyDepth)
{
    const std::string longest(1024, 'n'), deep(1000000, '(');
    for (const std::string quote : {"", "\""}) {
        const std::string head = "!strcmp(" + quote + longest, tail = quote + "," + longest + ")";
        EXPECT_EQ(1, evaluated(head + tail));
        EXPECT_EQ(-1, evaluated(head + "n" + tail));
    }
    EXPECT_EQ(1, evaluated(deep + "1" + std::string(1000000, ')')));
    EXPECT_EQ(-1, evaluated(deep));
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
