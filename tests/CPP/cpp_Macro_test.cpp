#include "CPP/cpp_Macro.h"

#include "tests/support/preprocessed.h"

#include <gtest/gtest.h>

TEST(Macros, FromCallers)
{
    CPP_Manager manager;
    UT_String result;
    EXPECT_TRUE(manager.defineMacroValue("A", "1 2"));
    EXPECT_TRUE(manager.defineMacroValue("A", "1 2"));
    EXPECT_FALSE(manager.defineMacroValue("A", "3"));
    EXPECT_TRUE(manager.defineMacro("B=(x)", result, true));
    EXPECT_TRUE(manager.defineMacro("F()\nnext line", result, false));
    EXPECT_EQ("", manager.macros().find("F")->myBody);
    EXPECT_TRUE(manager.isMacroDefined("A") && !manager.isMacroDefined(""));
    EXPECT_TRUE(manager.undefineMacro("  A rest", result));
    EXPECT_FALSE(manager.isMacroDefined("A"));
    const std::string longest(1024, 'n');
    manager.defineMacro(longest.c_str(), result, false);
    manager.undefineMacro((longest + "n").c_str(), result);
    EXPECT_FALSE(manager.isMacroDefined(longest.c_str()));

    UT_IStream in("", 0, false);
    ASSERT_TRUE(manager.openStream(&in, "name"));
    result.assignCopy("before ");
    EXPECT_TRUE(manager.expandLine(*manager.currentFile(), "__FILE__ LINUX", result, 0));
    EXPECT_STREQ("before \"name\" ", result);
    EXPECT_FALSE(manager.expandLine(*manager.currentFile(), "'", result, 128));
    EXPECT_STREQ("Mismatched quotation marks", result);
}
