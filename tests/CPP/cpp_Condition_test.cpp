#include "CPP/cpp_Condition.h"

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
