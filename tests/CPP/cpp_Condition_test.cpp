#include "CPP/cpp_Condition.h"

#include "tests/support/Cases.h"
#include "tests/support/preprocessed.h"

TEST(Condition, IsTrueFalseOrASyntaxError)
{
    expectTable(TEST_DATA "/data/conditions", [](const std::string &options, const char *text) {
        CPP_Manager manager;
        parseOptions(manager, options);
        return std::to_string(evaluateCondition(manager, text, false));
    });
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
