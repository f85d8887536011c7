#include "CPP/macros/cpp_Condition.h"

#include "tests/support/Cases.h"
#include "tests/support/preprocessed.h"

TEST(Condition, IsTrueFalseOrASyntaxError)
{
    expectTable(TEST_DATA "/data/conditions", [](const std::string &options, const char *text) {
        CPP_Manager manager;
        parseOptions(manager, options);
        return std::to_string(evaluateCondition(manager.macros(), text));
    });
}

// Where a value does not matter, few have to be evaluated.
TEST(Condition, IsPlainInItsCommonForms)
{
    CPP_Manager manager;
    parseOptions(manager, "-DA=1 -DE=");
    const auto isPlain = [&manager](std::string text) {
        const char *const end = (text += '\n').data() + text.size();
        const char *const newline = plainConditionEnd(manager.macros(), text.data(), end);
        EXPECT_TRUE(newline == nullptr || newline == end - 1);
        return newline != nullptr;
    };
    for (const char *text :
         {"0", " X", "010", "defined(A) && VALUE2 > 3 ", "!defined(A )\t||((B)==10)"})
        EXPECT_TRUE(isPlain(text)) << text;
    for (const char *text :
         {"", "1 +", "(1", "1)", "1)+(1", "X(1)", "E", "3 -5", "!=1", "1 2", "1 !2", "0X1", "09L",
          "defined A", "defined()", "access", "defined( A)"})
        EXPECT_FALSE(isPlain(text)) << text;
    const std::string longest(1024, 'X');
    for (const std::string &text : {longest, "defined(" + longest + ")"})
        EXPECT_TRUE(isPlain(text));
    for (const std::string &text : {longest + "X", "defined(" + longest + "X)"})
        EXPECT_FALSE(isPlain(text)) << "what is too long is two operands";
}
