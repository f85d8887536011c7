// What shaders print: the language itself.
#include "Shading.h"
#include "tests/support/Cases.h"

#include <gtest/gtest.h>

TEST(Language, PrintsWhatItMeans)
{
    const auto at = [](int points) -> Show {
        return [points](const char *body) { return printedBy(body, points); };
    };
    const Show source = [](const char *text) {
        const Shaded shaded = shade(text);
        return shaded.compiler + shaded.printed;
    };
    const Show quietly = [](const char *text) { return shade(text).printed; };
    expectTable(TEST_DATA "/language", {
                                           {"Expressions", at(1)},
                                           {"ComponentsAndArrays", at(1)},
                                           {"ControlFlowDiffersFromPointToPoint", at(3)},
                                           {"AllPointsJump", at(1)},
                                           {"Functions", source},
                                           {"Derivatives", at(1)},
                                           {"Preprocessor", quietly},
                                           {"PointsThatWaitGoOn", at(5)},
                                       });
}

TEST(Language, FunctionsReturnEarlyForSomePoints)
{
    const char *early = "float f(float x) { if (x < 9) return 1; return 2; }\n"
                        "shader t() { printf(\"%g %g\", f(3), f(u * 20)); }";
    EXPECT_EQ("1 11 2", shade(early, 2).printed);
}
