#include "CPP/cpp_MacroTable.h"

#include "UT/UT_StringList.h"

#include <gtest/gtest.h>

TEST(MacroTable, KeepsTheLastDefinitionOfAName)
{
    cpp_MacroTable macros;
    const auto bodyOf = [&macros](const char *name) {
        const cpp_Macro *macro = macros.find(name);
        return macro != nullptr ? '<' + macro->myBody + '>' : "none";
    };
    const char body[] = " 7 \n";
    EXPECT_TRUE(macros.add("N", body, body + 3, false));
    EXPECT_FALSE(macros.add("N", body, body + 1, false));
    EXPECT_TRUE(macros.add("P", body, body + 2, true));
    EXPECT_EQ("<7 >", bodyOf("N"));
    EXPECT_EQ("<7 >", bodyOf("P"));
    EXPECT_EQ(nullptr, macros.define("N 7 \n", false)) << "the same again";
    EXPECT_STREQ("N", macros.define("N() 7 ", false)) << "with parameters it is another one";
    EXPECT_STREQ("P", macros.define("P=8", true));
    EXPECT_EQ("<8>", bodyOf("P"));
    for (const char *bad : {"1 2", "a-b", ""})
        EXPECT_EQ(nullptr, macros.define(bad, false));
    macros.defineBuiltin("__LINE__", cpp_Macro::LINE_NUMBER);

    UT_StringList lines;
    macros.list(lines);
    ASSERT_EQ(2, lines.entries()) << "neither built in nor without a name";
    EXPECT_STREQ("#define N() 7 ", lines(0));
    EXPECT_STREQ("#define P 8", lines(1));

    macros.undefine("  P and more\n");
    macros.undefine("unknown");
    EXPECT_EQ("none", bodyOf("P"));
    EXPECT_FALSE(macros.holds("P") || macros.holds("") || macros.holds("and"));
    EXPECT_TRUE(macros.add("P", body, body + 1, false)) << "free again";
    EXPECT_EQ("<>", bodyOf("P"));
}
